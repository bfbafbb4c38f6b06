// Explains recurrence rules: in words, in each form, with their dates.
#include <QelCalendar/Rules.h>
#include <stdio.h>

#include <string>

static void explain(const std::string& text, const qelcal::Time& start) {
    const qelcal::Rules rules(text, start);
    printf("%s: %s\n", text.c_str(), rules.words().c_str());
    for (const qelcal_form form : {QELCAL_FORM_VCALENDAR, QELCAL_FORM_ICALENDAR}) {
        for (const std::string& written : rules.texts(form)) printf("  %s\n", written.c_str());
        if (!rules.reason(form).empty()) printf("  %s\n", rules.reason(form).c_str());
    }
    for (const qelcal::Time& date : rules.dates(3)) printf("  on %s\n", date.text().c_str());
    for (const qelcal::Note& note : rules.notes()) printf("  note: %s\n", note.text.c_str());
}

int main() {
    try {
        const qelcal::Time start = qelcal::Time::read("2005-06-15");
        explain("MP1 1- FR #0", start);
        explain("FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO;COUNT=3", start);
        explain("every now and then", start);
    } catch (const qelcal::Error& error) {
        printf("%s\n", error.what());
    }
    return 0;
}
// clang-format off

// Prints:
// MP1 1- FR #0: every month on the last Friday, without end
//   MP1 1- FR #0
//   FREQ=MONTHLY;INTERVAL=1;BYDAY=-1FR
//   on 20050615
//   on 20050624
//   on 20050729
// FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO;COUNT=3: every year on Monday of the 20th week of the year, 3 times
//   week numbers
//   FREQ=YEARLY;COUNT=3;INTERVAL=1;BYDAY=MO;BYWEEKNO=20
//   on 20050615
//   on 20060515
//   on 20070514
// the rule is not read: this is not a recurrence rule
