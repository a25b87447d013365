#include "xml/LibraryLifetime.h"

#include "foundation/Exceptions.h"
#include "xml/XMLText.h"
#include "xml/XMLUtilities.h"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::DisposalException;
using ErrorManagement::Exception::InitializationException;

template <typename Failure>
void run(LibraryLifetime::Operation operation, std::string_view explained,
         std::string const& unknown) {
    try {
        operation();
    } catch (xercesc::XMLException const& exception) {
        throw Failure(explainedFailure(explained, toBytes(exception.getMessage())));
    } catch (...) {
        throw Failure(unknown);
    }
}

void initializeXerces() {
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
                                          nullptr);
}

void terminateXerces() { xercesc::XMLPlatformUtils::Terminate(); }

}  // namespace

std::string explainedFailure(std::string_view literal, std::string_view message) {
    int const offset = message.empty() ? 0 : static_cast<signed char>(message.front());
    if (offset < 0)
        return std::string(literal);
    auto const start = static_cast<std::size_t>(offset);
    return start < literal.size() ? std::string(literal.substr(start)) : std::string();
}

void LibraryLifetime::start() {
    std::lock_guard const guard(lock);
    // A library that should have gone but still has users is simply kept.
    if (!terminationOwed)
        run<InitializationException>(
            initialize, "A problem occurred while initializing the xml utility tools: ",
            "An unknown problem occurred while initializing the xml utility tools.");
    terminationOwed = false;
    ++starts;
}

void LibraryLifetime::stop() {
    std::lock_guard const guard(lock);
    if (starts == 0)
        return;
    --starts;
    terminationOwed = starts == 0 && users > 0;
    if (!terminationOwed)
        run<DisposalException>(
            terminate, "A problem occurred while disposing of the xml utility tools: ",
            "An unknown problem has occurred while disposing of the xml utility tools.");
}

bool LibraryLifetime::enter() {
    std::lock_guard const guard(lock);
    if (starts == 0)
        return false;
    ++users;
    return true;
}

void LibraryLifetime::leave(bool keepUp) noexcept {
    std::lock_guard const guard(lock);
    --users;
    if (users > 0 || !terminationOwed || keepUp)
        return;
    terminationOwed = false;
    try {
        terminate();
    } catch (...) {  // whoever asked for the stop has long got his answer
    }
}

LibraryLifetime& libraryLifetime() {
    static LibraryLifetime lifetime(initializeXerces, terminateXerces);
    return lifetime;
}

void startXMLUtilities() { libraryLifetime().start(); }

void stopXMLUtilities() { libraryLifetime().stop(); }

}  // namespace FrameDriver::XML
