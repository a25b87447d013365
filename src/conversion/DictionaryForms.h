#pragma once

#include "xml/XercesFwd.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The typed XML forms of the conversion dictionaries, and the text that each stands for.
///
/// A form is a `from` or `to` element; its `xsi:type` is one of "fid", "dfid", "sid", "tid",
/// "context", "cplSetMessage", "cplParameterIssue", "cplSendEventMessage", "cplSetListMessage",
/// "cplListIssue", "cplParameterSubscription", "cplListSubscription" and "cplBatchSubscription".
/// Its fields are elements at any depth below it. A field counts only if exactly one element of
/// its name stands there, and its text is taken as it is; otherwise its text is left out, labels
/// and separators included, and nothing is reported.
///
/// The texts are those that the marshallers of this folder read and write. Thread: the
/// document's.
namespace FrameDriver::XML {

/// The text of a form, ranges as they stand; the members of a batch are expanded. Nothing for an
/// unknown type. Throws what expandForm throws, for a member of a batch.
std::optional<std::string> flatten(xercesc::DOMElement const& form);

/// A field of a form, for whoever checks what authors write.
struct FormField {
    enum Kind {
        text,        ///< text alone
        device,      ///< an element for each field of a device identifier
        typedData,   ///< text with the attribute `datatype`
        sizedData,   ///< text with the attribute `size`
        parameters,  ///< any number of them, text with the attribute `name`
        item,        ///< a list item: `itemId`, `status`, `nextItemId` and `parameter` elements,
                     ///< these with the attributes `name` and `datatype`
        members      ///< any number of them, with the fields of a "cplParameterSubscription"
    };

    std::u16string_view name;
    Kind kind;
};

/// The fields of a form in the order of its text; none for an unknown type, which every known
/// one has.
std::vector<FormField> formFields(std::u16string_view type);

/// All texts that the form stands for: flattened and expanded. None for an unknown type.
std::vector<std::string> formTexts(xercesc::DOMElement const& form);

}  // namespace FrameDriver::XML
