#include "time/NetworkConnection.h"

#include "platform/logging/LogManager.h"

using Brindlemoor::Utilities::Logging::LogManager;

namespace commsconns {

NetworkConnection::NetworkConnection(bool connectionFlag)
    : mLog(LogManager::getInstance()->getCategory("NetworkIO")), mFlag(connectionFlag) {}

NetworkConnection::~NetworkConnection() = default;

std::string NetworkConnection::describe() {
    return getLocalAddress() + ":" + std::to_string(getLocalPort()) + " to " + getRemoteAddress() +
           ":" + std::to_string(getRemotePort());
}

}  // namespace commsconns
