// The whole converter: any file converts, and what it writes converts again without a loss of
// entries.
#include "calendar/converter/Converter.h"

#include <sstream>

#include "Fuzz.h"

using namespace qel::fuzz;
using qel::calendar::ByteSource;
using qel::calendar::CalendarFormat;
using qel::calendar::Converter;
using qel::calendar::Note;

namespace {

ByteSource sourceOf(const std::string& text) {
    return [&text, at = std::size_t{0}](char* bytes, std::size_t room) mutable {
        const std::size_t length = std::min(room, text.size() - at);
        std::memcpy(bytes, text.data() + at, length);
        at += length;
        return length;
    };
}

struct Result {
    std::string text;
    std::uint64_t entries;
};

Result convertText(const std::string& text, CalendarFormat to) {
    std::ostringstream out;
    Converter converter(out, to,
                        [](const Note& message) { FUZZ_CHECK(!message.text().empty()); });
    converter.collectZones(sourceOf(text));
    converter.convert(sourceOf(text), "input");
    converter.finish();
    return {out.str(), converter.counts().entries};
}

void checkLines(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        FUZZ_CHECK(end != std::string::npos);
        at = end + 2;
    }
}

}  // namespace

QEL_FUZZ_TARGET(convert) {
    const bool toPhone = in.flag();
    const std::string text = in.text();
    const CalendarFormat there = toPhone ? CalendarFormat::VCalendar10 : CalendarFormat::ICalendar;
    const CalendarFormat back = toPhone ? CalendarFormat::ICalendar : CalendarFormat::VCalendar10;
    const Result first = convertText(text, there);
    checkLines(first.text);
    const Result second = convertText(first.text, back);
    checkLines(second.text);
    FUZZ_CHECK(second.entries == first.entries);
}
