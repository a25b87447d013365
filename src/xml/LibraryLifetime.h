#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace FrameDriver::XML {

/// Counts who started the XML library and who uses it, so that it goes down neither too early
/// nor under someone's feet. The process has one, behind startXMLUtilities, stopXMLUtilities
/// and LibraryUse. Thread: any.
class LibraryLifetime {
  public:
    using Operation = void (*)();

    constexpr LibraryLifetime(Operation initializer, Operation terminator)
        : initialize(initializer), terminate(terminator) {}
    LibraryLifetime(LibraryLifetime const&) = delete;
    LibraryLifetime& operator=(LibraryLifetime const&) = delete;

    /// Throws InitializationException, and then doesn't count as a start. The text is
    /// explainedFailure("A problem occurred while initializing the xml utility tools: ", the
    /// library's message), or "An unknown problem occurred while initializing the xml utility
    /// tools." for what isn't an exception of the library.
    void start();

    /// Throws DisposalException. The text is explainedFailure("A problem occurred while
    /// disposing of the xml utility tools: ", the library's message), or "An unknown problem
    /// has occurred while disposing of the xml utility tools."
    void stop();

    /// False if the library isn't running. A true needs a `leave`.
    bool enter();

    /// The last one out after the last stop takes the library down, unless `keepUp` leaves
    /// that to the next one. Throws nothing.
    void leave(bool keepUp) noexcept;

  private:
    Operation const initialize;
    Operation const terminate;
    std::mutex lock;         // guards what follows, and the two operations
    std::size_t starts = 0;  // less the stops
    std::size_t users = 0;
    bool terminationOwed = false;  // the last stop came while there were users
};

/// What is left of a failure's text: the literal from the place on that the number of the
/// message's first byte, taken as signed, points at. Nothing of the message shows; a place
/// behind the literal's end gives the empty text, a place ahead of it the whole literal. Kept:
/// it is what these two failures have always logged.
std::string explainedFailure(std::string_view literal, std::string_view message);

/// The process's one.
LibraryLifetime& libraryLifetime();

}  // namespace FrameDriver::XML
