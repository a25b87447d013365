#pragma once

#include "Patience.h"
#include "platform/cplclient/CCallback.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A callback that keeps what it hears, a text each:
///
///     "update CALLBACK PID DID TYPE VALUE" | "reply ..." likewise | "list COUNT PAYLOAD"
///
/// with the device and the bytes in hexadecimal, the value's in the machine's order.
class RecordingCallback final : public CCallback {
  public:
    /// Called first, with the text; set it before anything can come.
    std::function<void(std::string const&)> onNews;

    void parameterUpdate(CplParameterMessage* message, void* second, std::uint32_t const* callback,
                         void* fourth) override;
    void parameterReply(CplParameterMessage* message, void* second, std::uint32_t const* callback,
                        void* fourth) override;
    void listUpdate(CplListMessage* message, void* second) override;

    /// Waits for so many texts and gives all that there are.
    std::vector<std::string> waitFor(std::size_t count);
    std::vector<std::string> all();
    std::thread::id lastThread();

  private:
    void keep(std::string text);

    std::mutex lock;
    std::condition_variable changed;
    std::vector<std::string> texts;
    std::thread::id thread;
};
