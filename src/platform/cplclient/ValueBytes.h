#pragma once

#include <cstdint>
#include <string_view>

/// Copies a value from the wire, where numbers are big-endian, to `target`, where they are in
/// the machine's order; `target` has room for as many bytes. Text is copied as it stands, and so
/// is a number that hasn't its kind's width.
void toMachineOrder(std::uint16_t dataType, std::string_view value, unsigned char* target);
