#include "cpl/Subscription.h"

#include "cpl/LogText.h"

#include <utility>

namespace FrameDriver::CPL {

std::string ParameterSubscription::toString() const {
    std::string out = "Parameter Subscription (";
    appendUnsigned(out, "pid=", static_cast<std::uint32_t>(pid));
    appendHex(out, ", did=", did);
    appendSigned(out, ", flag=", getFlag());
    out += ')';
    return out;
}

std::string ListSubscription::toString() const {
    std::string out = "List Subscription (";
    appendSigned(out, "lid=", lid);
    appendHex(out, ", did=", did);
    appendSigned(out, ", flag=", getFlag());
    out += ')';
    return out;
}

BatchSubscription::BatchSubscription(std::list<Subscription*> members,
                                     eSubscribeFlags subscribeFlag)
    : Subscription(eBatchSubscription, subscribeFlag), subscriptions(std::move(members)) {}

BatchSubscription::~BatchSubscription() {
    for (Subscription const* const subscription : subscriptions)
        delete subscription;
}

std::string BatchSubscription::toString() const { return "Batch Subscription "; }

}  // namespace FrameDriver::CPL
