// What one pass over the bytes of a physical line finds. Any thread.
#ifndef QEL_CALENDAR_LINES_LINEMARKS_H
#define QEL_CALENDAR_LINES_LINEMARKS_H

#include <bit>
#include <cstddef>
#include <string_view>

#include "calendar/base/ByteSearch.h"

namespace qel::calendar {

struct LineMarks {
    std::size_t end = 0;      // of the line; the text's size when it has no line end
    std::size_t nameEnd = 0;  // the first colon or semicolon; npos without one
    std::size_t colon = 0;    // before the value, as findColon finds it; npos without one
};

// Of a line that ends at `end` of `text` and has quotes before its colon.
[[nodiscard]] LineMarks marksWithQuotes(std::string_view text, std::size_t end);
// As marksOf, for a line of any kind.
[[nodiscard]] LineMarks marksByParts(std::string_view text);

// Of the line at the beginning of `text`. The same on every processor.
[[nodiscard]] inline LineMarks marksOf(std::string_view text) {
#if defined(__SSE2__)
    // One look at each block of sixteen bytes finds everything. A line that ends in the last bytes
    // of a chunk, too few for a block, is left to marksByParts.
    constexpr std::size_t kBlock = 16;
    constexpr std::size_t kNowhere = std::string_view::npos;
    LineMarks marks{0, kNowhere, kNowhere};
    for (std::size_t at = 0; at + kBlock <= text.size(); at += kBlock) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
        const auto ends = static_cast<unsigned>(_mm_movemask_epi8(AnyOf<'\n', '\r'>::marks(bytes)));
        if (marks.colon == kNowhere) {
            auto signs =
                static_cast<unsigned>(_mm_movemask_epi8(AnyOf<':', ';', '"'>::marks(bytes)));
            // What comes after the line's end is not its own.
            if (ends != 0) signs &= ends ^ (ends - 1);
            for (; signs != 0 && marks.colon == kNowhere; signs &= signs - 1) {
                const std::size_t sign = at + static_cast<std::size_t>(std::countr_zero(signs));
                if (text[sign] == '"')
                    return marksWithQuotes(text, findAny<'\n', '\r'>(text, sign));
                if (marks.nameEnd == kNowhere) marks.nameEnd = sign;
                if (text[sign] == ':') marks.colon = sign;
            }
        }
        if (ends != 0) {
            marks.end = at + static_cast<std::size_t>(std::countr_zero(ends));
            return marks;
        }
    }
#endif
    return marksByParts(text);
}

// Where the value's colon is: the first one outside quotes, or the first one where the quotes do
// not close before it. npos when there is none.
[[nodiscard]] std::size_t findColon(std::string_view text);

}  // namespace qel::calendar

#endif
