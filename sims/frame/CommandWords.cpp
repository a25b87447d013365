#include "sims/frame/CommandWords.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace FrameSim {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string shown(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

void CommandWords::skipBlanks() { at = std::min(text.find_first_not_of(blanks, at), text.size()); }

void CommandWords::fail(std::string const& cause) const { throw CommandError(cause, last); }

bool CommandWords::nextIs(std::string_view wanted) const {
    auto const end = std::min(text.find_first_of(blanks, at), text.size());
    return text.substr(at, end - at) == wanted;
}

std::string_view CommandWords::word(std::string_view name) {
    last = at;
    if (empty()) {
        fail(std::string(name) + " is missing");
    }
    auto const end = std::min(text.find_first_of(blanks, at), text.size());
    auto const taken = text.substr(at, end - at);
    at = end;
    skipBlanks();
    return taken;
}

std::int64_t CommandWords::number(std::string_view name, std::int64_t lowest,
                                  std::int64_t highest) {
    auto const digits = word(name);
    auto const* const end = digits.data() + digits.size();
    std::int64_t value = 0;
    auto const result = std::from_chars(digits.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < lowest || value > highest) {
        fail(std::string(name) + " must be a number from " + std::to_string(lowest) + " to " +
             std::to_string(highest) + ", not " + shown(digits));
    }
    return value;
}

std::uint16_t CommandWords::number16(std::string_view name) {
    return static_cast<std::uint16_t>(number(name, 0, std::numeric_limits<std::uint16_t>::max()));
}

std::uint32_t CommandWords::number32(std::string_view name) {
    return static_cast<std::uint32_t>(number(name, 0, std::numeric_limits<std::uint32_t>::max()));
}

std::uint32_t CommandWords::device() {
    auto const digits = word("DID");
    auto const did = readDevice(digits);
    if (!did) {
        fail("DID must be up to eight hexadecimal digits, not " + shown(digits));
    }
    return *did;
}

ParameterKey CommandWords::parameter() {
    std::int32_t const pid = number16("PID");
    return {pid, device()};
}

ListKey CommandWords::list() {
    std::int32_t const lid = number16("LID");
    std::uint16_t const number = number16("NUMBER");
    return {lid, number, device()};
}

bool CommandWords::onOrOff() {
    auto const state = word("on or off");
    if (state != "on" && state != "off") {
        fail("it must be on or off, not " + shown(state));
    }
    return state == "on";
}

std::string_view CommandWords::wordOrQuoted(std::string_view name) {
    if (empty() || text[at] != '"') {
        return word(name);
    }
    last = at;
    auto end = at + 1;
    while (end < text.size() && text[end] != '"') {
        end += text[end] == '\\' ? 2 : 1;
    }
    if (end >= text.size()) {
        fail("the quoted text isn't whole: " + std::string(text.substr(at)));
    }
    at = end + 1;
    skipBlanks();
    return text.substr(last, end + 1 - last);
}

std::string CommandWords::hexadecimal() {
    std::string bytes;
    while (!empty()) {
        auto digits = word("HEX");
        for (; !digits.empty(); digits.remove_prefix(2)) {
            unsigned char byte = 0;
            auto const* const end = digits.data() + 2;
            if (digits.size() < 2 || std::from_chars(digits.data(), end, byte, 16).ptr != end) {
                fail("HEX must be pairs of hexadecimal digits");
            }
            bytes.push_back(static_cast<char>(byte));
        }
    }
    return bytes;
}

std::string_view CommandWords::tail() {
    last = at;
    auto const end = text.find_last_not_of(blanks);
    auto const taken = empty() ? std::string_view() : text.substr(at, end + 1 - at);
    at = text.size();
    return taken;
}

void CommandWords::expectEnd() const {
    if (!empty()) {
        auto const rest = text.substr(at, text.find_last_not_of(blanks) + 1 - at);
        throw CommandError("too much: " + shown(rest), at);
    }
}

}  // namespace FrameSim
