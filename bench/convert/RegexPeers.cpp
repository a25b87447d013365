#include "bench/convert/RegexPeers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <hs/hs.h>
#include <new>
#include <re2/re2.h>
#include <re2/set.h>

namespace bench {

namespace {

// What the set may take for its automaton.
constexpr std::int64_t setMemory = std::int64_t(1) << 30;
// The made-up dictionaries have up to three gaps, and a companion one more.
constexpr std::size_t mostGaps = 4;

re2::RE2::Options options(std::int64_t memory) {
    re2::RE2::Options chosen(re2::RE2::Latin1);
    chosen.set_dot_nl(true);
    chosen.set_log_errors(false);
    chosen.set_max_mem(memory);
    return chosen;
}

constexpr std::int64_t entryMemory = std::int64_t(1) << 20;

std::string quoted(std::string_view literal) {
    std::string text;
    for (auto const byte : literal) {
        static constexpr char digits[] = "0123456789abcdef";
        auto const number = static_cast<unsigned char>(byte);
        if (number >= 0x80)
            text.append("\\x").append(1, digits[number / 16]).append(1, digits[number % 16]);
        else if (std::string_view("\\^$.|?*+()[]{}").find(byte) != std::string_view::npos)
            text.append(1, '\\').append(1, byte);
        else
            text += byte;
    }
    return text;
}

std::string expressionOf(Entry const& entry, std::string_view gap) {
    std::string text;
    for (std::size_t i = 0; i < entry.from.size(); ++i)
        text.append(i > 0 ? gap : "").append(quoted(entry.from[i]));
    return text;
}

re2::StringPiece piece(std::string_view text) { return {text.data(), text.size()}; }

}  // namespace

Extraction::Extraction(Entry const& entry)
    : expression(std::make_unique<re2::RE2>(expressionOf(entry, "(.*?)"), options(entryMemory))),
      to(entry.to) {
    if (!expression->ok() || to.size() > mostGaps + 1)
        std::abort();
}

Extraction::Extraction(Extraction&&) noexcept = default;
Extraction::~Extraction() = default;

void Extraction::apply(std::string_view text, std::list<std::string>& results) const {
    std::array<re2::StringPiece, mostGaps + 1> captures;
    if (!expression->Match(piece(text), 0, text.size(), re2::RE2::ANCHOR_BOTH, captures.data(),
                           static_cast<int>(to.size())))
        return;
    auto& result = results.emplace_back();
    result.reserve(text.size() + to.front().size());
    result += to.front();
    for (std::size_t i = 1; i < to.size(); ++i)
        result.append(captures[i].data(), captures[i].size()).append(to[i]);
}

struct RegexSet::Set {
    re2::RE2::Set expressions{options(setMemory), re2::RE2::ANCHOR_BOTH};
};

RegexSet::RegexSet() = default;
RegexSet::~RegexSet() = default;

void RegexSet::add(Entry const& entry) { entries.push_back(entry); }

std::string RegexSet::compile() {
    set = std::make_unique<Set>();
    std::string error;
    for (auto const& entry : entries) {
        if (set->expressions.Add(expressionOf(entry, ".*?"), &error) < 0)
            return error;
    }
    return set->expressions.Compile() ? "" : "out of the memory it may take";
}

void RegexSet::prepare() {
    for (auto const& entry : entries)
        extractions.emplace_back(entry);
}

std::list<std::string> RegexSet::results(std::string_view text) {
    matches.clear();
    re2::RE2::Set::ErrorInfo error{};
    set->expressions.Match(piece(text), &matches, &error);
    refused += error.kind != re2::RE2::Set::kNoError ? 1 : 0;
    std::sort(matches.begin(), matches.end());
    std::list<std::string> results;
    for (auto const match : matches)
        extractions[static_cast<std::size_t>(match)].apply(text, results);
    return results;
}

Hyperscan::~Hyperscan() {
    hs_free_scratch(scratch);
    hs_free_database(database);
}

void Hyperscan::add(Entry const& entry) { entries.push_back(entry); }

std::string Hyperscan::compile() {
    std::vector<std::string> texts;
    for (auto const& entry : entries)
        texts.push_back("^" + expressionOf(entry, ".*") + "$");
    std::vector<char const*> expressions;
    std::vector<unsigned> ids;
    for (auto const& text : texts) {
        ids.push_back(static_cast<unsigned>(ids.size()));
        expressions.push_back(text.c_str());
    }
    // Not to report each place at which an expression ends, but once that it matches.
    std::vector<unsigned> const flags(texts.size(), HS_FLAG_DOTALL | HS_FLAG_SINGLEMATCH);
    hs_compile_error_t* error = nullptr;
    hs_compile_multi(expressions.data(), flags.data(), ids.data(),
                     static_cast<unsigned>(ids.size()), HS_MODE_BLOCK, nullptr, &database, &error);
    std::string const message = error ? error->message : "";
    hs_free_compile_error(error);
    return message;
}

void Hyperscan::prepare() {
    if (hs_alloc_scratch(database, &scratch) != HS_SUCCESS)
        throw std::bad_alloc();
    for (auto const& entry : entries)
        extractions.emplace_back(entry);
}

std::list<std::string> Hyperscan::results(std::string_view text) {
    matches.clear();
    auto const note = [](unsigned id, unsigned long long, unsigned long long, unsigned,
                         void* target) {
        static_cast<std::vector<unsigned>*>(target)->push_back(id);
        return 0;
    };
    auto const outcome = hs_scan(database, text.data(), static_cast<unsigned>(text.size()), 0,
                                 scratch, note, &matches);
    refused += outcome != HS_SUCCESS ? 1 : 0;
    std::sort(matches.begin(), matches.end());
    std::list<std::string> results;
    for (auto const match : matches)
        extractions[match].apply(text, results);
    return results;
}

}  // namespace bench
