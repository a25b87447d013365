#include "time/ConnectionFailure.h"

#include <string_view>

namespace commsconns {

// Read side by side. The odd ones are what people search their logs for.
namespace Words {

FailureWords const open{"An error occurred while opening a UDP connection: ",
                        "An unhandled error occurred while opening a UDP connection.", true};
FailureWords const close{
    "An error occurred while closing a UDP connection ({D}): ",
    "An unhandled error occurred while closing a UDP connection ({D}): ", true};
FailureWords const isReadable{
    "An error occurred while checking the read-readiness of a UDP connection ({D}): ",
    "An unhandled error occurred while checking for the read-readiness of a UDP connection ({D}).",
    false};
FailureWords const read{
    "An error occurred while reading data from a UDP connection ({D}): ",
    "An unhandled error occurred while reading data from a UDP connection ({D}).", true};
FailureWords const write{
    "An error occurred while writing data to a UDP connection ({D}): ",
    "An unhandled error occurred while writing data to a UDP connection ({D}).", true};
FailureWords const setLocalHost{
    "An error occurred while setting or binging a local UDP endpoint ({D}) to {T}: ",
    "An unknown error occurred while setting or binging a local UDP endpoint ({D}) to {T}.", true};
FailureWords const setLocalAddress{
    "An error occurred while setting a local UDP endpoint ({D}) to {T}: ",
    "An unknown error occurred while setting or binging a local UDP endpoint ({D}) to {T}.", true};
FailureWords const setRemoteHost{
    "An error occurred while setting or finding a remote UDP endpoint ({D}) to {T}: ",
    "An unknown error occurred while setting or finding a remote UDP endpoint ({D}) to {T}.", true};

}  // namespace Words

namespace {

void replace(std::string& text, std::string_view mark, std::string const& value) {
    auto const place = text.find(mark);
    if (place != std::string::npos)
        text.replace(place, mark.size(), value);
}

}  // namespace

// The target, which a user may have written, comes last and is not looked into.
std::string filledIn(std::string words, std::string const& connection, std::string const& target) {
    replace(words, "{D}", connection);
    replace(words, "{T}", target);
    return words;
}

// The library's own text has the number of the error behind it in some versions.
OperationError::OperationError(boost::system::error_code const& code, char const* operation)
    : system_error(code), text(std::string(operation) + ": " + code.message()) {}

void check(boost::system::error_code const& error, char const* operation) {
    if (error)
        throw OperationError(error, operation);
}

}  // namespace commsconns
