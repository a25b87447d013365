#include "Output.h"

#include "Command.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>

namespace qfd {
namespace {

constexpr char hexDigits[] = "0123456789abcdef";

void printTo(std::FILE* stream, std::string_view line) {
    static std::mutex mutex;
    std::lock_guard const guard(mutex);
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
}

/// The two characters behind a backslash, or 0 if the byte has no short form.
char shortEscape(char byte) {
    switch (byte) {
    case '\\':
        return '\\';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U; }

struct CloseFile {
    void operator()(std::FILE* file) const {
        if (file != stdin) {
            std::fclose(file);
        }
    }
};

}  // namespace

std::string widened(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char const byte : bytes) {
        auto const code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            out.push_back(byte);
        } else {
            out.push_back(static_cast<char>(0xc0U | (code >> 6U)));
            out.push_back(static_cast<char>(0x80U | (code & 0x3fU)));
        }
    }
    return out;
}

std::string narrowed(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        unsigned const lead = static_cast<unsigned char>(utf8[i]);
        if (lead < 0x80) {
            out.push_back(utf8[i]);
            continue;
        }
        std::size_t next = i + 1;
        while (next < utf8.size() && isContinuation(utf8[next])) {
            ++next;
        }
        bool const fits = (lead == 0xc2 || lead == 0xc3) && next == i + 2;
        unsigned const tail = fits ? static_cast<unsigned char>(utf8[i + 1]) & 0x3fU : 0;
        out.push_back(fits ? static_cast<char>((lead << 6U) | tail) : '?');
        i = next - 1;
    }
    return out;
}

std::string jsonLine(nlohmann::ordered_json const& value) { return value.dump(-1, ' ', true); }

std::string escaped(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char const byte : bytes) {
        auto const code = static_cast<unsigned char>(byte);
        if (char const letter = shortEscape(byte)) {
            out.push_back('\\');
            out.push_back(letter);
        } else if (code >= 0x20 && code < 0x7f) {
            out.push_back(byte);
        } else {
            out.append("\\x");
            out.push_back(hexDigits[code >> 4U]);
            out.push_back(hexDigits[code & 0xfU]);
        }
    }
    return out;
}

void printLine(std::string_view line) { printTo(stdout, line); }

void printError(std::string_view subcommand, std::string_view text) {
    std::string line = "qfd ";
    line.append(subcommand).append(": ").append(text);
    printTo(stderr, line);
}

std::string readInput(std::string const& path) {
    std::unique_ptr<std::FILE, CloseFile> const file(path == "-" ? stdin
                                                                 : std::fopen(path.c_str(), "rb"));
    std::string content;
    if (file) {
        char block[65536];
        while (std::size_t const got = std::fread(block, 1, sizeof block, file.get())) {
            content.append(block, got);
        }
    }
    if (!file || std::ferror(file.get())) {
        throw InputError("cannot read '" + path + "': " + std::strerror(errno));
    }
    return content;
}

}  // namespace qfd
