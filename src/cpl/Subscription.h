#pragma once

#include "cpl/Message.h"
#include "platform/cplclient/CPLTypes.h"

#include <cstdint>
#include <list>
#include <string>

namespace FrameDriver::CPL {

enum SubscriptionKind : std::int32_t {
    eParameterSubscription = 0,
    eListSubscription = 1,
    eBatchSubscription = 2
};

/// Asks the frame to report something from now on.
class Subscription : public Message {
  public:
    std::int32_t getKind() const { return subscriptionKind; }
    eSubscribeFlags getFlag() const { return flag; }

  protected:
    Subscription(std::int32_t kind, eSubscribeFlags subscribeFlag)
        : Message(eSubscription), subscriptionKind(kind), flag(subscribeFlag) {}
    Subscription(Subscription const&) = default;
    Subscription& operator=(Subscription const&) = default;

  private:
    std::int32_t subscriptionKind;
    eSubscribeFlags flag;
};

/// One parameter.
///
///     log line = "Parameter Subscription (pid=" n ", did=" hex ", flag=" n ")"
class ParameterSubscription : public Subscription {
  public:
    ParameterSubscription(PIDType parameter, std::uint32_t device, eSubscribeFlags subscribeFlag)
        : Subscription(eParameterSubscription, subscribeFlag), pid(parameter), did(device) {}

    std::string toString() const override;

    PIDType getPid() const { return pid; }
    std::uint32_t getDid() const { return did; }

  private:
    PIDType pid;
    std::uint32_t did;
};

/// One list.
///
///     log line = "List Subscription (lid=" n ", did=" hex ", flag=" n ")"
class ListSubscription : public Subscription {
  public:
    ListSubscription(eListIDType list, std::uint16_t listNumber, std::uint32_t device,
                     eSubscribeFlags subscribeFlag)
        : Subscription(eListSubscription, subscribeFlag),
          lid(list),
          number(listNumber),
          did(device) {}

    std::string toString() const override;

    eListIDType getLid() const { return lid; }
    std::uint16_t getNumber() const { return number; }
    std::uint32_t getDid() const { return did; }

  private:
    eListIDType lid;
    std::uint16_t number;
    std::uint32_t did;
};

/// Many at once. Only its parameter subscriptions reach the frame, and not under its own flag;
/// see CplClient::send.
///
///     log line = "Batch Subscription "
class BatchSubscription : public Subscription {
  public:
    /// Takes over what the pointers point at; null ones may be among them.
    BatchSubscription(std::list<Subscription*> members, eSubscribeFlags subscribeFlag);
    ~BatchSubscription() override;
    BatchSubscription(BatchSubscription const&) = delete;
    BatchSubscription& operator=(BatchSubscription const&) = delete;

    std::string toString() const override;

    /// The members stay the batch's.
    std::list<Subscription*> getSubscriptions() const { return subscriptions; }
    /// The same without copying the list.
    std::list<Subscription*> const& viewSubscriptions() const { return subscriptions; }

  private:
    std::list<Subscription*> subscriptions;
};

}  // namespace FrameDriver::CPL
