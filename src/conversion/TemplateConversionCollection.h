#pragma once

#include "conversion/CandidateCache.h"
#include "conversion/GroupNode.h"
#include "conversion/LookupIndex.h"
#include "conversion/TemplateConversion.h"
#include "foundation/SpinLock.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Conversion {

/// A dictionary: which texts does a text convert to?
///
/// All entries that match answer, in the order of the walk of the lookup tree (GroupNode), and
/// each with its results in the order of its templates. Of entries whose `from` templates have
/// the same segments the first one counts.
///
/// The lists of candidates of the last five walks are kept. A text that matches the *first*
/// candidate of a kept list is answered from that list alone: entries that would match too but
/// don't stand in it are not consulted, and entries added since then neither. Kept: the results
/// of a burst of like texts depend on it.
///
/// Filled at start-up and used from then on. Adding only takes the entry in; what the lookup needs
/// is made by `prepare`, or else by the first conversion behind an addition, some microseconds per
/// entry. So a dictionary that is only merged into another never builds a tree.
///
/// Thread: any; conversions of one dictionary run one at a time, evaluation of the templates
/// included. Nothing is reported: an empty answer means that nothing converted.
class TemplateConversionCollection {
  public:
    TemplateConversionCollection();
    /// The entries in their order; the kept lists stay behind.
    TemplateConversionCollection(TemplateConversionCollection const& other);
    TemplateConversionCollection& operator=(TemplateConversionCollection const&) = delete;
    virtual ~TemplateConversionCollection();

    void add(TemplateConversion const& conversion);
    /// All entries of the other, in their order.
    void merge(TemplateConversionCollection const& other);
    /// Makes ready for the first text, which would otherwise wait for it.
    void prepare();

    /// `context` is only handed on to the templates; it must outlive the call. What a template
    /// throws (std::out_of_range, see TemplateConversion) passes through: the results are lost,
    /// the list of candidates is kept.
    std::vector<std::string> convert(std::string_view text, Template::ContextStore* context);

    /// Every entry in the order of adding, duplicates included.
    std::vector<TemplateConversion> getConversions() const;
    /// For diagnosis: the number of candidates of each kept list, the newest first.
    std::vector<std::size_t> recentSizes() const;

  private:
    void makeIndex();
    bool answerFromRecent(Template::ContextStore* context, std::vector<std::string>& results);
    CandidateCache::List const& collect();
    void convertAll(CandidateCache::List const& candidates, std::size_t start,
                    Template::ContextStore* context, std::vector<std::string>& results);

    mutable Tools::SpinMutex lock;  // guards everything below
    CandidateCache recent;
    std::vector<TemplateConversion> conversions;
    std::size_t filed = 0;  // how many of `conversions` are in the tree, the first ones
    GroupNode root;

    std::unique_ptr<LookupIndex> index;  // of the entries that are filed
    SearchedText searched;               // the text of the running `convert`
    ConversionPlan::Captures captures;   // its scratch
};

}  // namespace FrameDriver::Conversion
