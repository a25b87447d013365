#pragma once

#include <array>
#include <utility>

/// The names under which the driver looks in its settings, and what it puts there when it has
/// no settings file. Any other name in the file is carried along unchanged.
namespace FrameDriver::Tools::SettingsKeys {

/// Where the settings are read from and written to, relative to the working directory.
inline constexpr char const* settingsPath = "Configuration/Settings.xml";

inline constexpr char const* clientName = "Client Name";
/// The two keys named "Simulator" are the working keys in all cases.
inline constexpr char const* simulatorConversionManifest = "Simulator Conversion Manifest";
inline constexpr char const* simulatorFrameAddress = "Simulator Frame Address";
/// Optional; milliseconds as decimal text.
inline constexpr char const* cplAckTimeout = "CPL Ack Timeout";

/// Written with the defaults, and never read.
inline constexpr char const* frameDriverConversionManifest = "FrameDriver Conversion Manifest";
inline constexpr char const* initialStateFilePath = "Initial State File Path";
inline constexpr char const* logFilePath = "Log File Path";

/// Neither read nor written.
inline constexpr char const* cplClientName = "CPL Client Name";

/// The defaults, in the order in which they are set.
inline constexpr std::array<std::pair<char const*, char const*>, 6> defaults{{
    {clientName, "Velmar Panel"},
    {frameDriverConversionManifest, "./Configuration/FrameDriverManifest.xml"},
    {initialStateFilePath, "./Configuration/InitialState.xml"},
    {logFilePath, "./Logs/qfd.log"},
    {simulatorConversionManifest, "./Configuration/SimulatorManifest.xml"},
    {simulatorFrameAddress, "127.0.0.1"},
}};

}  // namespace FrameDriver::Tools::SettingsKeys
