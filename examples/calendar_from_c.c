/* The calendar library from C99: converts a calendar and explains a rule. */
#include <QelCalendar/qelcalendar.h>
#include <stdio.h>
#include <string.h>

static int QELCALENDAR_CALL print(void* context, const char* bytes, size_t size) {
    (void)context;
    for (size_t i = 0; i < size; ++i)
        if (bytes[i] != '\r') putchar(bytes[i]);
    return 0; /* anything else would end the conversion */
}

static int QELCALENDAR_CALL warn(void* context, const qelcal_note* note) {
    (void)context;
    printf("line %d: %s\n", (int)qelcal_note_line(note), qelcal_note_text(note));
    return 0;
}

static int QELCALENDAR_CALL list(void* context, const qelcal_time* date) {
    char text[QELCAL_TIME_SIZE];
    (void)context;
    if (qelcal_time_write(date, text) == QELCAL_OK) printf("  %s\n", text);
    return 0;
}

static int convert(const char* calendar) {
    qelcal_converter* converter = qelcal_converter_new(QELCAL_ICALENDAR, print, NULL);
    int result = qelcal_converter_on_note(converter, warn, NULL);
    if (result == QELCAL_OK) result = qelcal_converter_begin_file(converter, "phone.vcs");
    if (result == QELCAL_OK) result = qelcal_converter_write(converter, calendar, strlen(calendar));
    if (result == QELCAL_OK) result = qelcal_converter_end_file(converter);
    if (result == QELCAL_OK) result = qelcal_converter_finish(converter);
    qelcal_converter_free(converter);
    return result;
}

static int explain(const char* text) {
    qelcal_time start;
    qelcal_rules* rules = NULL;
    int result = qelcal_time_read("20050615", &start);
    if (result == QELCAL_OK) result = qelcal_rules_read(text, QELCAL_FORM_ANY, &start, &rules);
    if (result != QELCAL_OK) return result;
    printf("%s\n", qelcal_rules_words(rules, 0));
    result = qelcal_rules_dates(rules, 0, NULL, NULL, 3, list, NULL);
    qelcal_rules_free(rules);
    return result;
}

int main(void) {
    const char* const calendar =
        "BEGIN:VCALENDAR\nVERSION:1.0\n"
        "BEGIN:VTODO\nUID:1@phone\nSUMMARY:Send the tax form\nDUE:20050930T120000\nEND:VTODO\n"
        "END:VCALENDAR\n";
    if (convert(calendar) != QELCAL_OK || explain("W2 MO WE FR #10") != QELCAL_OK ||
        explain("tomorrow") != QELCAL_OK)
        printf("failed: %s\n", qelcal_last_error());
    return 0;
}

// Prints:
// BEGIN:VCALENDAR
// VERSION:2.0
// PRODID:-//QelUtility//qelutil//EN
// BEGIN:VTODO
// UID:1@phone
// DTSTAMP:20050930T120000Z
// DUE:20050930T120000
// SUMMARY:Send the tax form
// END:VTODO
// END:VCALENDAR
// every 2 weeks on Monday, Wednesday and Friday, 10 times
//   20050615
//   20050617
//   20050627
// failed: the rule is not read: this is not a recurrence rule
