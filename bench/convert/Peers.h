#pragma once

#include "bench/convert/Dictionary.h"
#include "conversion/LookupIndex.h"
#include "conversion/TemplateConversionCollection.h"
#include "tests/support/engine/PlainEngine.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What converts texts, side by side. A further peer is a class with `add`, `prepare` and
/// `convert`, and a line in main.cpp.
namespace bench {

using FrameDriver::Template::ContextStore;
using FrameDriver::Template::TemplateString;

/// The template with variables named by their number.
TemplateString templateOf(Literals const& literals);

/// The driver's own, its cache of recent candidates included.
class Engine {
  public:
    static constexpr std::string_view name = "engine";

    void add(Entry const& entry);
    /// After the last entry.
    void prepare() { collection.prepare(); }
    /// How many results there are.
    std::size_t convert(std::string_view text) { return collection.convert(text, &context).size(); }

    auto results(std::string_view text) { return collection.convert(text, &context); }

  private:
    FrameDriver::Conversion::TemplateConversionCollection collection;
    ContextStore context;
};

/// The same without the cache: each text goes through the lookup tree's index.
class Uncached {
  public:
    static constexpr std::string_view name = "engine, no cache";

    void add(Entry const& entry);
    void prepare() { index = std::make_unique<FrameDriver::Conversion::LookupIndex>(root); }
    std::size_t convert(std::string_view text);

  private:
    FrameDriver::Conversion::GroupNode root{nullptr, 0};
    std::unique_ptr<FrameDriver::Conversion::LookupIndex> index;
    FrameDriver::Conversion::CandidateCache::List candidates;
    FrameDriver::Conversion::SearchedText searched;
    FrameDriver::Conversion::ConversionPlan::Captures captures;
    ContextStore context;
};

/// Every child of every group is asked; with the cache of recent candidates.
class PlainWalk {
  public:
    static constexpr std::string_view name = "plain walk";

    void add(Entry const& entry);
    void prepare() {}
    std::size_t convert(std::string_view text) {
        return engine.convert(std::string(text), &context).size();
    }

  private:
    FrameDriver::Conversion::PlainEngine engine;
    ContextStore context;
};

/// The least that any converter does for this data: one look-up of the key, each capture cut out
/// by its length, one string and one list node per result. It knows where a text's key stands
/// and takes for granted that the rest of the text fits.
class Floor {
  public:
    static constexpr std::string_view name = "floor";

    explicit Floor(Shape textShape) : shape(textShape) {}
    void add(Entry const& entry);
    void prepare() {}
    std::size_t convert(std::string_view text) { return results(text).size(); }

    std::list<std::string> results(std::string_view text) const;

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const noexcept {
            return std::hash<std::string_view>{}(key);
        }
    };

    Shape shape;
    std::unordered_map<std::string, std::vector<Entry>, Hash, std::equal_to<>> entries;
};

}  // namespace bench
