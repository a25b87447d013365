#pragma once

#include "platform/logging/LogCategory.h"

#include <boost/system/system_error.hpp>

#include <string>
#include <utility>

namespace commsconns {

/// What a failed operation says: "{D}" is the connection, "{T}" the target of an endpoint.
struct FailureWords {
    char const* known;    ///< of an error of the socket library, whose text follows
    char const* unknown;  ///< of anything else
    bool logged;
};

namespace Words {
extern FailureWords const open;
extern FailureWords const close;
extern FailureWords const isReadable;
extern FailureWords const read;
extern FailureWords const write;
extern FailureWords const setLocalHost;
extern FailureWords const setLocalAddress;
extern FailureWords const setRemoteHost;
}  // namespace Words

/// `words` with `connection` and `target` in their places.
std::string filledIn(std::string words, std::string const& connection, std::string const& target);

/// An error of the socket library, with the text "operation: reason" and nothing behind it.
class OperationError : public boost::system::system_error {
  public:
    OperationError(boost::system::error_code const& code, char const* operation);
    char const* what() const noexcept override { return text.c_str(); }

  private:
    std::string text;
};

/// Throws if there is an error.
void check(boost::system::error_code const& error, char const* operation);

/// Does `action`; whatever it throws is logged at error level, unless the words say otherwise,
/// and thrown on as a `Failure` with the text.
template <typename Failure, typename Action>
void guarded(Brindlemoor::Utilities::Logging::LogCategory const& log, FailureWords const& words,
             std::string const& connection, std::string const& target, Action action) {
    std::string text;
    try {
        action();
        return;
    } catch (boost::system::system_error const& error) {
        text = filledIn(words.known, connection, target) + error.what();
    } catch (...) {
        text = filledIn(words.unknown, connection, target);
    }
    if (words.logged)
        log.getErrorStream() << text;
    throw Failure(std::move(text));
}

}  // namespace commsconns
