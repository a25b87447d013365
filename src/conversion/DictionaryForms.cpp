#include "conversion/DictionaryForms.h"

#include "conversion/ClosingByte.h"
#include "conversion/DictionaryRange.h"
#include "xml/DOMSearch.h"
#include "xml/XMLText.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

// Dictionaries have tens of thousands of forms. A form's fields are therefore found in one pass
// over what is below it; a search by tag name per field would make the library walk, and keep
// lists of, the same elements again and again.

namespace FrameDriver::XML {
namespace {

using Conversion::closingByte;
using xercesc::DOMElement;

// The names of all fields of all forms.
constexpr std::array<std::u16string_view, 18> fieldNames{
    u"id",   u"value",  u"parameter", u"name",       u"paramId",    u"deviceId",
    u"data", u"flag",   u"eventId",   u"listId",     u"number",     u"action",
    u"item", u"itemId", u"status",    u"nextItemId", u"listNumber", u"subscription"};

using Field = std::size_t;

/// The place of a name in the table; one that isn't there doesn't compile.
consteval Field field(std::u16string_view name) {
    for (Field place = 0; place < fieldNames.size(); ++place)
        if (fieldNames[place] == name)
            return place;
    throw "no field of that name";
}

/// What stands below an element, by field.
class Fields {
  public:
    explicit Fields(DOMElement const& searched) : root(searched) {
        forEachElement(&root, [this](DOMElement& found, std::u16string_view name) {
            for (Field place = 0; place < fieldNames.size(); ++place)
                if (name == fieldNames[place])
                    slots[place].add(found);
        });
    }

    /// The field's element if there is exactly one, or null.
    DOMElement const* only(Field place) const {
        return slots[place].count == 1 ? slots[place].element : nullptr;
    }

    /// Calls `visit` with each element of the field.
    template <typename Visit>
    void forEach(Field place, Visit&& visit) const {
        if (slots[place].count > 0)
            forEachElement(&root, fieldNames[place], std::forward<Visit>(visit));
    }

  private:
    struct Slot {
        void add(DOMElement const& found) {
            element = &found;
            ++count;
        }

        DOMElement const* element = nullptr;  // the last
        std::size_t count = 0;
    };

    DOMElement const& root;
    std::array<Slot, fieldNames.size()> slots;
};

/// One piece of a form's text.
struct Piece {
    void (*append)(std::string& text, Fields const& fields, Piece const& piece);
    Field place;
    std::string_view before = {};
    std::string_view behind = {};
};

void appendField(std::string& text, Fields const& fields, Piece const& piece) {
    DOMElement const* const element = fields.only(piece.place);
    if (!element)
        return;
    text += piece.before;
    appendText(text, element);
    text += piece.behind;
}

/// ", " ahead of all but the first of a list.
class Separator {
  public:
    void append(std::string& text) {
        if (!first)
            text += ", ";
        first = false;
    }

  private:
    bool first = true;
};

void appendDeviceId(std::string& text, Fields const& fields, Piece const& piece) {
    DOMElement const* const element = fields.only(piece.place);
    if (!element)
        return;
    text += ", did=[";
    Separator separator;
    for (auto* child = element->getFirstElementChild(); child;
         child = child->getNextElementSibling()) {
        separator.append(text);
        appendBytes(text, child->getTagName());
        text += '=';
        appendText(text, child);
    }
    text += closingByte;
}

/// The label is that of the attribute.
void appendAttributeAndValue(std::string& text, DOMElement const& element, std::string_view label,
                             char16_t const* attribute) {
    text += label;
    appendAttribute(text, element, attribute);
    text += ", value=";
    appendText(text, &element);
    text += closingByte;
}

void appendTypedData(std::string& text, Fields const& fields, Piece const& piece) {
    if (DOMElement const* const element = fields.only(piece.place))
        appendAttributeAndValue(text, *element, ", data=[type=", u"datatype");
}

void appendSizedData(std::string& text, Fields const& fields, Piece const& piece) {
    if (DOMElement const* const element = fields.only(piece.place))
        appendAttributeAndValue(text, *element, ", data=[size=", u"size");
}

void appendFIDParameters(std::string& text, Fields const& fields, Piece const& piece) {
    text += "data=[";
    Separator separator;
    fields.forEach(piece.place, [&](DOMElement const& parameter) {
        separator.append(text);
        appendAttribute(text, parameter, u"name");
        text += '=';
        appendText(text, &parameter);
    });
    text += closingByte;
}

constexpr Piece itemPieces[] = {
    {appendField, field(u"itemId"), "itemId=", ", "},
    {appendField, field(u"status"), "status=", ", "},
    {appendField, field(u"nextItemId"), "nextItemId=", ""},
};

void appendItemParameter(std::string& text, DOMElement const& parameter) {
    text += "param=[name=";
    appendAttribute(text, parameter, u"name");
    appendAttributeAndValue(text, parameter, ", data=[type=", u"datatype");
    text += closingByte;
}

void appendItem(std::string& text, Fields const& fields, Piece const& piece) {
    text += ", item=[";
    if (DOMElement const* const item = fields.only(piece.place)) {
        Fields const itemFields(*item);
        for (Piece const& part : itemPieces)
            part.append(text, itemFields, part);
        itemFields.forEach(field(u"parameter"), [&](DOMElement const& parameter) {
            text += ", ";
            appendItemParameter(text, parameter);
        });
    }
    text += closingByte;
}

struct Form {
    std::u16string_view type;
    std::string_view tag;
    std::span<Piece const> pieces;
};

std::string formText(Form const& form, DOMElement const& element) {
    Fields const fields(element);
    std::string text(form.tag);
    for (Piece const& piece : form.pieces)
        piece.append(text, fields, piece);
    return text;
}

constexpr Piece parameterSubscription[] = {
    {appendField, field(u"paramId"), "pid=", ""},
    {appendDeviceId, field(u"deviceId")},
    {appendField, field(u"flag"), ", flag=", ""},
};

constexpr Form parameterSubscriptionForm{u"cplParameterSubscription",
                                         "Parameter Subscription: ", parameterSubscription};

// A range in a member makes as many members, and doesn't multiply the batch.
void appendMembers(std::string& text, Fields const& fields, Piece const& piece) {
    fields.forEach(piece.place, [&](DOMElement const& subscription) {
        for (std::string const& member :
             expandForm(formText(parameterSubscriptionForm, subscription))) {
            text += '|';
            text += member;
        }
    });
}

/// A flag inside a member counts for the batch, as fields are found at any depth.
void appendBatchFlag(std::string& text, Fields const& fields, Piece const& piece) {
    if (fields.only(piece.place))
        appendField(text, fields, piece);
    else
        text += "| flag=append";
}

constexpr Piece fid[] = {
    {appendField, field(u"id"), "id=", ", "},
    {appendFIDParameters, field(u"parameter")},
};
constexpr Piece sid[] = {
    {appendField, field(u"id"), "id=", ", "},
    {appendField, field(u"value"), "value=", ""},
};
constexpr Piece tid[] = {
    {appendField, field(u"id"), "id=", ", "},
    {appendField, field(u"parameter"), "parameter=", ""},
};
constexpr Piece context[] = {
    {appendField, field(u"name"), "name=", ", "},
    {appendField, field(u"value"), "value=", ""},
};
// Without "pid=", alone among the forms; its reader takes both.
constexpr Piece setMessage[] = {
    {appendField, field(u"paramId"), {}, {}},
    {appendDeviceId, field(u"deviceId")},
    {appendTypedData, field(u"data")},
    {appendField, field(u"flag"), ", flag=", ""},
};
constexpr Piece parameterIssue[] = {
    {appendField, field(u"paramId"), "pid=", ""},
    {appendDeviceId, field(u"deviceId")},
    {appendTypedData, field(u"data")},
    {appendField, field(u"flag"), ", flag=", ""},
};
constexpr Piece sendEventMessage[] = {
    {appendField, field(u"eventId"), "eid=", ""},
    {appendDeviceId, field(u"deviceId")},
    {appendSizedData, field(u"data")},
};
constexpr Piece setListMessage[] = {
    {appendField, field(u"listId"), "lid=", ""},
    {appendDeviceId, field(u"deviceId")},
    {appendField, field(u"number"), ", number=", ""},
    {appendField, field(u"action"), ", action=", ""},
    {appendItem, field(u"item")},
};
constexpr Piece listIssue[] = {
    {appendField, field(u"listId"), "lid=", ""},
    {appendDeviceId, field(u"deviceId")},
    {appendField, field(u"number"), ", number=", ""},
    {appendItem, field(u"item")},
};
constexpr Piece listSubscription[] = {
    {appendField, field(u"listId"), "lid=", ""},
    {appendField, field(u"listNumber"), ", number=", ""},
    {appendDeviceId, field(u"deviceId")},
    {appendField, field(u"flag"), ", flag=", ""},
};
constexpr Piece batchSubscription[] = {
    {appendMembers, field(u"subscription")},
    {appendBatchFlag, field(u"flag"), "| flag=", ""},
};

constexpr Form forms[] = {
    {u"fid", "FID: ", fid},
    {u"sid", "SID: ", sid},
    {u"tid", "TID: ", tid},
    {u"dfid", "DFID: ", fid},
    {u"context", "Context: ", context},
    {u"cplSetMessage", "Set Message: ", setMessage},
    {u"cplSendEventMessage", "Send Event Message: ", sendEventMessage},
    {u"cplSetListMessage", "Set List Message: ", setListMessage},
    {u"cplParameterIssue", "Parameter Issue: ", parameterIssue},
    {u"cplListIssue", "List Issue: ", listIssue},
    parameterSubscriptionForm,
    {u"cplListSubscription", "List Subscription: ", listSubscription},
    {u"cplBatchSubscription", "Batch Subscription: ", batchSubscription},
};

/// Null for an unknown type.
Form const* formOf(std::u16string_view type) {
    for (Form const& form : forms)
        if (form.type == type)
            return &form;
    return nullptr;
}

FormField::Kind kindOf(Piece const& piece) {
    constexpr std::pair<decltype(Piece::append), FormField::Kind> kinds[] = {
        {appendField, FormField::text},          {appendBatchFlag, FormField::text},
        {appendDeviceId, FormField::device},     {appendTypedData, FormField::typedData},
        {appendSizedData, FormField::sizedData}, {appendFIDParameters, FormField::parameters},
        {appendItem, FormField::item},           {appendMembers, FormField::members},
    };
    for (auto const& [append, kind] : kinds)
        if (append == piece.append)
            return kind;
    return FormField::text;
}

}  // namespace

std::optional<std::string> flatten(DOMElement const& form) {
    Form const* const known = formOf(form.getAttribute(u"xsi:type"));
    return known ? std::optional(formText(*known, form)) : std::nullopt;
}

std::vector<FormField> formFields(std::u16string_view type) {
    std::vector<FormField> fields;
    if (Form const* const form = formOf(type))
        for (Piece const& piece : form->pieces)
            fields.push_back({fieldNames[piece.place], kindOf(piece)});
    return fields;
}

std::vector<std::string> formTexts(DOMElement const& form) {
    std::optional<std::string> text = flatten(form);
    return text ? expandForm(std::move(*text)) : std::vector<std::string>();
}

}  // namespace FrameDriver::XML
