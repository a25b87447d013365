#include "sims/frame/Line.h"

#include <type_traits>

namespace FrameSim {
namespace {

std::string shown(LineField::Content const& content) {
    return std::visit(
        [](auto const& each) -> std::string {
            using Each = std::decay_t<decltype(each)>;
            if constexpr (std::is_same_v<Each, Word>) {
                return each.text;
            } else if constexpr (std::is_same_v<Each, std::string>) {
                return quoted(each);
            } else if constexpr (std::is_same_v<Each, bool>) {
                return shownValue(Value::ofBool(each));
            } else if constexpr (std::is_same_v<Each, float>) {
                return shownValue(Value::ofReal(DataType::Float, each));
            } else {
                return std::to_string(each);
            }
        },
        content);
}

std::string shownName(std::string const& name) {
    return name.find(' ') == std::string::npos ? name : quoted(name);
}

}  // namespace

Line& Line::add(std::string_view name, LineField::Content content) & {
    fields.push_back({std::string(name), std::move(content)});
    return *this;
}

Line&& Line::add(std::string_view name, LineField::Content content) && {
    add(name, std::move(content));
    return std::move(*this);
}

Line& Line::number(std::string_view name, std::int64_t number) & { return add(name, number); }

Line& Line::device(std::uint32_t did) & { return add("did", Word{shownDevice(did)}); }

Line& Line::value(Value const& each) & {
    add("type", Word{typeName(each.type)});
    return add("value", lineContent(each));
}

std::string Line::text() const {
    std::string out;
    if (client != 0) {
        out += "#" + std::to_string(client) + " ";
        out += direction == Direction::received ? "< " : direction == Direction::sent ? "> " : "";
    }
    out += what;
    for (auto const& field : fields) {
        out += " " + shownName(field.name) + "=" + shown(field.content);
    }
    return out;
}

LineField::Content lineContent(Value const& value) {
    switch (value.form()) {
    case ValueForm::integer:
        return value.integer();
    case ValueForm::boolean:
        return value.boolean();
    case ValueForm::real:
        return value.real();
    case ValueForm::text:
        return value.text();
    case ValueForm::none:
        break;
    }
    return Word{};
}

}  // namespace FrameSim
