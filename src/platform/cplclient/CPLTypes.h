#pragma once

#include <cstdint>
#include <string>

/// The closed enumerations of the frame's protocol. Which number means what belongs to the
/// frame: the dictionaries carry the numbers, the driver passes them on unchanged. Each type
/// holds any 32-bit value.
enum PIDType : std::int32_t {};
enum EIDType : std::int32_t {};
enum eListIDType : std::int32_t {};
enum eListItemAction : std::int32_t {};

/// How a value is set.
enum eCpl2SetType : std::int32_t {
    eSetAbsolute = 0,
    eSetRelative = 1,
    eSetDetent = 2,
    eSetDefault = 4,
    eSetToggle = 8,
    eSetFactoryDefault = 10
};

enum eSubscribeFlags : std::int32_t {
    eSubscribeImmediate = 1,  ///< send the present value at once, then every change
    eSubscribeReplace = 2,    ///< in place of the client's other subscriptions
    eSubscribeAppend = 3,     ///< beside the client's other subscriptions
    eSubscribeUpdate = 4      ///< only changes
};

enum eUnsubscribeFlags : std::int32_t { eUnsubscribeAll = 3 };

enum eCplServiceIDType : std::int32_t { eParameterService = 3, eListService = 4 };

/// 0 is success, everything else a failure.
enum Status : std::int32_t {
    eStatusOk = 0,
    eStatusNotConnected = 1,
    eStatusTimeOut = 2,   ///< no acknowledgement within the send time-out
    eStatusRefused = 3,   ///< the frame answered no
    eStatusTooLarge = 4,  ///< the message doesn't fit the protocol's bounds
    eStatusClosed = 5     ///< the client isn't open
};

enum ClientConnectionState : std::int32_t {
    eNotConnected = 1,
    eConnected = 2,
    eConnectionLost = 3
};

/// What `setList` takes for a device event list (list id 6). A member that the caller leaves
/// alone is sent as it stands.
struct DeviceEventListItem {
    std::uint32_t itemId = 0;
    std::string clipName;
    std::uint32_t markInTime = 0;
};

/// What `setList` takes for a camera source list (list id 32). The `std::uint32_t` members
/// other than `itemId` carry 16-bit values.
struct CameraSourceListItem {
    std::uint32_t itemId = 0;
    std::uint32_t cameraId = 0;
    std::string cameraName;
    std::string headType;
    std::uint32_t aspectRatio = 0;
    std::uint32_t videoMode = 0;
    bool connected = false;
    bool colorBarsEnabled = false;
    bool autoIrisEnabled = false;
    bool autoBlackEnabled = false;
    std::uint32_t filter = 0;
    std::uint32_t sceneFile = 0;
    bool redTally = false;
    bool yellowTally = false;
    bool greenTally = false;
    std::uint32_t suiteId = 0;
};
