#pragma once

namespace FrameDriver::XML {

/// While such an object lives the XML library stays up. Whatever touches Xerces-C, and whatever
/// holds an object of it, holds one of these for at least as long. Thread: any.
class LibraryUse {
  public:
    /// What becomes of the library's exceptions: they are all handled while this lives, or they
    /// may leave with it.
    enum Exceptions { exceptionsStay, exceptionsLeave };

    /// Throws std::runtime_error if the library isn't running. Not one of the driver's own
    /// exceptions, so that loaders take it for something unforeseen.
    explicit LibraryUse(Exceptions exceptions = exceptionsStay);
    ~LibraryUse();

    LibraryUse(LibraryUse const&) = delete;
    LibraryUse& operator=(LibraryUse const&) = delete;

  private:
    Exceptions const libraryExceptions;
    int const inFlight;  // exceptions when this was made
};

}  // namespace FrameDriver::XML
