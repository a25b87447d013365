#include "conversion/TemplateConversionCollection.h"

#include <mutex>

namespace FrameDriver::Conversion {

TemplateConversionCollection::TemplateConversionCollection() : root(nullptr, 0) {}

TemplateConversionCollection::TemplateConversionCollection(
    TemplateConversionCollection const& other)
    : TemplateConversionCollection() {
    merge(other);
}

TemplateConversionCollection::~TemplateConversionCollection() = default;

void TemplateConversionCollection::add(TemplateConversion const& conversion) {
    std::lock_guard const guard(lock);
    conversions.push_back(conversion);
}

void TemplateConversionCollection::merge(TemplateConversionCollection const& other) {
    // A copy, so that a collection can be merged with itself and no two locks are held.
    auto const added = other.getConversions();
    std::lock_guard const guard(lock);
    conversions.insert(conversions.end(), added.begin(), added.end());
}

void TemplateConversionCollection::prepare() {
    std::lock_guard const guard(lock);
    makeIndex();
}

void TemplateConversionCollection::makeIndex() {
    if (index && filed == conversions.size())
        return;
    index.reset();
    for (; filed < conversions.size(); ++filed)
        root.add(conversions[filed]);
    index = std::make_unique<LookupIndex>(root);
}

std::vector<std::string> TemplateConversionCollection::convert(std::string_view text,
                                                               Template::ContextStore* context) {
    std::lock_guard const guard(lock);
    std::vector<std::string> results;
    searched.assign(text);
    if (!answerFromRecent(context, results))
        convertAll(collect(), 0, context, results);
    return results;
}

// The first candidate has to be matched to know whether the list answers, so it isn't matched
// again for its own results.
bool TemplateConversionCollection::answerFromRecent(Template::ContextStore* context,
                                                    std::vector<std::string>& results) {
    for (std::size_t age = 0; age < recent.size(); ++age) {
        auto const& candidates = recent[age];
        if (candidates.empty())
            continue;
        auto const& first = *candidates.front();
        auto const how = first.match(searched, captures);
        if (how == ConversionPlan::Match::no)
            continue;
        first.evaluate(how, searched, captures, context, results);
        convertAll(candidates, 1, context, results);
        return true;
    }
    return false;
}

CandidateCache::List const& TemplateConversionCollection::collect() {
    makeIndex();
    index->collect(searched, recent.spare());
    return recent.insert();
}

void TemplateConversionCollection::convertAll(CandidateCache::List const& candidates,
                                              std::size_t start, Template::ContextStore* context,
                                              std::vector<std::string>& results) {
    for (auto i = start; i < candidates.size(); ++i)
        candidates[i]->convert(searched, context, results, captures);
}

std::vector<TemplateConversion> TemplateConversionCollection::getConversions() const {
    std::lock_guard const guard(lock);
    return conversions;
}

std::vector<std::size_t> TemplateConversionCollection::recentSizes() const {
    std::lock_guard const guard(lock);
    std::vector<std::size_t> sizes;
    for (std::size_t age = 0; age < recent.size(); ++age)
        sizes.push_back(recent[age].size());
    return sizes;
}

}  // namespace FrameDriver::Conversion
