// Calendar files from vCalendar 1.0 to iCalendar and back, beside libical's own way from vCalendar.
#include <libical/ical.h>
#include <libical/vcc.h>

#include <memory>
#include <string>

#include "Comparison.h"
#include "QelCalendar/Convert.h"

// This header does not say that its functions are C.
extern "C" {
#include <libical/icalvcal.h>
}

namespace qel::bench {

namespace {

constexpr char kVEvent[] =
    "BEGIN:VEVENT\r\nUID:4711-%\r\nDTSTART:20050615T083000Z\r\nDTEND:20050615T093000Z\r\n"
    "SUMMARY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:Besprechung K=C3=B6ln\r\n"
    "LOCATION:Small room on the second floor\r\n"
    "DESCRIPTION:Weekly meeting of the project with its guests and visitors\r\n"
    "CATEGORIES:MEETING\r\nCLASS:PRIVATE\r\nPRIORITY:2\r\nTRANSP:0\r\n"
    "RRULE:W1 WE #10\r\nAALARM:20050615T081500Z;;;\r\nLAST-MODIFIED:20050601T120000Z\r\n"
    "END:VEVENT\r\n";

std::string vCalendarOf(int events) {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nPRODID:-//bench//EN\r\n";
    for (int i = 0; i < events; ++i) {
        std::string event = kVEvent;
        event.replace(event.find('%'), 1, std::to_string(i));
        text += event;
    }
    return text + "END:VCALENDAR\r\n";
}

std::string converted(const std::string& text, qelcal_format to) {
    std::string result;
    qelcal::Converter converter(
        to, [&result](const char* bytes, std::size_t size) { result.append(bytes, size); });
    converter.beginFile("bench.vcs");
    converter.write(text.data(), text.size());
    converter.endFile();
    converter.finish();
    return result;
}

std::string byLibical(const std::string& text) {
    VObject* object = Parse_MIME(text.c_str(), static_cast<unsigned long>(text.size()));
    if (object == nullptr) return {};
    icalcomponent* calendar = icalvcal_convert(object);
    char* out = icalcomponent_as_ical_string_r(calendar);
    std::string result = out;
    icalmemory_free_buffer(out);
    icalcomponent_free(calendar);
    cleanVObject(object);
    return result;
}

int countOf(const std::string& text, const char* piece) {
    int count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
        ++count;
    return count;
}

// Both results hold every event at its time, and ours reads as iCalendar.
bool same(const std::string& text, int events) {
    const std::string ours = converted(text, QELCAL_ICALENDAR);
    icalcomponent* read = icalparser_parse_string(ours.c_str());
    const int found =
        read == nullptr ? 0 : icalcomponent_count_components(read, ICAL_VEVENT_COMPONENT);
    if (read != nullptr) icalcomponent_free(read);
    const std::string back = converted(ours, QELCAL_VCALENDAR);
    return found == events && countOf(ours, "DTSTART:20050615T083000Z\r\n") == events &&
           countOf(byLibical(text), "DTSTART:20050615T083000Z\r\n") == events &&
           countOf(back, "DTSTART:20050615T083000Z\r\n") == events;
}

}  // namespace

void addConverter() {
    for (const int events : {1, 10, 100, 400, 10000}) {
        const auto text = std::make_shared<std::string>(vCalendarOf(events));
        const bool peered = events <= 400;  // libical reads 489 events at most
        const auto agree = [text, events, peered] {
            return peered ? same(*text, events)
                          : countOf(converted(*text, QELCAL_ICALENDAR), "BEGIN:VEVENT") == events;
        };
        const std::string files = ", file of " + std::to_string(events);
        Comparison toICalendar(
            {"vCalendar event to iCalendar" + files, 2000, "420 bytes read, 490 written", 0,
             "libical", 18400, static_cast<double>(events)},
            agree);
        toICalendar.ours([text] { benchmark::DoNotOptimize(converted(*text, QELCAL_ICALENDAR)); });
        if (peered)
            toICalendar.peer("libical", [text] { benchmark::DoNotOptimize(byLibical(*text)); });
        const auto iCalendar = std::make_shared<std::string>(converted(*text, QELCAL_ICALENDAR));
        Comparison toVCalendar(
            {"iCalendar event to vCalendar" + files, 2500, "490 bytes read, 420 written", 0,
             "libical, reading alone", 9900, static_cast<double>(events)},
            agree);
        toVCalendar.ours(
            [iCalendar] { benchmark::DoNotOptimize(converted(*iCalendar, QELCAL_VCALENDAR)); });
        if (peered)
            toVCalendar.peer("libical, reading alone", [iCalendar] {
                icalcomponent_free(icalparser_parse_string(iCalendar->c_str()));
            });
    }
}

}  // namespace qel::bench
