#include "sims/frame/OtherHands.h"

#include "platform/cplclient/CPLTypes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace FrameSim {
namespace {

using std::chrono::duration_cast;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr double otherwiseHighest = 100;  // of a real value without bounds

struct Bounds {
    std::int64_t lowest;
    std::int64_t highest;
};

Bounds integerBounds(Parameter const& parameter) {
    auto const* type = findType(static_cast<std::int32_t>(parameter.value.type));
    Bounds bounds{type->lowest, type->highest};
    auto const& range = parameter.range;
    if (range.minimum) {
        bounds.lowest = std::max(bounds.lowest, static_cast<std::int64_t>(*range.minimum));
    }
    if (range.maximum) {
        bounds.highest = std::min(bounds.highest, static_cast<std::int64_t>(*range.maximum));
    }
    return bounds;
}

Value chosen(Parameter const& parameter, std::mt19937& chance) {
    auto const type = parameter.value.type;
    auto const number = static_cast<std::int64_t>(chance());
    switch (parameter.value.form()) {
    case ValueForm::integer: {
        auto const [lowest, highest] = integerBounds(parameter);
        return Value::ofInteger(type, lowest + number % (highest - lowest + 1));
    }
    case ValueForm::boolean:
        return Value::ofBool(number % 2 != 0);
    case ValueForm::real: {
        auto const lowest = parameter.range.minimum.value_or(0);
        auto const span = parameter.range.maximum.value_or(otherwiseHighest) - lowest;
        return Value::ofReal(
            type, static_cast<float>(lowest + span * static_cast<double>(number % 1001) / 1000));
    }
    case ValueForm::text:
        return Value::ofText("operator " + std::to_string(number % 1000));
    default:
        return parameter.value;
    }
}

/// Another value than the present one, if there is any.
Value following(Parameter const& parameter, std::uint32_t count) {
    auto const& present = parameter.value;
    switch (present.form()) {
    case ValueForm::integer: {
        auto const [lowest, highest] = integerBounds(parameter);
        auto const next = present.integer() + 1;
        return Value::ofInteger(present.type, next > highest ? lowest : next);
    }
    case ValueForm::boolean:
        return Value::ofBool(!present.boolean());
    case ValueForm::real: {
        auto const lowest = static_cast<float>(parameter.range.minimum.value_or(0));
        auto const highest = parameter.range.maximum.value_or(otherwiseHighest);
        return Value::ofReal(present.type,
                             present.real() == lowest ? static_cast<float>(highest) : lowest);
    }
    case ValueForm::text:
        return Value::ofText("flood " + std::to_string(count));
    default:
        return present;
    }
}

}  // namespace

void Pace::begin(std::uint32_t perSecond, TimePoint now, std::optional<TimePoint> end) {
    rate = perSecond;
    start = now;
    done = 0;
    last = end;
}

std::uint32_t Pace::times(TimePoint now) {
    if (rate == 0) {
        return 0;
    }
    auto const upTo = last ? std::min(now, *last) : now;
    auto const passed = duration_cast<nanoseconds>(upTo - start).count();
    auto const all = static_cast<std::uint64_t>(static_cast<double>(passed) * 1e-9 * rate);
    auto const missing = all > done ? all - done : 0;
    done = std::max(all, done);
    auto const most = std::uint64_t{rate};
    if (last && now >= *last) {
        rate = 0;
    }
    return static_cast<std::uint32_t>(std::min(missing, most));
}

std::optional<TimePoint> Pace::nextDue() const {
    if (rate == 0) {
        return std::nullopt;
    }
    auto const due = start + nanoseconds(static_cast<std::int64_t>(
                                 std::ceil(static_cast<double>(done + 1) * 1e9 / rate)));
    return last ? std::min(due, *last) : due;
}

void OtherHands::flood(Flood const& wanted, TimePoint now) {
    flooded = wanted.parameter;
    floodPace.begin(wanted.perSecond, now, now + wanted.time);
}

void OtherHands::operate(std::uint32_t perSecond, std::uint32_t seed, TimePoint now) {
    chance.seed(seed);
    operatorPace.begin(perSecond, now, std::nullopt);
}

void OtherHands::work(Frame& frame, TimePoint now) {
    for (auto left = floodPace.times(now); left > 0; --left) {
        floodOnce(frame);
    }
    for (auto left = operatorPace.times(now); left > 0; --left) {
        operateOnce(frame);
    }
}

std::optional<TimePoint> OtherHands::nextDue() const {
    auto const flood = floodPace.nextDue();
    auto const operation = operatorPace.nextDue();
    return flood && operation ? std::min(flood, operation) : flood ? flood : operation;
}

std::vector<ParameterKey> const& OtherHands::keys(Frame const& frame) {
    if (!writable) {
        writable.emplace();
        frame.look([this](FrameModel const& model) {
            for (auto const& [key, parameter] : model.allParameters()) {
                if (!parameter.readOnly) {
                    writable->push_back(key);
                }
            }
        });
    }
    return *writable;
}

void OtherHands::floodOnce(Frame& frame) {
    auto const& all = keys(frame);
    if (all.empty() && !flooded) {
        return;
    }
    auto const key = flooded ? *flooded : all[floodCount % all.size()];
    ++floodCount;
    std::optional<Value> next;
    frame.look([&](FrameModel const& model) {
        if (auto const* parameter = model.find(key)) {
            next = following(*parameter, floodCount);
        }
    });
    if (next) {
        frame.assign(key, std::move(*next));
    }
}

void OtherHands::operateOnce(Frame& frame) {
    auto const& all = keys(frame);
    if (all.empty()) {
        return;
    }
    auto const key = all[chance() % all.size()];
    std::optional<Value> next;
    frame.look([&](FrameModel const& model) {
        if (auto const* parameter = model.find(key)) {
            next = chosen(*parameter, chance);
        }
    });
    if (next) {
        frame.set(key, eSetAbsolute, *next);
    }
}

}  // namespace FrameSim
