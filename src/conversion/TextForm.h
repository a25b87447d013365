#pragma once

#include "foundation/TextSearch.h"
#include "platform/fid/FIDParameterList.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// What the panel side's text forms have in common. Writers put the text together in one buffer.
/// Readers go by position and rest on first occurrences; they validate nothing. A search that
/// finds nothing answers npos, npos + 1 is the start of the text, and a length that comes out
/// negative reaches to the end; so a text without its delimiters gives garbled or empty fields.
///
/// Nothing is quoted or escaped: a name or value that holds ",", "=" or the closing byte is read
/// as if it ended there.
namespace FrameDriver::Conversion {

/// Two fields. The second runs to the end of the text, commas included.
///
///     pair = tag "id=" name ", value=" value         the labels vary from form to form
std::string writePair(std::string_view tagAndLabel, std::string_view first, std::string_view label,
                      std::string_view second);

/// The text between the first "=" and the first ",".
std::string_view readName(std::string_view text);

/// Everything behind the first "=" at or behind `position`.
std::string_view readRest(std::string_view text, std::size_t position);

/// A FID with its parameters in the list's order.
///
///     fid       = tag "id=" name ", data=[" [ parameter { ", " parameter } ] closing
///     parameter = name "=" value
std::string writeFID(std::string_view tag, std::string_view name,
                     FIDParameterList const& parameters);

/// The parameters of a FID. A value ends at the next ",". The value without one is the last;
/// `endOfLast(start)` gives the offset at which that one ends, and the reading ends with it.
template <typename EndOfLast>
std::unique_ptr<FIDParameterList> readParameters(std::string_view text, EndOfLast endOfLast) {
    constexpr auto none = std::string_view::npos;
    auto parameters = std::make_unique<FIDParameterList>();
    auto position = text.find('[', text.find(',')) + 1;
    for (bool last = false; !last;) {
        auto const equals = text.find('=', position);
        if (equals == none)
            break;
        auto const start = equals + 1;
        auto const comma = text.find(',', start);
        last = comma == none;
        auto const end = last ? endOfLast(start) : comma;
        parameters->add(std::string(Tools::cut(text, position, equals - position)),
                        std::string(Tools::cut(text, start, end - start)));
        position = end + 2;
    }
    return parameters;
}

}  // namespace FrameDriver::Conversion
