#include "conversion/DictionaryCheck.h"

#include "conversion/CPLMarshallerKeywords.h"
#include "conversion/DeviceIdentifierTable.h"
#include "conversion/DictionaryForms.h"
#include "conversion/DictionaryTemplateCheck.h"
#include "cpl/DataValue.h"
#include "foundation/Exceptions.h"
#include "foundation/NumberText.h"
#include "template/TemplateParser.h"
#include "xml/DOMSearch.h"
#include "xml/XMLText.h"

#include <algorithm>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace FrameDriver::XML {
namespace {

using Conversion::Keyword;
using ErrorManagement::Exception::IllegalArgumentException;
using xercesc::DOMElement;

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string nameOf(DOMElement const& element) { return quoted(toBytes(element.getTagName())); }

/// Whether the text says now what it will be when it is used.
bool isLiteral(std::string_view text) { return text.find_first_of("{(") == std::string_view::npos; }

/// What `action` throws, as a text; empty if it throws nothing.
template <typename Action>
std::string failureOf(Action&& action) {
    try {
        action();
        return "";
    } catch (std::exception const& exception) {
        return exception.what();
    } catch (IllegalArgumentException const* exception) {
        // Hexadecimal numbers that can't be read come this way.
        std::unique_ptr<IllegalArgumentException const> const owned(exception);
        return owned->what();
    }
}

/// One dictionary, form by form.
class Checker {
  public:
    explicit Checker(std::string const& path) : document(path) {}

    void check() {
        if (auto const& complaint = document.complaint()) {
            findings.push_back({DictionaryFinding::fatal, complaint->position, complaint->message,
                                document.line(complaint->position.line)});
            return;
        }
        DOMElement const* const root = documentElement(document.get());
        if (!firstElement(root, u"conversion"))
            report(*root, "the file holds no \"conversion\"");
        forEachElement(root, u"conversion",
                       [this](DOMElement const& conversion) { checkConversion(conversion); });
        std::stable_sort(findings.begin(), findings.end(), [](auto const& left, auto const& right) {
            return std::pair(left.position.line, left.position.column) <
                   std::pair(right.position.line, right.position.column);
        });
    }

    std::vector<DictionaryFinding> findings;

  private:
    using Fields = std::vector<FormField>;

    void report(DOMElement const& element, std::string cause,
                DictionaryFinding::Severity severity = DictionaryFinding::passedOver) {
        FilePosition const position = document.positionOf(element);
        findings.push_back({severity, position, std::move(cause), document.line(position.line)});
    }

    void checkConversion(DOMElement const& conversion);
    void checkForm(DOMElement const& form, bool isInput);
    void checkTexts(DOMElement const& form, bool isInput);
    void checkFirst(DOMElement const& form, std::string const& printed);
    void checkSending(DOMElement const& form);
    void checkFields(DOMElement const& form, std::string const& type, Fields const& fields);
    void checkCounts(DOMElement const& form, Fields const& fields);
    void checkField(DOMElement const& field, std::string const& type, FormField::Kind kind);
    void checkText(DOMElement const& field);
    void checkAttribute(DOMElement const& element, char16_t const* name);
    void checkDataType(DOMElement const& element);
    void checkFlag(DOMElement const& flag, std::string const& type);
    void checkItem(DOMElement const& item);
    void checkDevice(DOMElement const& device);
    void checkDeviceFields(DOMElement const& device, Conversion::DeviceIdEncoding const& encoding);

    LocatedDocument document;
    std::map<std::string, DOMElement const*> inputs;  // by the printed template
};

void Checker::checkConversion(DOMElement const& conversion) {
    std::size_t inputCount = 0;
    forEachElement(&conversion, [&](DOMElement const& element, std::u16string_view name) {
        if (name == u"from" || name == u"to")
            checkForm(element, name == u"from");
        inputCount += name == u"from" ? 1 : 0;
    });
    if (inputCount == 0)
        report(conversion, "the conversion has no \"from\" and is passed over");
    if (inputCount > 1)
        report(conversion,
               "the conversion has " + std::to_string(inputCount) + " \"from\" and is passed over");
}

void Checker::checkForm(DOMElement const& form, bool isInput) {
    std::string const type = attributeOf(form, u"xsi:type");
    Fields const fields = formFields(form.getAttribute(u"xsi:type"));
    if (fields.empty()) {
        std::string const what =
            type.empty() ? nameOf(form) + " has no xsi:type" : quoted(type) + " is no form";
        std::string const effect =
            isInput ? ", so the conversion produces nothing" : ", so this output is left out";
        return report(form, what + effect);
    }
    checkFields(form, type, fields);
    checkTexts(form, isInput);
    if (!isInput && type == "cplSetMessage")
        checkSending(form);
}

// As the driver does it, up to the templates themselves.
void Checker::checkTexts(DOMElement const& form, bool isInput) {
    std::string const before = "the driver refuses the whole file for this form: ";
    std::vector<std::string> texts;
    std::string const failure = failureOf([&] { texts = formTexts(form); });
    if (!failure.empty())
        return report(form, before + failure, DictionaryFinding::fatal);
    if (texts.empty())
        report(form, "a range goes from a higher number to a lower one, so the form stands for "
                     "nothing");
    for (std::string const& text : texts) {
        Template::TemplateString source;
        std::string const bad = failureOf([&] { source = Template::TemplateParser::parse(text); });
        if (!bad.empty())
            return report(form, before + bad, DictionaryFinding::fatal);
        if (isInput)
            checkFirst(form, source.toString());
    }
    if (std::any_of(texts.begin(), texts.end(),
                    [](std::string const& text) { return text.find('(') != text.npos; }))
        report(form, "a range is overlooked: see that something stands between two ranges, and "
                     "that a hexadecimal lower bound has the upper one's length");
    for (std::string const& cause : checkTemplate(flatten(form).value_or("")))
        report(form, cause);
}

void Checker::checkFirst(DOMElement const& form, std::string const& printed) {
    auto const [first, isNew] = inputs.emplace(printed, &form);
    if (isNew)
        return;
    FilePosition const position = document.positionOf(*first->second);
    report(form,
           "never answers: the \"from\" on line " + std::to_string(position.line) + " is the same");
}

// The link takes a message without a known type for a mistake of the program's, and is not used
// again after that.
void Checker::checkSending(DOMElement const& form) {
    DOMElement const* const data = onlyElement(&form, u"data");
    std::string const type = data ? attributeOf(*data, u"datatype") : "";
    if (isLiteral(type) && CPL::dataTypeOf(type) == CPL::NoValue)
        report(data ? *data : form,
               "a set message without a value of a known type can't be sent, and blocks the "
               "driver's link to the frame",
               DictionaryFinding::fatal);
}

void Checker::checkFields(DOMElement const& form, std::string const& type, Fields const& fields) {
    checkCounts(form, fields);
    for (auto* child = form.getFirstElementChild(); child; child = child->getNextElementSibling()) {
        auto const field = std::find_if(fields.begin(), fields.end(), [&](FormField const& known) {
            return known.name == child->getTagName();
        });
        if (field == fields.end())
            report(*child, nameOf(*child) + " is no field of " + quoted(type));
        else
            checkField(*child, type, field->kind);
    }
}

void Checker::checkCounts(DOMElement const& form, Fields const& fields) {
    for (FormField const& field : fields) {
        if (field.kind == FormField::parameters || field.kind == FormField::members)
            continue;
        std::vector<DOMElement const*> found;
        forEachElement(&form, field.name,
                       [&](DOMElement const& element) { found.push_back(&element); });
        if (found.size() > 1)
            report(*found[1], nameOf(*found[1]) + " stands " + std::to_string(found.size()) +
                                  " times in its form, so none of them counts");
    }
}

void Checker::checkField(DOMElement const& field, std::string const& type, FormField::Kind kind) {
    switch (kind) {
    case FormField::text:
        checkText(field);
        if (toBytes(field.getTagName()) == "flag")
            checkFlag(field, type);
        break;
    case FormField::typedData:
        checkText(field);
        checkDataType(field);
        break;
    case FormField::sizedData:
        checkText(field);
        checkAttribute(field, u"size");
        break;
    case FormField::parameters:
        checkText(field);
        checkAttribute(field, u"name");
        break;
    case FormField::device:
        checkDevice(field);
        break;
    case FormField::item:
        checkItem(field);
        break;
    case FormField::members:
        checkFields(field, "subscription", formFields(u"cplParameterSubscription"));
        break;
    }
}

void Checker::checkText(DOMElement const& field) {
    if (DOMElement const* const inside = field.getFirstElementChild())
        report(*inside,
               nameOf(*inside) + " stands inside " + nameOf(field) + ", where text alone counts");
}

void Checker::checkAttribute(DOMElement const& element, char16_t const* name) {
    if (!element.hasAttribute(name))
        report(element, nameOf(element) + " has no attribute " + quoted(toBytes(name)));
}

void Checker::checkDataType(DOMElement const& element) {
    checkAttribute(element, u"datatype");
    std::string const type = attributeOf(element, u"datatype");
    if (!type.empty() && isLiteral(type) && CPL::dataTypeOf(type) == CPL::NoValue)
        report(element, quoted(type) + " is no type of a value");
}

void Checker::checkFlag(DOMElement const& flag, std::string const& type) {
    bool const isSetFlag = type == "cplSetMessage" || type == "cplParameterIssue";
    std::span<Keyword const> const words =
        isSetFlag ? std::span<Keyword const>(Conversion::setFlagWords)
                  : std::span<Keyword const>(Conversion::subscriptionFlagWords);
    std::string const text = textOf(&flag);
    bool const known = std::any_of(words.begin(), words.end(),
                                   [&](Keyword const& keyword) { return keyword.word == text; });
    // The driver writes that word into an issue itself.
    bool const heard = type == "cplParameterIssue" && text == Conversion::invalidSetFlagWord;
    if (isLiteral(text) && !known && !heard)
        report(flag, quoted(text) + " is no flag of " + quoted(type));
}

void Checker::checkItem(DOMElement const& item) {
    constexpr std::u16string_view texts[] = {u"itemId", u"status", u"nextItemId"};
    Fields fields;
    for (std::u16string_view const name : texts)
        fields.push_back({name, FormField::text});
    fields.push_back({u"parameter", FormField::parameters});
    checkFields(item, "item", fields);
    forEachElement(&item, u"parameter",
                   [this](DOMElement const& parameter) { checkDataType(parameter); });
}

void Checker::checkDevice(DOMElement const& device) {
    DOMElement const* const first = device.getFirstElementChild();
    if (!first || toBytes(first->getTagName()) != "EncodingType")
        return report(device, "\"deviceId\" doesn't begin with \"EncodingType\"");
    std::string const type = textOf(first);
    std::int32_t number = 0;
    if (!isLiteral(type))
        return;
    auto const* const encoding =
        Tools::readHexInt32(type, number) ? Conversion::deviceIdEncoding(number) : nullptr;
    if (!encoding)
        return report(*first, quoted(type) + " is no encoding of device identifiers");
    checkDeviceFields(device, *encoding);
}

void Checker::checkDeviceFields(DOMElement const& device,
                                Conversion::DeviceIdEncoding const& encoding) {
    auto const fields = encoding.fields();
    DOMElement const* child = device.getFirstElementChild();
    while ((child = child->getNextElementSibling())) {
        std::string const name = toBytes(child->getTagName());
        checkText(*child);
        if (std::none_of(fields.begin(), fields.end(), [&](auto const& field) {
                return field.name == name || field.nameRead() == name;
            }))
            report(*child, quoted(name) + " is no field of this encoding of device identifiers");
    }
}

/// Tabs stay, so that the mark stands below its place whatever the terminal makes of them.
std::string markBelow(std::string const& line, std::uint32_t column) {
    std::string mark;
    std::uint32_t characters = 1;
    for (char const byte : line) {
        bool const continues = (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
        if (continues)
            continue;
        if (characters++ >= column)
            break;
        mark += byte == '\t' ? '\t' : ' ';
    }
    return mark + '^';
}

}  // namespace

std::vector<DictionaryFinding> checkDictionary(std::string const& path) {
    Checker checker(path);
    checker.check();
    return std::move(checker.findings);
}

std::string toText(std::string const& path, DictionaryFinding const& finding) {
    auto const [line, column] = finding.position;
    std::string text = path;
    if (line > 0)
        text += ':' + std::to_string(line) + ':' + std::to_string(column);
    text += finding.severity == DictionaryFinding::fatal ? ": error: " : ": warning: ";
    text += finding.cause + '\n';
    if (line > 0)
        text += finding.line + '\n' + markBelow(finding.line, column) + '\n';
    return text;
}

}  // namespace FrameDriver::XML
