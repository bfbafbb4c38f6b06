#include "calendar/converter/FileCuts.h"

#include <algorithm>
#include <iterator>

namespace qel::calendar {

namespace {

constexpr std::string_view kEntryMarks[] = {"BEGIN:VEVENT", "BEGIN:VTODO", "BEGIN:VJOURNAL",
                                            "BEGIN:VNOTE"};
constexpr std::string_view kOtherMarks[] = {"END:VCALENDAR", "BEGIN:VCALENDAR", "BEGIN:VTIMEZONE"};

template <std::size_t kCount>
bool beginsWith(const std::string_view (&marks)[kCount], std::string_view text) {
    return std::any_of(
        std::begin(marks), std::end(marks),
        [text](std::string_view mark) {
            if (!text.starts_with(mark)) return false;
            const std::string_view rest = text.substr(mark.size());
            return rest.starts_with('\n') || rest.starts_with("\r\n");
        });
}

}  // namespace

bool beginsEntry(std::string_view text) {
    return beginsWith(kEntryMarks, text);
}

std::size_t nextCut(std::string_view text, std::size_t from) {
    for (std::size_t end = text.find('\n', from); end != text.npos;
         end = text.find('\n', end + 1)) {
        const std::string_view rest = text.substr(end + 1);
        if (!rest.starts_with('B') && !rest.starts_with('E')) continue;
        if (beginsEntry(rest) || beginsWith(kOtherMarks, rest)) return end + 1;
    }
    return std::string_view::npos;
}

}  // namespace qel::calendar
