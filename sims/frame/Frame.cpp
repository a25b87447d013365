#include "sims/frame/Frame.h"

#include "platform/cplclient/CPLTypes.h"

#include <cmath>
#include <utility>

namespace FrameSim {
namespace {

Outcome refused(std::string cause) { return {eStatusRefused, std::move(cause)}; }

/// The value as the parameter's type, if it may be set by one of `value`'s type.
std::optional<Value> fitted(Value const& value, DataType wanted) {
    if (value.type == wanted) {
        return value;
    }
    auto const* info = findType(wanted);
    if (value.type == DataType::Float && info && info->form == ValueForm::real) {
        return Value::ofReal(wanted, value.real());
    }
    if (value.type == DataType::Int16 && wanted == DataType::State) {
        return Value::ofInteger(wanted, static_cast<std::uint16_t>(value.integer()));
    }
    return std::nullopt;
}

std::optional<Value> sum(Value const& present, Value const& step) {
    if (present.form() == ValueForm::integer && step.form() == ValueForm::integer) {
        return Value::ofInteger(present.type, present.integer() + step.integer());
    }
    auto const real = fitted(step, present.type);
    if (present.form() == ValueForm::real && real) {
        return Value::ofReal(present.type, present.real() + real->real());
    }
    return std::nullopt;
}

bool isNumberless(Value const& value) {
    return value.form() == ValueForm::real && !std::isfinite(value.real());
}

/// What a set makes of a parameter; nothing if the two don't go together.
std::optional<Value> target(Parameter const& parameter, std::int32_t flag, Value const& value) {
    switch (flag) {
    case eSetAbsolute:
        return fitted(value, parameter.value.type);
    case eSetRelative:
        return sum(parameter.value, value);
    case eSetDefault:
    case eSetFactoryDefault:
        return parameter.start;
    case eSetToggle:
        if (parameter.value.form() == ValueForm::boolean) {
            return Value::ofBool(!parameter.value.boolean());
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

}  // namespace

Frame::Frame(FrameModel start)
    : model(std::move(start)), behaviour(makeBehaviour(model.behaviour)) {
    behaviour->start(model);
    model.takeChanges();
}

/// One operation with all its consequences, then the news of it.
template <typename Operation>
auto Frame::run(Operation operation) {
    std::unique_lock lock(mutex);
    auto result = operation();
    bool const news = model.hasChanges();
    lock.unlock();
    if (news && changeHook) {
        changeHook();
    }
    return result;
}

Outcome Frame::set(ParameterKey key, std::int32_t flag, Value const& value) {
    return run([&]() -> Outcome {
        auto const* parameter = model.find(key);
        if (!parameter) {
            return refused("no such parameter");
        }
        if (parameter->readOnly) {
            return refused("read only");
        }
        auto next = target(*parameter, flag, value);
        if (!next || isNumberless(*next)) {
            return refused("wrong type or set flag");
        }
        Value const before = parameter->value;
        model.assign(key, std::move(*next));
        if (!(parameter->value == before)) {
            behaviour->changed(model, key);
        }
        return {};
    });
}

Outcome Frame::event(EventKey key, std::string_view data) {
    return run([&]() -> Outcome {
        auto const* known = model.find(key);
        if (!known) {
            return refused("no such event");
        }
        if (data.size() != known->dataSize) {
            return refused("event data of the wrong size");
        }
        return behaviour->event(model, key, data) ? Outcome{} : refused("not possible");
    });
}

Outcome Frame::writeList(std::int32_t action, ListKey key, std::uint32_t itemId,
                         std::string_view fields) {
    return run([&]() -> Outcome {
        auto const* list = model.find(key);
        if (!list || !list->writable) {
            return refused(list ? "read only" : "no such list");
        }
        if (action == deleteItem) {
            return model.removeItem(key, itemId) ? Outcome{} : refused("no such item");
        }
        if (action != insertItem && action != modifyItem) {
            return refused("no such action");
        }
        if (action == modifyItem && !list->holds(itemId)) {
            return refused("no such item");
        }
        if (!list->holds(itemId) && list->items.size() >= mostListItems) {
            return refused("the list is full");
        }
        auto read = readFields(*findListLayout(key.lid), fields);
        if (!read) {
            return refused("fields of the wrong form");
        }
        model.putItem(key, {.itemId = itemId, .fields = std::move(*read)});
        return {};
    });
}

bool Frame::assign(ParameterKey key, Value value) {
    return run([&] { return model.assign(key, std::move(value)); });
}

bool Frame::putItem(ListKey key, ListItem item) {
    return run([&] { return model.putItem(key, std::move(item)); });
}

std::optional<Value> Frame::value(ParameterKey key) const {
    std::lock_guard const lock(mutex);
    auto const* parameter = model.find(key);
    return parameter ? std::optional(parameter->value) : std::nullopt;
}

std::optional<DataType> Frame::typeOf(ParameterKey key) const {
    auto const present = value(key);
    return present ? std::optional(present->type) : std::nullopt;
}

std::optional<std::vector<ListItem>> Frame::items(ListKey key) const {
    std::lock_guard const lock(mutex);
    auto const* list = model.find(key);
    return list ? std::optional(list->items) : std::nullopt;
}

std::vector<Line> Frame::dump(std::string_view part) const {
    std::lock_guard const lock(mutex);
    return model.dump(part);
}

std::string Frame::name() const {
    std::lock_guard const lock(mutex);
    return model.name;
}

void Frame::look(std::function<void(FrameModel const&)> const& reader) const {
    std::lock_guard const lock(mutex);
    reader(model);
}

bool Frame::restart(std::optional<FrameModel> other, std::vector<ParameterChange> const& values) {
    std::lock_guard const lock(mutex);
    auto next = other ? std::move(*other) : model;
    for (auto const& [key, value] : values) {
        if (!next.assign(key, value)) {
            return false;
        }
    }
    model = std::move(next);
    behaviour = makeBehaviour(model.behaviour);
    behaviour->start(model);
    model.takeChanges();
    return true;
}

bool Frame::busy() const {
    std::lock_guard const lock(mutex);
    return behaviour->busy();
}

double Frame::fieldRate() const {
    std::lock_guard const lock(mutex);
    return behaviour->fieldRate(model);
}

void Frame::advanceFields(int count) {
    run([&] {
        for (int i = 0; i < count && behaviour->busy(); ++i) {
            behaviour->field(model);
        }
        return true;
    });
}

std::vector<Change> Frame::takeChanges() {
    return takeChanges([](FrameModel const&) {});
}

std::vector<Change> Frame::takeChanges(std::function<void(FrameModel const&)> const& look) {
    std::lock_guard const lock(mutex);
    look(model);
    return model.takeChanges();
}

}  // namespace FrameSim
