/* A C99 program on QelCalendar alone: converts the calendar that it reads, lists its entries with
 * their next dates and explains a rule. calendar.cpp and calendar.py print the same. */
#include <QelCalendar/qelcalendar.h>

#include "host.h"

enum { kMostInput = 65536, kPiece = 7, kMostDates = 3 };

static char input[kMostInput];

static int sayText(const char* text) {
    size_t size = 0;
    while (text[size] != '\0') ++size;
    return writeOutput(text, size);
}

static int QELCALENDAR_CALL sayBytes(void* context, const char* bytes, size_t size) {
    (void)context;
    return writeOutput(bytes, size);
}

static int QELCALENDAR_CALL sayTime(void* context, const qelcal_time* time) {
    char text[QELCAL_TIME_SIZE];
    (void)context;
    return qelcal_time_write(time, text) != QELCAL_OK || sayText(" ") != 0 || sayText(text) != 0;
}

/* Calendars come in pieces of any size: from a file, a network buffer, or as small as here. */
static size_t pieceAt(size_t from, size_t size) {
    return size - from < kPiece ? size - from : kPiece;
}

static int convert(size_t size) {
    qelcal_converter* converter = qelcal_converter_new(QELCAL_ICALENDAR, sayBytes, NULL);
    size_t from;
    int result = qelcal_converter_begin_file(converter, "phone.vcs");
    for (from = 0; from < size && result == QELCAL_OK; from += kPiece)
        result = qelcal_converter_write(converter, input + from, pieceAt(from, size));
    if (result == QELCAL_OK) result = qelcal_converter_end_file(converter);
    if (result == QELCAL_OK) result = qelcal_converter_finish(converter);
    qelcal_converter_free(converter);
    return result;
}

static int sayEntry(const qelcal_entry* entry) {
    static const qelcal_time since = {2005, 7, 1, 0, 0, 0, 1, QELCAL_FLOATING};
    const char* summary = qelcal_entry_text(entry, "SUMMARY");
    int result;
    sayText(summary != NULL ? summary : "");
    sayText(":");
    result = qelcal_entry_occurrences(entry, &since, NULL, kMostDates, sayTime, NULL);
    sayText("\n");
    return result;
}

static int list(size_t size) {
    qelcal_reader* reader = qelcal_reader_new();
    const qelcal_entry* entry = NULL;
    size_t from = 0;
    int result;
    while ((result = qelcal_reader_next(reader, &entry)) != QELCAL_END) {
        if (result == QELCAL_OK)
            result = sayEntry(entry);
        else if (result == QELCAL_NEED_INPUT && from < size) {
            result = qelcal_reader_write(reader, input + from, pieceAt(from, size));
            from += kPiece;
        } else if (result == QELCAL_NEED_INPUT)
            result = qelcal_reader_end(reader);
        if (result != QELCAL_OK) break;
    }
    qelcal_reader_free(reader);
    return result == QELCAL_END ? QELCAL_OK : result;
}

static int explain(const char* text) {
    qelcal_rules* rules = NULL;
    qelcal_time start;
    int result = qelcal_time_read("20050615", &start);
    if (result == QELCAL_OK) result = qelcal_rules_read(text, QELCAL_FORM_ANY, &start, &rules);
    if (result != QELCAL_OK) return result;
    sayText(qelcal_rules_text(rules, 0, QELCAL_FORM_ICALENDAR, 0));
    sayText(": ");
    sayText(qelcal_rules_words(rules, 0));
    sayText("\n");
    qelcal_rules_free(rules);
    return QELCAL_OK;
}

int runCalendar(void) {
    const size_t size = readInput(input, sizeof input);
    if (convert(size) == QELCAL_OK && list(size) == QELCAL_OK &&
        explain("W2 MO WE FR #10") == QELCAL_OK)
        return 0;
    sayText(qelcal_last_error());
    sayText("\n");
    return 1;
}
