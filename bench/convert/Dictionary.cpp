#include "bench/convert/Dictionary.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace bench {

namespace {

using Random = std::mt19937_64;

constexpr std::string_view closing = "\222";

std::size_t below(Random& random, std::size_t limit) {
    return static_cast<std::size_t>(random() % limit);
}

// Names as panels have them: some levels, the deepest ones telling.
std::string fidName(std::size_t i) {
    static constexpr char const* areas[] = {"PANEL", "ME",  "KEYER", "TRANS",  "MACHINE",
                                            "MENU",  "AUX", "MACRO", "EFFECT", "ROUTER"};
    static constexpr char const* actions[] = {"SELECT", "CUT",  "LEVEL.SET", "CLIP.INC", "ON",
                                              "HOLD",   "NAME", "RECALL",    "XPT",      "MODE"};
    return std::string(areas[i % 10]) + "." + std::to_string(i / 10 % 8) + ".BANK" +
           std::to_string(i / 800) + "." + actions[i / 80 % 10];
}

Entry fidEntry(std::size_t i) {
    static constexpr char const* parameters[] = {"VALUE=", ", SOURCE=", ", BUS="};
    auto const name = fidName(i);
    Entry entry{{std::string("FID: id=") + name + ", data=["},
                {std::string("Set Message: pid=") + std::to_string(i)},
                name};
    for (std::size_t k = 0; k < i % 4; ++k) {
        entry.from.back() += parameters[k];
        entry.from.emplace_back();
        entry.to.back() += k == 0 ? ", data=[type=UInt16, value=" : ", flag=";
        entry.to.emplace_back();
    }
    entry.from.back() += closing;
    entry.to.back() += closing;
    return entry;
}

Entry issueEntry(std::size_t i) {
    auto const me = std::to_string(i % 8);
    auto const keyer = std::to_string(i / 8 % 16);
    auto const pid = std::to_string(i / 128 + 10);
    std::string const start = "Parameter Issue: pid=" + pid +
                              ", did=[EncodingType=08, MEIdType=" + me + ", KeyerIDType=" + keyer +
                              ", eEMemLevel=0\222, ";
    Entry entry;
    entry.key = start;
    entry.from = {start + "data=[type=Int16, value=", "\222, flag=", ""};
    entry.to = {"SID: id=ME" + me + ".KEY" + keyer + ".P" + pid + ", value=", ", ", ""};
    return entry;
}

Entry adversarialEntry(std::size_t i) {
    auto const item = std::to_string(1000000 + i);
    return {{"FID: id=PANEL.ROUTER.TAKE, data=[DEST=", ", LEVEL=",
             std::string(", ITEM=") + item + "\222"},
            {"Set Message: pid=7, did=[", ", level=", std::string(", item=") + item + "\222"},
            item};
}

Entry makeEntry(Shape shape, std::size_t i) {
    switch (shape) {
    case Shape::fids:
        return fidEntry(i);
    case Shape::issues:
        return issueEntry(i);
    case Shape::adversarial:
        break;
    }
    return adversarialEntry(i);
}

// Matches what the entry matches, and more: it lacks the last byte of a literal, so that its last
// variable reaches to the end.
Entry companionOf(Entry const& entry) {
    auto companion = entry;
    companion.to.front() = "Context: name=" + entry.key + ", value=";
    if (companion.from.back().empty()) {
        companion.from[companion.from.size() - 2].pop_back();
        return companion;
    }
    companion.from.back().pop_back();
    if (!companion.from.back().empty()) {
        companion.from.emplace_back();
        companion.to.emplace_back();
    }
    return companion;
}

std::string textOf(Entry const& entry, Random& random) {
    auto text = entry.from.front();
    for (std::size_t i = 1; i < entry.from.size(); ++i)
        text.append(std::to_string(below(random, 4096))).append(entry.from[i]);
    return text;
}

// A text that is nearly the entry's.
std::string missOf(Shape shape, Entry const& entry, Random& random) {
    auto text = textOf(entry, random);
    auto const key = keyOf(shape, text);
    auto const place = static_cast<std::size_t>(key.data() - text.data()) + key.size() / 2;
    return text.insert(place, 1, '?');
}

// The first entries of a random order are asked for most: the k-th 1/k as often as the first.
class Popularity {
  public:
    Popularity(std::vector<std::size_t> members, Random& random) : order(std::move(members)) {
        std::shuffle(order.begin(), order.end(), random);
        double sum = 0;
        for (std::size_t i = 0; i < order.size(); ++i)
            sums.push_back(sum += 1.0 / static_cast<double>(i + 1));
    }
    std::size_t pick(Random& random) const {
        auto const point = std::uniform_real_distribution<>(0, sums.back())(random);
        auto const place = std::lower_bound(sums.begin(), sums.end(), point) - sums.begin();
        return order[std::min(static_cast<std::size_t>(place), order.size() - 1)];
    }

  private:
    std::vector<std::size_t> order;
    std::vector<double> sums;
};

}  // namespace

std::string_view nameOf(Shape shape) {
    static constexpr std::string_view names[] = {"fids", "issues", "adversarial"};
    return names[static_cast<std::size_t>(shape)];
}

std::string_view keyOf(Shape shape, std::string_view text) {
    auto const between = [&](std::size_t begin, std::size_t end) {
        return text.substr(begin, end - begin);
    };
    switch (shape) {
    case Shape::fids:
        return between(text.find('=') + 1, text.find(','));
    case Shape::issues:
        return between(0, text.find('\222') + 3);
    case Shape::adversarial:
        break;
    }
    return between(text.rfind('=') + 1, text.size() - 1);
}

std::vector<Entry> makeDictionary(Shape shape, std::size_t size, std::uint64_t seed) {
    Random random(seed);
    auto const companions = size / 20;
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < size - companions; ++i)
        entries.push_back(makeEntry(shape, i));
    std::shuffle(entries.begin(), entries.end(), random);
    for (std::size_t i = 0; i < companions; ++i)
        entries.push_back(companionOf(entries[i]));
    return entries;
}

Stream::Stream(Shape shape, std::vector<Entry> const& entries, std::size_t size,
               std::uint64_t seed) {
    Random random(seed + 1);
    std::vector<std::size_t> single;
    std::vector<std::size_t> several;
    auto const companions = entries.size() / 20;
    for (std::size_t i = 0; i < entries.size() - companions; ++i)
        (i < companions ? several : single).push_back(i);
    Popularity const ones(single, random);
    Popularity const companioned(several, random);

    std::vector<std::size_t> sizes;
    while (sizes.size() < size) {
        auto const kind = below(random, 20);
        auto const& entry = entries[(kind == 0 ? companioned : ones).pick(random)];
        // A knob or a lever sends a burst; a button is pressed once.
        for (auto burst = 1 + below(random, 9); burst > 0 && sizes.size() < size; --burst) {
            auto const text = kind == 1 ? missOf(shape, entry, random) : textOf(entry, random);
            block += text;
            sizes.push_back(text.size());
        }
    }
    std::size_t begin = 0;
    for (auto const length : sizes) {
        views.push_back(std::string_view(block).substr(begin, length));
        begin += length;
    }
}

}  // namespace bench
