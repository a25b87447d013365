#include "conversion/ConversionPlan.h"

#include "template/ContextString.h"
#include "template/Variable.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

// Taking a text apart. A match seeks each literal behind the one before; a capture ends where the
// literal behind it stands first in the *whole* text. The second place is never behind the
// first, so the search from the start serves both unless it ends too early; only then the match
// has to seek again. What a capture starts at is counted, not found: the lengths of the literals
// and captures ahead of it. It never lies behind the place that the match has reached, so with
// all literals found every capture lies within the text.
//
// Putting a result together. Literals and bare variables are copied from the block and the text.
// Only decorators and context strings are asked themselves, and they want a map of the variables.

namespace FrameDriver::Conversion {

namespace {

constexpr auto none = std::string_view::npos;

// What a decorated value or a state's text is likely to need in a result.
constexpr std::size_t likelyTextSize = 16;

std::uint32_t narrow(std::size_t size) { return static_cast<std::uint32_t>(size); }

// Endings that only a number tells apart ("ITEM=17") differ in their last eight bytes, which are
// compared at once.
bool endsWith(std::string_view text, std::string_view ending) {
    std::uint64_t last = 0;
    std::uint64_t wanted = 0;
    if (ending.size() >= sizeof wanted && text.size() >= ending.size()) {
        std::memcpy(&last, text.data() + text.size() - sizeof last, sizeof last);
        std::memcpy(&wanted, ending.data() + ending.size() - sizeof wanted, sizeof wanted);
    }
    return last == wanted && text.ends_with(ending);
}

std::string_view nameOf(Template::Segment const& segment) {
    return static_cast<Template::Variable const&>(segment).nameText();
}

// A variable without decorators; a context string prints differently.
bool isBare(std::string_view printed, std::string_view name) {
    return printed.size() == name.size() + 3 && printed.starts_with("{@");
}

}  // namespace

class ConversionPlan::Builder {
  public:
    Builder(Template::TemplateString const& from, std::vector<Template::TemplateString> const& to)
        : source(std::make_unique<Source>(Source{from, to, {}})) {
        for (auto const* segment : source->from.getSegments())
            addPiece(*segment);
        for (auto const& result : source->to)
            addResult(result);
    }

    std::size_t blockSize() const {
        return sizeof(ConversionPlan) + pieces.size() * sizeof(Piece) +
               steps.size() * sizeof(Step) + bytes.size();
    }

    std::unique_ptr<Source> source;
    std::vector<Piece> pieces;
    std::vector<Step> steps;
    std::string bytes;
    std::vector<std::string_view> names;  // of the variables of `from`

  private:
    void addPiece(Template::Segment const& segment) {
        bool const literal = !segment.isVariable();
        auto const text = literal ? segment.toString() : std::string(nameOf(segment));
        pieces.push_back({narrow(bytes.size()), narrow(text.size()), literal});
        bytes += text;
        if (!literal)
            names.push_back(nameOf(segment));
    }

    void addResult(Template::TemplateString const& result) {
        startOfResult = steps.size();
        for (auto const* segment : result.getSegments())
            addStep(*segment);
        steps.push_back({Step::Kind::end, 0, 0});
    }

    void addStep(Template::Segment const& segment) {
        auto const printed = segment.toString();
        if (!segment.isVariable())
            return addLiteral(printed);
        auto const name = nameOf(segment);
        if (dynamic_cast<Template::ContextString const*>(&segment))
            return askSegment(segment);
        auto const place = std::find(names.begin(), names.end(), name);
        if (place == names.end())
            // Nothing captures it: it shows as itself, and no decorator runs.
            return addLiteral("{@" + std::string(name) + "}");
        if (!isBare(printed, name))
            return askSegment(segment);
        steps.push_back({Step::Kind::capture, narrow(std::size_t(place - names.begin())), 0});
    }

    void addLiteral(std::string_view text) {
        auto const begin = narrow(bytes.size());
        bytes += text;
        if (steps.size() > startOfResult && steps.back().kind == Step::Kind::literal)
            steps.back().size += narrow(text.size());
        else
            steps.push_back({Step::Kind::literal, begin, narrow(text.size())});
    }

    void askSegment(Template::Segment const& segment) {
        steps.push_back({Step::Kind::segment, narrow(source->segments.size()), likelyTextSize});
        source->segments.push_back(&segment);
    }

    std::size_t startOfResult = 0;
};

// Puts the results of one text together.
struct ConversionPlan::Result {
    ConversionPlan const& plan;
    std::string_view text;
    Captures const& captures;
    Template::ContextStore* context;
    std::optional<Template::VariableMap> map;  // made when the first segment asks for it

    // The result that begins at `step`, which moves on to the next one.
    std::string make(Step const*& step) {
        std::string out;
        out.reserve(sizeFrom(step));
        for (; step->kind != Step::Kind::end; ++step)
            append(*step, out);
        ++step;
        return out;
    }

    std::size_t sizeFrom(Step const* step) const {
        std::size_t size = 0;
        for (; step->kind != Step::Kind::end; ++step)
            size += step->kind == Step::Kind::capture ? captures[step->begin].size : step->size;
        return size;
    }

    void append(Step const& step, std::string& out) {
        if (step.kind == Step::Kind::literal)
            out.append(plan.bytes() + step.begin, step.size);
        else if (step.kind == Step::Kind::capture)
            out.append(text.data() + captures[step.begin].begin, captures[step.begin].size);
        else
            plan.source->segments[step.begin]->appendTo(out, variableMap(), context);
    }

    Template::VariableMap const& variableMap() {
        if (!map) {
            map.emplace();
            std::size_t slot = 0;
            for (std::size_t i = 0; i < plan.pieces; ++i) {
                if (!plan.isLiteral(i))
                    addVariable(plan.bytesOf(plan.pieceAt(i)), captures[slot++]);
            }
        }
        return *map;
    }

    // The first capture of a name stays.
    void addVariable(std::string_view name, Capture const& capture) {
        map->emplace(name, text.substr(capture.begin, capture.size));
    }
};

std::shared_ptr<ConversionPlan const>
ConversionPlan::make(Template::TemplateString const& from,
                     std::vector<Template::TemplateString> const& to) {
    Builder builder(from, to);
    auto* const block = ::operator new(builder.blockSize());
    return std::shared_ptr<ConversionPlan const>(::new (block) ConversionPlan(builder));
}

ConversionPlan::ConversionPlan(Builder& builder)
    : pieces(narrow(builder.pieces.size())),
      variables(narrow(builder.names.size())),
      results(narrow(builder.source->to.size())),
      steps(narrow(builder.steps.size())),
      source(std::move(builder.source)) {
    auto* const firstPiece = reinterpret_cast<Piece*>(this + 1);
    auto* const firstStep = reinterpret_cast<Step*>(firstPiece + pieces);
    for (std::size_t i = 0; i + 1 < builder.pieces.size(); ++i) {
        auto const& piece = builder.pieces[i];
        if (piece.literal && piece.size != 0)
            innerEnds |= markOf(builder.bytes[piece.begin + piece.size - 1]);
    }
    std::copy(builder.pieces.begin(), builder.pieces.end(), firstPiece);
    std::copy(builder.steps.begin(), builder.steps.end(), firstStep);
    std::copy(builder.bytes.begin(), builder.bytes.end(),
              reinterpret_cast<char*>(firstStep + steps));
}

ConversionPlan::Match ConversionPlan::match(SearchedText const& text, Captures& captures) const {
    if (!mayEnd(text))
        return Match::no;
    if (captures.size() < variables)
        captures.resize(variables);
    std::size_t position = 0;  // behind the last literal found
    std::size_t counted = 0;   // the lengths of what is behind us
    std::size_t slot = 0;      // the next capture
    bool open = false;         // whether a variable waits for its end
    for (std::size_t i = 0; i < pieces; ++i) {
        auto const& piece = pieceAt(i);
        if (!piece.literal) {
            captures[slot++] = {counted, 0};  // stays empty if another variable follows
            open = true;
            continue;
        }
        auto const literal = bytesOf(piece);
        auto found = text.find(literal, open ? 0 : position);
        if (open && found != none) {
            auto const end = std::max(found, counted);
            captures[slot - 1].size = end - counted;
            counted = end;
            if (found < position)
                found = text.find(literal, position);
        }
        if (found == none)
            return endsInLiteral() && text.size() <= position ? Match::byEndOnly : Match::no;
        position = found + piece.size;
        counted += piece.size;
        open = false;
    }
    if (open)
        captures[slot - 1].size = text.size() - counted;
    return endsInLiteral() && position < text.size() ? Match::no : Match::yes;
}

// A text that isn't empty and must be used up by literals ends with one of them. Often the final
// one is there for certain (a closing byte); then this says nothing and costs nothing.
bool ConversionPlan::mayEnd(SearchedText const& text) const {
    if (!endsInLiteral() || text.empty() || (innerEnds & markOf(text.view().back())) != 0)
        return true;
    auto const ending = literal(pieces - 1);
    return ending.empty() || (ending.back() == text.view().back() && endsWith(text.view(), ending));
}

bool ConversionPlan::convert(SearchedText const& text, Template::ContextStore* context,
                             std::vector<std::string>& out, Captures& captures) const {
    auto const how = match(text, captures);
    if (how == Match::no)
        return false;
    evaluate(how, text, captures, context, out);
    return true;
}

void ConversionPlan::evaluate(Match how, SearchedText const& text, Captures const& captures,
                              Template::ContextStore* context,
                              std::vector<std::string>& out) const {
    if (how == Match::byEndOnly)
        return evaluateTemplates(text.view(), context, out);
    Result result{*this, text.view(), captures, context, {}};
    auto const* step = stepsBegin();
    for (std::uint32_t i = 0; i < results; ++i)
        out.push_back(result.make(step));
}

// Rare: the captures follow rules of their own where a literal is missing.
void ConversionPlan::evaluateTemplates(std::string_view text, Template::ContextStore* context,
                                       std::vector<std::string>& out) const {
    auto const map = from().extractVariables(text);
    for (auto const& result : to())
        out.push_back(result.evaluate(map, context));
}

bool ConversionPlan::continues(std::size_t piece, SearchedText const& text,
                               std::size_t position) const {
    for (; piece < pieces; ++piece) {
        if (!isLiteral(piece))
            continue;
        position = text.find(literal(piece), position);
        if (position == none)
            return false;
    }
    return true;
}

}  // namespace FrameDriver::Conversion
