#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>

namespace FrameDriver::Template {

/// Applies one change to the clip stack of a device and gives the new stack's text. Storing it
/// is for the dictionary; this decorator only creates the device's key, empty, where it is
/// absent, and writes no other.
///
///     value = device ">" entry                       (see ClipStack.h for entry and stack)
///     key   = "DEVICE" device ".CLIP_STACK"
///
/// A value without ">" is device and entry both.
class ClipStackBuilderDecorator : public CopyableDecorator<ClipStackBuilderDecorator> {
  public:
    enum class Operation : std::int32_t { none, insert, modify, remove };

    ClipStackBuilderDecorator(Operation change, std::int32_t unusedOffset)
        : operation(change), offset(unusedOffset) {}

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "ClipStackBuilder"; }

  private:
    Operation operation;
    [[maybe_unused]] std::int32_t offset;  // part of the word, without an effect
};

/// One field of the clip at an offset from the one that is loaded. The value is the device.
///
/// The clip is the one of number index + offset, from 1; number 0 means the first as well. The
/// index stands at the key of the stack followed by ".LOADED.INDEX", 0 if absent. Where the
/// device has no stack the result is empty; where there is no such clip, "0" for a number and
/// empty for the name. A name is shown from behind its first "/", and that of the last clip
/// never: panels rely on an empty name to end a list.
class ClipStackElementDecorator : public CopyableDecorator<ClipStackElementDecorator> {
  public:
    enum class Field : std::int32_t { itemId, clipName, nextItemId };

    ClipStackElementDecorator(std::int32_t offsetFromLoaded, Field shownField)
        : position(offsetFromLoaded), field(shownField) {}

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "ClipStackElement"; }

  private:
    std::int32_t position;
    Field field;
};

/// The length between the marks of a machine, "0" if the one out stands before the one in. The
/// value is the machine's number; an absent mark is 0.
///
///     "MACHINE" value ".MARKIN"
///     "MACHINE" value ".MARKOUT"
class MachineClipLengthDecorator : public CopyableDecorator<MachineClipLengthDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    /// The name of another decorator, kept: template dumps are compared with older ones.
    std::string toString() const override { return "isEmpty"; }
};

}  // namespace FrameDriver::Template
