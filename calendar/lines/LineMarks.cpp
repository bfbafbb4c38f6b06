#include "calendar/lines/LineMarks.h"

#include <algorithm>

#include "calendar/base/ByteSearch.h"

namespace qel::calendar {

LineMarks marksWithQuotes(std::string_view text, std::size_t end) {
    const std::string_view line = text.substr(0, end);
    return {end, line.find_first_of(":;"), findColon(line)};
}

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
