// Loads dictionaries of growing size from XML files, each beside the bare parse of the same file
// into a document, by turns.
//
//     bench_load [rounds]

#include "bench/support/Figures.h"
#include "conversion/TemplateConversionCollection.h"
#include "conversion/TemplateConversionCollectionParser.h"
#include "xml/XMLUtilities.h"

#include <xercesc/parsers/XercesDOMParser.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <unistd.h>

namespace bench {
namespace {

using FrameDriver::Conversion::TemplateConversionCollection;
using FrameDriver::XML::TemplateConversionCollectionParser;
using FrameDriver::XML::ValidationMode;

// A file that is gone when this is.
class DictionaryFile {
  public:
    explicit DictionaryFile(std::size_t entries)
        : path(std::filesystem::temp_directory_path() /
               ("bench_load." + std::to_string(getpid()) + ".xml")) {
        std::ofstream file(path);
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<dictionary "
                "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
        for (std::size_t i = 0; i < entries; ++i)
            file << entry(i);
        file << "</dictionary>\n";
    }
    ~DictionaryFile() { std::filesystem::remove(path); }
    DictionaryFile(DictionaryFile const&) = delete;
    DictionaryFile& operator=(DictionaryFile const&) = delete;

    std::string text() const { return path.string(); }

  private:
    // Five fields, as dictionaries are written.
    static std::string entry(std::size_t i) {
        auto const number = std::to_string(i);
        return "  <conversion>\n"
               "    <from xsi:type=\"fid\">\n"
               "      <id>ME" +
               std::to_string(i % 8) + ".BANK" + std::to_string(i / 8) +
               ".SOURCE</id>\n"
               "      <parameter name=\"VALUE\">{@value}</parameter>\n"
               "    </from>\n"
               "    <to xsi:type=\"cplSetMessage\">\n"
               "      <paramId>" +
               number +
               "</paramId>\n"
               "      <data datatype=\"UInt16\">{@value}</data>\n"
               "      <flag>absolute</flag>\n"
               "    </to>\n"
               "  </conversion>\n";
    }

    std::filesystem::path path;
};

// The processor's time, in milliseconds: on a machine with other work the time on the wall says
// more of that work.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double bareParse(std::string const& path) {
    auto const begin = processorTime();
    {
        xercesc::XercesDOMParser parser;
        parser.setValidationScheme(xercesc::XercesDOMParser::Val_Never);
        parser.setDoNamespaces(false);
        parser.setDoSchema(false);
        parser.parse(path.c_str());
    }
    return processorTime() - begin;
}

struct Load {
    double time;    // milliseconds from the file to a dictionary that is ready for its first text
    double memory;  // bytes kept, the document released
};

// What is in use, be it in a block of its own that the allocator had from the system.
double memoryInUse() {
    auto const state = mallinfo2();
    return static_cast<double>(state.uordblks + state.hblkhd);
}

// As the driver loads: parsed, merged into the dictionary in use, made ready.
Load load(std::string const& path) {
    auto const memory = memoryInUse();
    auto const begin = processorTime();
    TemplateConversionCollection dictionary;
    {
        TemplateConversionCollectionParser parser;
        dictionary.merge(parser.parseFile(path, ValidationMode::None));
    }
    dictionary.prepare();
    auto const time = processorTime() - begin;
    return {time, memoryInUse() - memory};
}

void measure(std::size_t entries, std::size_t rounds) {
    DictionaryFile const file(entries);
    Figures bare;
    Figures loaded;
    Figures ratios;
    Figures memory;
    for (std::size_t i = 0; i < rounds; ++i) {
        bare.push_back(bareParse(file.text()));
        auto const figure = load(file.text());
        loaded.push_back(figure.time);
        memory.push_back(figure.memory / static_cast<double>(entries));
        ratios.push_back(loaded.back() / bare.back());
    }
    std::printf("| %zu | %.1f | %.1f | %.2f | %.0f |\n", entries, quantile(bare, 0.5),
                quantile(loaded, 0.5), quantile(ratios, 0.5), quantile(memory, 0.5));
    std::fflush(stdout);
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    auto const rounds = count > 1 ? std::strtoul(words[1], nullptr, 10) : 7;
    FrameDriver::XML::startXMLUtilities();
    std::printf("| Entries | bare parse, ms | load, ms | x bare parse | kept per entry, bytes "
                "|\n|---|---|---|---|---|\n");
    for (auto const entries : {1'000U, 10'000U, 100'000U})
        bench::measure(entries, std::max(rounds, 1UL));
    FrameDriver::XML::stopXMLUtilities();
}
