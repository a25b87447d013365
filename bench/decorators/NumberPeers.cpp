#include "StreamPeers.h"
#include "StreamText.h"

#include <array>
#include <cstdint>
#include <iomanip>
#include <vector>

namespace FrameDriver::Template::Bench {
namespace {

using Text = std::string const&;

std::string increment(Text value, PlainState&) {
    std::istringstream stream(value);
    std::int32_t number = 0;
    stream >> number;
    return stream.fail() ? value : print(number + 1);
}

std::string decrement(Text value, PlainState&) {
    std::istringstream stream(value);
    std::int32_t number = 0;
    stream >> number;
    return stream.fail() ? value : print(number - 1);
}

std::string scale(Text value, PlainState&) { return print(read<float>(value) * 0.5F); }

std::string rounded(Text value, PlainState&) {
    return print(static_cast<std::int64_t>(double{read<float>(value)} + 0.5));
}

std::string width(Text value, PlainState&) { return print(std::setw(6), std::setfill(' '), value); }

std::string hexToDecimal(Text value, PlainState&) {
    return print(read<std::int32_t>(value, std::hex));
}

std::string decimalToHex(Text value, PlainState&) {
    return print(std::hex, read<std::int32_t>(value));
}

std::string decimalUnsignedToHex(Text value, PlainState&) {
    return print(std::hex, read<std::uint32_t>(value));
}

std::string stringToHex(Text value, PlainState&) {
    std::ostringstream stream;
    for (char const character : value)
        stream << std::hex << static_cast<int>(character);
    return stream.str();
}

std::string bitMask(Text value, PlainState&) {
    return (read<std::int32_t>(value) & 4) > 0 ? "ON" : "OFF";
}

std::string enumeration(Text value, PlainState&) {
    static std::map<std::string, std::string> const table{{"0", "OFF"}, {"1", "ON"}};
    auto const entry = table.find(value);
    return entry == table.end() ? value : entry->second;
}

std::string isEmpty(Text value, PlainState&) { return value.empty() ? "true" : "false"; }

std::string backgroundName(Text value, PlainState&) {
    static std::map<std::string, std::string> const table{
        {"0", "BGDA"}, {"1", "BGDB"}, {"2", "BGDC"}, {"3", "BGDD"}, {"4", "UTIL1"}};
    auto const entry = table.find(value);
    return entry == table.end() ? "UTIL2" : entry->second;
}

std::string backgroundNumber(Text value, PlainState&) {
    static std::map<std::string, std::string> const table{
        {"A", "0"}, {"B", "1"}, {"C", "2"}, {"D", "3"}, {"1", "4"}};
    auto const entry = table.find(value);
    return entry == table.end() ? "5" : entry->second;
}

std::string logicalMachine(Text value, PlainState&) { return value == "65535" ? "NONE" : value; }

std::string priorityExtractor(Text value, PlainState&) {
    auto digits = static_cast<std::uint32_t>(read<std::int32_t>(value));
    std::ostringstream stream;
    for (int place = 1; place <= 8; ++place, digits >>= 4) {
        if ((digits & 0xF) + 1 == 6)
            stream << place;
    }
    return stream.str();
}

std::string mappingCorrector(Text value, PlainState&) {
    auto const index = read<std::int32_t>(value);
    return print(index + (50 - 48) * ((index - 1) / 48));
}

std::vector<std::string> split(Text text, char delimiter) {
    std::istringstream stream(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(stream, part, delimiter);)
        parts.push_back(part);
    return parts;
}

std::string isSequenceComplete(Text value, PlainState&) {
    auto const parts = split(split(value, '/').back(), '-');
    return '>' + parts.at(0) == parts.at(1) ? "true" : "false";
}

std::string nextElementExtractor(Text value, PlainState&) {
    std::istringstream stream(value);
    std::string element;
    std::getline(stream, element, ' ');
    return element;
}

std::string nextElementRemover(Text value, PlainState&) {
    std::istringstream stream(value);
    std::string element;
    std::getline(stream, element, ' ');
    std::getline(stream, element);
    return element;
}

constexpr auto peers = std::to_array<StreamPeer>({
    {"increment", "41", increment},
    {"decrement", "41", decrement},
    {"scale:0.5", "12.34", scale},
    {"round", "12.34", rounded},
    {"width=6,padding= ", "1234", width},
    {"hexToDecimal", "1fff", hexToDecimal},
    {"decimalToHex", "-8191", decimalToHex},
    {"decimalUnsignedToHex", "4294967295", decimalUnsignedToHex},
    {"stringToHex", "CAM 1", stringToHex},
    {"bitmask=4,set=ON,clear=OFF", "7", bitMask},
    {"priorityExtractor=6", "5517840", priorityExtractor},
    {"mappingCorrector=48", "97", mappingCorrector},
    {"enum:1=>ON,0=>OFF", "1", enumeration},
    {"isEmpty", "", isEmpty},
    {"backgroundEnumToName", "3", backgroundName},
    {"backgroundNameToEnum", "D", backgroundNumber},
    {"logicalMachineNumber", "12", logicalMachine},
    {"isSequenceComplete", "1->2/2->2", isSequenceComplete},
    {"nextElementExtractor", "12 14 ", nextElementExtractor},
    {"nextElementRemover", "12 14 ", nextElementRemover},
});

}  // namespace

std::span<StreamPeer const> numberPeers() { return peers; }

}  // namespace FrameDriver::Template::Bench
