#include "bench/convert/Peers.h"

#include "template/PlainString.h"
#include "template/Variable.h"

#include <utility>

namespace bench {

using FrameDriver::Conversion::TemplateConversion;

TemplateString templateOf(Literals const& literals) {
    std::vector<FrameDriver::Template::SegmentPtr> pieces;
    for (std::size_t i = 0; i < literals.size(); ++i) {
        if (i > 0)
            pieces.push_back(std::make_unique<FrameDriver::Template::Variable>(std::to_string(i)));
        if (!literals[i].empty())
            pieces.push_back(std::make_unique<FrameDriver::Template::PlainString>(literals[i]));
    }
    return TemplateString::of(std::move(pieces));
}

void Engine::add(Entry const& entry) {
    collection.add(TemplateConversion(templateOf(entry.from), {templateOf(entry.to)}));
}

void Uncached::add(Entry const& entry) {
    root.add(TemplateConversion(templateOf(entry.from), {templateOf(entry.to)}));
}

std::size_t Uncached::convert(std::string_view text) {
    candidates.clear();
    searched.assign(text);
    index->collect(searched, candidates);
    std::vector<std::string> results;
    for (auto const* candidate : candidates)
        candidate->convert(searched, &context, results, captures);
    return results.size();
}

void PlainWalk::add(Entry const& entry) {
    engine.add(templateOf(entry.from), {templateOf(entry.to)});
}

void Floor::add(Entry const& entry) { entries[entry.key].push_back(entry); }

std::list<std::string> Floor::results(std::string_view text) const {
    std::list<std::string> results;
    auto const found = entries.find(keyOf(shape, text));
    if (found == entries.end())
        return results;
    for (auto const& entry : found->second) {
        auto& result = results.emplace_back();
        result.reserve(text.size() + entry.to.front().size());
        result += entry.to.front();
        auto begin = entry.from.front().size();
        for (std::size_t i = 1; i < entry.from.size(); ++i) {
            auto const& next = entry.from[i];
            auto const end = next.empty() ? text.size() : text.find(next.front(), begin);
            auto const capture = std::string(text.substr(begin, end - begin));
            result.append(capture).append(entry.to[i]);
            begin = end + next.size();
        }
    }
    return results;
}

}  // namespace bench
