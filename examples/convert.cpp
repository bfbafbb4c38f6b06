// Converts a phone's calendar in pieces, as a program would that reads it from a file or a socket.
#include <QelCalendar/Convert.h>
#include <stdio.h>

#include <algorithm>
#include <string>

static const std::string kFile =
    "BEGIN:VCALENDAR\r\n"
    "VERSION:1.0\r\n"
    "BEGIN:VEVENT\r\n"
    "UID:1@phone\r\n"
    "SUMMARY;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:Caf=E9 Z=FCrich\r\n"
    "DTSTART:20050615T093000\r\n"
    "RRULE:W2 MO WE FR #10\r\n"
    "END:VEVENT\r\n"
    "END:VCALENDAR\r\n";

int main() {
    try {
        std::string result;
        qelcal::Converter converter(QELCAL_ICALENDAR, [&result](const char* bytes, size_t size) {
            result.append(bytes, size);
        });
        converter.beginFile("phone.vcs");
        for (size_t at = 0; at < kFile.size(); at += 16)  // pieces of any size
            converter.write(kFile.data() + at, std::min<size_t>(16, kFile.size() - at));
        converter.endFile();
        converter.finish();  // hands on the rest

        for (const char c : result)
            if (c != '\r') putchar(c);
        const qelcal_counts counts = converter.counts();
        printf("%d entry, %d lost\n", (int)counts.entries, (int)counts.lost);
    } catch (const qelcal::Error& error) {
        printf("%s\n", error.what());
        return 1;
    }
    return 0;
}

// Prints:
// BEGIN:VCALENDAR
// VERSION:2.0
// PRODID:-//QelUtility//qelutil//EN
// BEGIN:VEVENT
// UID:1@phone
// DTSTAMP:20050615T093000Z
// DTSTART:20050615T093000
// RRULE:FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR
// SUMMARY:Café Zürich
// END:VEVENT
// END:VCALENDAR
// 1 entry, 0 lost
