#include "DemoStage.h"

#include "AuthorInput.h"
#include "Command.h"
#include "xml/SettingsKeys.h"
#include "xml/SettingsParser.h"
#include "xml/SettingsWriter.h"

#include <arpa/inet.h>
#include <filesystem>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace qfd {
namespace {

constexpr std::uint16_t framePort = 5000;  // the driver knows no other

std::string dotted(std::uint32_t address) {
    in_addr const binary{htonl(address)};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &binary, text, sizeof text);
}

bool portIsFree(std::uint32_t address) {
    int const fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in end{};
    end.sin_family = AF_INET;
    end.sin_port = htons(framePort);
    end.sin_addr.s_addr = htonl(address);
    auto const bound = ::bind(fd, reinterpret_cast<sockaddr*>(&end), sizeof end) == 0;
    ::close(fd);
    return bound;
}

/// An even address of the loopback network, whose neighbour is the panel's. Where to begin
/// goes by the process, so that two demos at a time rarely meet.
std::uint32_t freeAddress() {
    auto const first = 0x7F500000U + (static_cast<std::uint32_t>(::getpid()) % 0x7F00U) * 4U + 2U;
    for (std::uint32_t address = first; address < first + 400; address += 4)
        if (portIsFree(address))
            return address;
    throw InputError("port 5000 is taken on every loopback address that was tried");
}

void setFrameAddress(std::string const& settingsFile, std::string const& address) {
    XMLLibrary const library;
    try {
        FrameDriver::XML::SettingsParser parser;
        auto settings = parser.parseFile(settingsFile, FrameDriver::XML::ValidationMode::Schema);
        settings.set(FrameDriver::Tools::SettingsKeys::simulatorFrameAddress, address);
        FrameDriver::XML::SettingsWriter writer;
        writer.writeFile(settingsFile, settings);
    } catch (...) {
        throw InputError(currentExceptionText());
    }
}

}  // namespace

DemoStage::DemoStage(std::string const& installation) {
    std::string const settings = FrameDriver::Tools::SettingsKeys::settingsPath;
    // Whatever else this may be, it isn't to be copied.
    if (!fs::exists(fs::path(installation) / settings))
        throw InputError("'" + installation + "' is no installation: it has no " + settings);
    auto name = (fs::temp_directory_path() / "qfd-demo-XXXXXX").native();
    if (!mkdtemp(name.data()))
        throw InputError("no directory for the demo below " + fs::temp_directory_path().native());
    copy = name;
    try {
        fill(installation);
    } catch (...) {
        clear();
        throw;
    }
}

DemoStage::~DemoStage() { clear(); }

void DemoStage::fill(std::string const& installation) {
    std::error_code error;
    fs::copy(installation, copy, fs::copy_options::recursive, error);
    if (error)
        throw InputError("can't copy '" + installation + "': " + error.message());
    auto const address = freeAddress();
    frame = dotted(address);
    panel = dotted(address + 1);
    setFrameAddress(copy + "/" + FrameDriver::Tools::SettingsKeys::settingsPath, frame);
}

void DemoStage::clear() const {
    std::error_code ignored;
    fs::remove_all(copy, ignored);
}

}  // namespace qfd
