#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <string>

namespace FrameDriver::Template {

/// Decides the direction of a transition lever from its first movement away from the middle of
/// its range and holds it: while the lock's text is "OFF", a value below 2047 stores "UP" and
/// one above 2047 "DOWN", and the lock becomes "ON". Resetting the lock is for the dictionary.
/// The result is the stored direction, the empty string if there is none.
///
/// Writes the two keys below and no others. Two threads that decide at once may both store.
///
///     directionKey = prefix "TRANSI.FADERDIRECTION"
///     lockKey      = prefix "TRANSI.FADERDIRECTION.LOCK"
///     prefix       = "EMEM.MASTER."                 (emem, me -1)
///                  | "EMEM.ME" me "." bankWord "."  (emem, any other me)
///                  | "ME" me "." bankWord "."
///     bankWord     = "PRIMARY" (bank 0) | "SECONDARY"
class DirectionDecorator : public CopyableDecorator<DirectionDecorator> {
  public:
    DirectionDecorator(std::int32_t me, std::int32_t bank, bool emem);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "directionSelector"; }

  private:
    std::string directionKey;
    std::string lockKey;
};

/// The fraction of a transition, 0 to 1, for a lever position of 0 to 4095, with the direction
/// that DirectionDecorator stored (the key is the same). "DOWN" counts from the other end. The
/// end of either direction is exactly "1". Without a direction the position counts as for "UP".
class LeverArmDecorator : public CopyableDecorator<LeverArmDecorator> {
  public:
    LeverArmDecorator(std::int32_t me, std::int32_t bank, bool emem);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "leverarmSetter"; }

  private:
    std::string directionKey;
};

}  // namespace FrameDriver::Template
