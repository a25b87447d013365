#pragma once

#include <cstdint>
#include <string>

namespace FrameDriver::CPL {

enum MessageType : std::int32_t {
    eSendEventMessage = 5,
    eSetMessage = 6,
    eSubscription = 8,
    eIssue = 16,
    eSetListMessage = 32
};

/// The root of everything that the driver tells the frame and hears from it. A consumer reads
/// `getType`, then the selector of that kind (`Issue::getServiceType`,
/// `Subscription::getKind`), and casts; nothing else is dispatched on.
///
/// Ownership: a message owns its value; whoever made the message deletes it. Thread: one at a
/// time, there are no locks.
class Message {
  public:
    virtual ~Message() = default;
    /// One line for the log. Not the text form that the dictionaries see.
    virtual std::string toString() const = 0;

    std::int32_t getType() const { return messageType; }

  protected:
    explicit Message(std::int32_t type) : messageType(type) {}
    Message(Message const&) = default;
    Message& operator=(Message const&) = default;

  private:
    std::int32_t messageType;
};

}  // namespace FrameDriver::CPL
