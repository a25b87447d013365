#include "conversion/SearchedText.h"

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Sixty-four places are looked at together: those where both the first and the last byte of the
// literal stand are compared in full. One byte alone would stop at every comma; the pair hardly
// ever stops in vain. Most texts are done in one or two such steps, whatever their length, which
// spares the processor the guessing of how many there will be.

namespace FrameDriver::Conversion {

namespace {

constexpr std::size_t step = 64;

#ifdef __SSE2__

__m128i load(char const* bytes) { return _mm_loadu_si128(reinterpret_cast<__m128i const*>(bytes)); }

// One bit for each of sixteen places.
std::uint64_t sixteen(char const* start, std::size_t reach, __m128i first, __m128i last) {
    auto const both = _mm_and_si128(_mm_cmpeq_epi8(load(start), first),
                                    _mm_cmpeq_epi8(load(start + reach), last));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(both));
}

// One bit for each of the places from `start` on at which both bytes stand.
std::uint64_t places(char const* start, std::string_view literal) {
    auto const first = _mm_set1_epi8(literal.front());
    auto const last = _mm_set1_epi8(literal.back());
    auto const reach = literal.size() - 1;
    return sixteen(start, reach, first, last) | sixteen(start + 16, reach, first, last) << 16 |
           sixteen(start + 32, reach, first, last) << 32 |
           sixteen(start + 48, reach, first, last) << 48;
}

#else

std::uint64_t places(char const* start, std::string_view literal) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < step; ++i) {
        bool const both =
            start[i] == literal.front() && start[i + literal.size() - 1] == literal.back();
        bits |= std::uint64_t(both) << i;
    }
    return bits;
}

#endif

}  // namespace

void SearchedText::assign(std::string_view text) {
    if (bytes.size() < text.size() + step)
        bytes.resize(text.size() + step);
    length = text.size();
    if (length != 0)
        std::memcpy(bytes.data(), text.data(), length);
}

std::size_t SearchedText::find(std::string_view literal, std::size_t position) const {
    constexpr auto none = std::string_view::npos;
    if (position > length || literal.size() > length - position)
        return none;
    if (literal.empty())
        return position;
    auto const end = length - literal.size() + 1;  // behind the last place
    for (; position < end; position += step) {
        auto bits = places(bytes.data() + position, literal);
        if (end - position < step)
            bits &= (std::uint64_t(1) << (end - position)) - 1;
        for (; bits != 0; bits &= bits - 1) {
            auto const found = position + static_cast<std::size_t>(std::countr_zero(bits));
            if (literal.size() <= 2 ||
                std::memcmp(bytes.data() + found, literal.data(), literal.size()) == 0)
                return found;
        }
    }
    return none;
}

}  // namespace FrameDriver::Conversion
