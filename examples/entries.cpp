// Reads the entries of a calendar, one at a time: texts, times, categories, alarms, occurrences.
#include <QelCalendar/Entries.h>
#include <stdio.h>

#include <string>

static const std::string kFile =
    "BEGIN:VCALENDAR\n"
    "VERSION:1.0\n"
    "BEGIN:VEVENT\n"
    "SUMMARY:Club night\n"
    "CATEGORIES:MEETING;PERSONAL\n"
    "DTSTART:20050603T200000\n"
    "DTEND:20050603T230000\n"
    "RRULE:MP1 1+ FR #4\n"
    "EXDATE:20050805T200000\n"
    "AALARM:20050603T190000\n"
    "END:VEVENT\n"
    "BEGIN:VTODO\n"
    "SUMMARY:Send the tax form\n"
    "DUE:20050930T120000\n"
    "END:VTODO\n"
    "END:VCALENDAR\n";

static void show(const qelcal::Entry& entry) {
    printf("line %d: %s\n", (int)entry.line(), entry.text("SUMMARY").c_str());
    if (entry.has(QELCAL_DUE)) printf("  due %s\n", entry.time(QELCAL_DUE).text().c_str());
    for (const std::string& category : entry.values("CATEGORIES"))
        printf("  category %s\n", category.c_str());
    for (const qelcal_alarm& alarm : entry.alarms())
        if (alarm.has_time != 0)
            printf("  alarm at %s\n", qelcal::Time(alarm.time).text().c_str());
        else
            printf("  alarm %s from the start\n", qelcal::durationText(alarm.offset).c_str());
    for (const qelcal::Rules& rule : entry.rules()) printf("  %s\n", rule.words().c_str());
    for (const qelcal::Time& start : entry.occurrences(3))
        printf("  on %s\n", start.text().c_str());
}

int main() {
    try {
        qelcal::Reader reader;
        reader.write(kFile.data(), kFile.size());
        reader.end();
        while (const qelcal::Entry entry = reader.next()) show(entry);
    } catch (const qelcal::Error& error) {
        printf("%s\n", error.what());
        return 1;
    }
    return 0;
}

// Prints:
// line 3: Club night
//   category MEETING
//   category PERSONAL
//   alarm at 20050603T190000
//   every month on the first Friday, 4 times
//   on 20050603T200000
//   on 20050701T200000
//   on 20050902T200000
// line 12: Send the tax form
//   due 20050930T120000
