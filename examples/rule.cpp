// Turns a phone's recurrence rule (vCalendar 1.0) into an iCalendar rule, and back.
#include <QelUtility/QelUtility.h>
#include <stdio.h>

int main() {
    const char* const rules[] = {
        "W2 MO WE FR #10",      // every other week on three days, ten times
        "MP1 1- FR #0",         // the last Friday of every month, for ever
        "D1 20051231T235959Z",  // every day until the end of the year
        "Q1 #4",                // no such frequency
    };
    for (const char* text : rules) {
        _rruleRepeat rule;
        int flags = 0;
        if (BxUtil_PositionalV10toRRULE(text, &rule, &flags) != 0) {
            printf("%s is not a rule\n", text);  // and the log has a line about it
            continue;
        }
        // The end keeps its time of day only when it came with one.
        const bool withTime = (flags & RRULE_UNTIL_HAS_TIME) != 0;
        VStr iCalendar;
        VStr vCalendar;
        BxUtil_RRULEtoIETF(&rule, iCalendar, withTime);
        BxUtil_RRULEtoV10IETF(&rule, vCalendar, withTime);
        printf("RRULE:%s\n   and back: %s\n", (const char*)iCalendar, (const char*)vCalendar);
    }
    return 0;
}

// Prints:
// RRULE:FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR
//    and back: W2 MO WE FR #10
// RRULE:FREQ=MONTHLY;INTERVAL=1;BYDAY=FR;BYSETPOS=-1
//    and back: MP1 1- FR #0
// RRULE:FREQ=DAILY;UNTIL=20051231T235959Z;INTERVAL=1
//    and back: D1 20051231T235959Z
// Q1 #4 is not a rule
