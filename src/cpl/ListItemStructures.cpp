#include "cpl/ListItemStructures.h"

#include "cpl/DataValue.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace FrameDriver::CPL {
namespace {

/// One member of a structure, and the field of the item that fills it. The width is in bytes.
template <typename S>
struct Member {
    std::string_view field;
    std::size_t width;
    std::uint32_t S::*number = nullptr;
    bool S::*flag = nullptr;
    std::string S::*text = nullptr;

    constexpr Member(std::string_view name, std::size_t bytes, std::uint32_t S::*member)
        : field(name), width(bytes), number(member) {}
    constexpr Member(std::string_view name, bool S::*member)
        : field(name), width(1), flag(member) {}
    constexpr Member(std::string_view name, std::string S::*member)
        : field(name), width(0), text(member) {}
};

using Event = DeviceEventListItem;
constexpr Member<Event> eventMembers[] = {
    {"Clip Name", &Event::clipName},
    {"MarkIn Time", 4, &Event::markInTime},
};

using Camera = CameraSourceListItem;
constexpr Member<Camera> cameraMembers[] = {
    {"Camera Id", 2, &Camera::cameraId},
    {"Camera Name", &Camera::cameraName},
    {"Head Type", &Camera::headType},
    {"Aspect Ratio", 2, &Camera::aspectRatio},
    {"Video Mode", 2, &Camera::videoMode},
    {"Connected", &Camera::connected},
    {"Color Bars Enabled", &Camera::colorBarsEnabled},
    {"Auto Iris Enabled", &Camera::autoIrisEnabled},
    {"Auto Black Enabled", &Camera::autoBlackEnabled},
    {"Filter", 2, &Camera::filter},
    {"Scene File", 2, &Camera::sceneFile},
    {"Red Tally", &Camera::redTally},
    {"Yellow Tally", &Camera::yellowTally},
    {"Green Tally", &Camera::greenTally},
    {"Suite ID", 2, &Camera::suiteId},
};

/// The first `width` bytes of the value, in the machine's own order.
std::uint32_t leadingBytes(std::string_view bytes, std::size_t width) {
    unsigned char padded[4] = {};
    std::memcpy(padded, bytes.data(), std::min(bytes.size(), width));
    std::uint32_t number;
    std::memcpy(&number, padded, sizeof number);
    return number;
}

template <typename S>
void assign(S& structure, Member<S> const& member, ListItemParameter const& value) {
    std::string_view const bytes(static_cast<char const*>(value.getData()),
                                 sizeOfValue(value.getData(), value.getHeldType()));
    if (member.text)
        structure.*member.text = bytes.substr(0, bytes.find('\0'));
    else if (member.flag)
        structure.*member.flag = leadingBytes(bytes, member.width) != 0;
    else
        structure.*member.number = leadingBytes(bytes, member.width);
}

template <typename S, std::size_t count>
S fill(ListItem const& item, Member<S> const (&members)[count]) {
    S structure;
    structure.itemId = item.getItemId();
    ListItemParameter found;
    for (Member<S> const& member : members)
        if (item.getParameter(member.field, found) && found.getData() != nullptr)
            assign(structure, member, found);
    return structure;
}

}  // namespace

DeviceEventListItem toDeviceEventListItem(ListItem const& item) { return fill(item, eventMembers); }

CameraSourceListItem toCameraSourceListItem(ListItem const& item) {
    return fill(item, cameraMembers);
}

}  // namespace FrameDriver::CPL
