#include "xml/LibraryUse.h"

#include "xml/LibraryLifetime.h"

#include <exception>
#include <stdexcept>

namespace FrameDriver::XML {

LibraryUse::LibraryUse(Exceptions exceptions)
    : libraryExceptions(exceptions), inFlight(std::uncaught_exceptions()) {
    if (!libraryLifetime().enter())
        throw std::runtime_error("The XML library is not running.");
}

// An exception of the library that is on its way out lives in the library's own memory, so the
// library must outlive its handler.
LibraryUse::~LibraryUse() {
    bool const leaving =
        libraryExceptions == exceptionsLeave && std::uncaught_exceptions() > inFlight;
    libraryLifetime().leave(leaving);
}

}  // namespace FrameDriver::XML
