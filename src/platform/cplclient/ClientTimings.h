#pragma once

#include "platform/Visibility.h"

#include <chrono>
#include <cstddef>

/// The stand-in's times and bounds. A frozen or dead peer is found within `silenceLimit` plus
/// `pingAfter`, less than three seconds.
struct ClientTimings {
    /// For name look-up, connect and handshake together.
    std::chrono::milliseconds connectLimit{1000};
    /// After so much silence the frame is asked whether it is there.
    std::chrono::milliseconds pingAfter{500};
    /// After so much silence it isn't.
    std::chrono::milliseconds silenceLimit{2000};
    /// A frame that takes no bytes for so long isn't there either.
    std::chrono::milliseconds writeLimit{2000};
    /// How long the frame may take to close after a bye.
    std::chrono::milliseconds byeLimit{200};
    /// News that wait for the callback thread. A panel that is so far behind will never catch
    /// up, and shows old state: better to drop the link and begin anew with the present one.
    std::size_t queueBytes = std::size_t{16} << 20U;
};

/// What clients go by that are made from now on. For tests, which change it while there is no
/// client.
QFD_PUBLIC ClientTimings& timingsOfNewClients();
