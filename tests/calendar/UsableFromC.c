/* The calendar library as C99 sees it: the three objects, callbacks, null handles. */
#include <stdio.h>
#include <string.h>

#include "QelCalendar/qelcalendar.h"

static int failures = 0;

static void check(int holds, const char* what, int line) {
    if (holds) return;
    ++failures;
    printf("UsableFromC.c:%d: FAILED: %s\n", line, what);
}
#define CHECK(condition) check((condition), #condition, __LINE__)

static const char kCalendar[] =
    "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nSUMMARY:Lunch\r\n"
    "DTSTART:20050615T120000Z\r\nRRULE:D1 #3\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";

typedef struct Text {
    char bytes[4096];
    size_t size;
} Text;

static int QELCALENDAR_CALL addText(void* context, const char* bytes, size_t size) {
    Text* text = context;
    if (size >= sizeof text->bytes - text->size) return 1;
    memcpy(text->bytes + text->size, bytes, size);
    text->size += size;
    text->bytes[text->size] = '\0';
    return 0;
}

static int QELCALENDAR_CALL addTime(void* context, const qelcal_time* time) {
    char text[QELCAL_TIME_SIZE];
    CHECK(qelcal_time_write(time, text) == QELCAL_OK);
    return addText(context, text, strlen(text));
}

static void reading(void) {
    const qelcal_entry* entry = NULL;
    Text dates = {"", 0};
    qelcal_reader* reader = qelcal_reader_new();
    CHECK(qelcal_reader_next(reader, &entry) == QELCAL_NEED_INPUT && entry == NULL);
    CHECK(qelcal_reader_write(reader, kCalendar, sizeof kCalendar - 1) == QELCAL_OK);
    CHECK(qelcal_reader_end(reader) == QELCAL_OK);
    CHECK(qelcal_reader_next(reader, &entry) == QELCAL_OK && entry != NULL);
    CHECK(qelcal_entry_kind_of(entry) == QELCAL_EVENT);
    CHECK(strcmp(qelcal_entry_text(entry, "SUMMARY"), "Lunch") == 0);
    CHECK(qelcal_entry_occurrences(entry, NULL, NULL, 2, addTime, &dates) == QELCAL_OK);
    CHECK(strcmp(dates.bytes, "20050615T120000Z20050616T120000Z") == 0);
    CHECK(qelcal_reader_next(reader, &entry) == QELCAL_END && entry == NULL);
    qelcal_reader_free(reader);
}

static void converting(void) {
    Text text = {"", 0};
    qelcal_converter* converter = qelcal_converter_new(QELCAL_OTHER, addText, &text);
    CHECK(qelcal_converter_begin_file(converter, "lunch.vcs") == QELCAL_OK);
    CHECK(qelcal_converter_write(converter, kCalendar, sizeof kCalendar - 1) == QELCAL_OK);
    CHECK(qelcal_converter_end_file(converter) == QELCAL_OK);
    CHECK(qelcal_converter_finish(converter) == QELCAL_OK);
    CHECK(qelcal_converter_target(converter) == QELCAL_ICALENDAR);
    CHECK(strstr(text.bytes, "RRULE:FREQ=DAILY;COUNT=3;INTERVAL=1\r\n") != NULL);
    qelcal_converter_free(converter);
}

static void rules(void) {
    qelcal_rules* read = NULL;
    CHECK(qelcal_rules_read("nonsense", QELCAL_FORM_ANY, NULL, &read) == QELCAL_INVALID_TEXT);
    CHECK(read == NULL && qelcal_last_error()[0] != '\0');
    CHECK(qelcal_rules_read("D1 #3", QELCAL_FORM_ANY, NULL, &read) == QELCAL_OK);
    CHECK(strcmp(qelcal_rules_text(read, 0, QELCAL_FORM_VCALENDAR, 0), "D1 #3") == 0);
    qelcal_rules_free(read);
}

static void nothing(void) {
    qelcal_note_kind kind;
    CHECK(qelcal_note_kind_at(0, &kind) == QELCAL_OK && kind.meaning[0] != '\0');
    CHECK(qelcal_note_kind_at(qelcal_note_kind_count(), &kind) == QELCAL_INVALID_ARGUMENT);
    CHECK(qelcal_reader_write(NULL, "", 0) == QELCAL_INVALID_ARGUMENT);
    CHECK(qelcal_converter_finish(NULL) == QELCAL_INVALID_ARGUMENT);
    CHECK(qelcal_report_new(NULL, NULL) == NULL);
    CHECK(qelcal_entry_uid(NULL)[0] == '\0' && qelcal_entry_zone(NULL) == NULL);
    CHECK(qelcal_note_text(NULL)[0] == '\0' && qelcal_rules_count(NULL) == 0);
    CHECK(qelcal_result_text(-1)[0] == '\0' && qelcal_version()[0] != '\0');
    qelcal_reader_free(NULL);
    qelcal_converter_free(NULL);
    qelcal_report_free(NULL);
    qelcal_rules_free(NULL);
}

int main(void) {
    reading();
    converting();
    rules();
    nothing();
    if (failures == 0) puts("the calendar interface is usable from C");
    return failures == 0 ? 0 : 1;
}
