#pragma once

/// Starting and stopping the XML library, for the whole process.
///
/// Every start needs a stop, and the library runs while there are more starts than stops; a
/// stop too many does nothing. A stop never pulls the library away under a parse or a write
/// that is still running on another thread: the last of them out takes it down. What begins
/// after the last stop fails (see AbstractParser::parseFile and AbstractWriter).
///
/// Thread: any.
namespace FrameDriver::XML {

/// Throws InitializationException; for its text see LibraryLifetime::start.
void startXMLUtilities();

/// Throws DisposalException; for its text see LibraryLifetime::stop.
void stopXMLUtilities();

}  // namespace FrameDriver::XML
