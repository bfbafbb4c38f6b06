#include "calendar/lines/LineMarks.h"

#include <algorithm>
#include <bit>

#include "calendar/base/ByteSearch.h"

namespace qel::calendar {

namespace {

// Where the marks of a line are whose name or parameters have quotes before `end`.
LineMarks marksWithQuotes(std::string_view text, std::size_t end) {
    const std::string_view line = text.substr(0, end);
    return {end, line.find_first_of(":;"), findColon(line)};
}

// The same as marksOf, byte by byte where a text is short.
LineMarks marksByParts(std::string_view text) {
    constexpr std::size_t kNowhere = std::string_view::npos;
    LineMarks marks{0, kNowhere, kNowhere};
    std::size_t at = findAny<':', ';', '"', '\n', '\r'>(text, 0);
    if (at < text.size() && text[at] == ';') {
        marks.nameEnd = at;
        at = findAny<':', '"', '\n', '\r'>(text, at + 1);
    }
    if (at < text.size() && text[at] == ':') {
        marks.colon = at;
        marks.nameEnd = std::min(marks.nameEnd, at);
    }
    marks.end = findAny<'\n', '\r'>(text, at);
    if (at < text.size() && text[at] == '"') return marksWithQuotes(text, marks.end);
    return marks;
}

}  // namespace

#if defined(__SSE2__)
// Each block of sixteen bytes is looked at once, for everything. The last bytes of a chunk, which
// are no block, are left to marksByParts, as is any line that has not ended before them.
LineMarks marksOf(std::string_view text) {
    constexpr std::size_t kBlock = 16;
    constexpr std::size_t kNowhere = std::string_view::npos;
    LineMarks marks{0, kNowhere, kNowhere};
    const auto maskOf = [](__m128i found) {
        return static_cast<unsigned>(_mm_movemask_epi8(found));
    };
    std::size_t at = 0;
    for (; marks.colon == kNowhere; at += kBlock) {
        if (text.size() < at + kBlock) return marksByParts(text);
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
        const unsigned ends = maskOf(AnyOf<'\n', '\r'>::marks(bytes));
        unsigned signs = maskOf(AnyOf<':', ';', '"'>::marks(bytes));
        // What comes after the line's end is not its own.
        if (ends != 0) signs &= ends ^ (ends - 1);
        while (signs != 0) {
            const std::size_t sign = at + static_cast<std::size_t>(std::countr_zero(signs));
            if (text[sign] == '"') return marksWithQuotes(text, findAny<'\n', '\r'>(text, sign));
            marks.nameEnd = std::min(marks.nameEnd, sign);
            if (text[sign] == ':') {
                marks.colon = sign;
                break;
            }
            signs &= signs - 1;
        }
        if (ends != 0) {
            marks.end = at + static_cast<std::size_t>(std::countr_zero(ends));
            return marks;
        }
    }
    marks.end = findAny<'\n', '\r'>(text, at);
    return marks;
}
#else
LineMarks marksOf(std::string_view text) {
    return marksByParts(text);
}
#endif

std::size_t findColon(std::string_view text) {
    static_assert('"' < ':');
    bool inQuotes = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] > ':') continue;  // letters, nearly always
        if (text[at] == ':' && !inQuotes) return at;
        if (text[at] == '"') inQuotes = !inQuotes;
    }
    return text.find(':');
}

}  // namespace qel::calendar
