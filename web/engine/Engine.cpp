// The calendar library for JavaScript. A conversion is one object; what it yields is collected in
// buffers that JavaScript empties after each piece of input, so that no call leads back to it.
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "Json.h"
#include "QelCalendar/qelcalendar.h"

#define QEL_ENGINE(name) extern "C" __attribute__((export_name(#name), used))

namespace qel::web {

namespace {

// Dates of one series, and of all together, that the month view is given.
constexpr std::size_t kMostDates = 10000;
constexpr std::size_t kMostDatesOfAll = 1000000;
constexpr std::size_t kFewDates = 60;
// Days of 24 hours, in seconds.
constexpr std::int64_t kDay = 86400;
// Bytes of a description that a search looks at.
constexpr std::size_t kSearched = 400;

// What JavaScript takes from the engine, by number.
enum Stream : int {
    kOutput,   // the calendar
    kEntries,  // a line of JSON for each entry: what a list shows
    kDetails,  // a line of JSON for each entry: everything
    kDates,    // of each series the dates, minutes since 1900 on its own clock, as 32-bit integers
    kReport,   // the report's body
    kHead,     // the report's head
    kAnswer,   // of the call before
    kStreams
};

constexpr int kWantsEntries = 1;
constexpr int kWantsReport = 2;

std::string buffers[kStreams];

int append(void* stream, const char* bytes, std::size_t size) {
    static_cast<std::string*>(stream)->append(bytes, size);
    return 0;
}

struct Conversion {
    qelcal_converter* converter = nullptr;
    qelcal_report* report = nullptr;
    qelcal_time horizon{};
    std::size_t dates = 0;
    std::size_t entries = 0;
    std::size_t series = 0;  // whose dates are not all given
    std::int64_t file = -1;
    struct Kind {
        std::int64_t count = 0;
        std::string first;  // JSON
    };
    std::map<int, Kind> notes;
};

void writeTime(Json& json, std::string_view name, const qelcal_time& time) {
    char text[QELCAL_TIME_SIZE];
    if (qelcal_time_write(&time, text) == QELCAL_OK) json.field(name, text);
}

void writeNote(Json& json, const qelcal_note* note) {
    json.beginObject();
    json.field("code", qelcal_note_code_of(note));
    json.field("line", qelcal_note_line(note));
    json.field("file", qelcal_note_file(note));
    json.field("text", qelcal_note_text(note));
    json.endObject();
}

int noteComes(void* context, const qelcal_note* note) {
    auto& conversion = *static_cast<Conversion*>(context);
    Conversion::Kind& kind = conversion.notes[qelcal_note_code_of(note)];
    if (kind.count++ == 0) {
        Json json(kind.first);
        writeNote(json, note);
    }
    return 0;
}

// --- Entries
// ---------------------------------------------------------------------------------------

int addMinute(void* context, const qelcal_time* time) {
    const auto minute = static_cast<std::int32_t>(qelcal_time_seconds(time) / 60);
    static_cast<std::string*>(context)->append(reinterpret_cast<const char*>(&minute), 4);
    return 0;
}

bool recurs(const qelcal_entry* entry) {
    return qelcal_entry_rule_count(entry) > 0 || qelcal_entry_date_count(entry, 0) > 0;
}

// The entry's length in seconds: by its end, by its duration, or nothing.
std::int64_t lengthOf(const qelcal_entry* entry, const qelcal_time& start) {
    qelcal_time end{};
    if (qelcal_entry_time(entry, QELCAL_END_TIME, &end) == QELCAL_OK) {
        const std::int64_t length = qelcal_time_seconds(&end) - qelcal_time_seconds(&start);
        return length > 0 && end.clock == start.clock ? length : 0;
    }
    std::int64_t seconds = 0;
    if (qelcal_entry_duration(entry, &seconds) == QELCAL_OK) return seconds > 0 ? seconds : 0;
    return start.is_date != 0 ? kDay : 0;
}

void writeNotesOf(Json& json, const qelcal_entry* entry) {
    json.key("notes");
    json.beginArray();
    for (std::size_t i = 0; i < qelcal_entry_note_count(entry); ++i)
        json.value(static_cast<std::int64_t>(qelcal_note_code_of(qelcal_entry_note(entry, i))));
    json.endArray();
}

// What a list and the month view show of an entry.
void summarise(Conversion& conversion, const qelcal_entry* entry) {
    Json json(buffers[kEntries]);
    json.beginObject();
    json.field("kind", qelcal_entry_kind_of(entry));
    json.field("file", conversion.file);
    json.field("uid", qelcal_entry_uid(entry));
    json.field("title", qelcal_entry_text(entry, "SUMMARY"));
    json.field("place", qelcal_entry_text(entry, "LOCATION"));
    const char* about = qelcal_entry_text(entry, "DESCRIPTION");
    if (about != nullptr) json.field("about", std::string_view(about).substr(0, kSearched));
    qelcal_time start{};
    bool dated = qelcal_entry_time(entry, QELCAL_START, &start) == QELCAL_OK;
    if (!dated) dated = qelcal_entry_time(entry, QELCAL_DUE, &start) == QELCAL_OK;
    if (!dated) dated = qelcal_entry_time(entry, QELCAL_END_TIME, &start) == QELCAL_OK;
    if (dated) {
        json.field("minute", qelcal_time_seconds(&start) / 60);
        json.field("length", lengthOf(entry, start) / 60);
        json.field("clock", start.clock);
        json.field("day", qelcal_entry_all_day(entry) != 0 || start.is_date != 0 ? 1 : 0);
        if (start.clock == QELCAL_ZONED) json.field("zone", qelcal_entry_zone(entry));
        if (recurs(entry)) {
            const std::size_t before = buffers[kDates].size();
            const std::size_t most = conversion.dates < kMostDatesOfAll ? kMostDates : kFewDates;
            qelcal_entry_occurrences(entry, nullptr, &conversion.horizon, most, addMinute,
                                     &buffers[kDates]);
            const std::size_t count = (buffers[kDates].size() - before) / 4;
            conversion.dates += count;
            conversion.series += count == most ? 1 : 0;
            json.field("dates", count);
        }
    }
    if (qelcal_entry_rule_count(entry) > 0)
        json.field("words", qelcal_rules_words(qelcal_entry_rules(entry, 0), 0));
    json.field("alarms", qelcal_entry_alarm_count(entry));
    writeNotesOf(json, entry);
    json.endObject();
    buffers[kEntries] += '\n';
}

void writeTimes(Json& json, const qelcal_entry* entry) {
    static constexpr const char* kNames[] = {"start",   "end",      "due",   "completed",
                                             "created", "modified", "stamp", "recurrenceId"};
    qelcal_time time{};
    for (int which = QELCAL_START; which <= QELCAL_RECURRENCE_ID; ++which)
        if (qelcal_entry_time(entry, which, &time) == QELCAL_OK)
            writeTime(json, kNames[which - 1], time);
    std::int64_t seconds = 0;
    char text[QELCAL_TIME_SIZE];
    if (qelcal_entry_duration(entry, &seconds) == QELCAL_OK &&
        qelcal_duration_write(seconds, text) == QELCAL_OK)
        json.field("duration", text);
    if (const char* zone = qelcal_entry_zone(entry)) json.field("zone", zone);
}

void writeProperties(Json& json, const qelcal_entry* entry) {
    json.key("properties");
    json.beginArray();
    for (std::size_t i = 0; i < qelcal_entry_property_count(entry); ++i) {
        json.beginObject();
        json.field("name", qelcal_entry_property_name(entry, i));
        json.key("values");
        json.beginArray();
        for (std::size_t k = 0; k < qelcal_entry_value_count(entry, i); ++k)
            json.value(qelcal_entry_value(entry, i, k));
        json.endArray();
        json.endObject();
    }
    json.endArray();
}

void writeRule(Json& json, const qelcal_rules* rules, std::size_t rule) {
    json.field("words", qelcal_rules_words(rules, rule));
    for (const int form : {QELCAL_FORM_ICALENDAR, QELCAL_FORM_VCALENDAR}) {
        json.key(form == QELCAL_FORM_ICALENDAR ? "icalendar" : "vcalendar");
        json.beginArray();
        for (std::size_t i = 0; i < qelcal_rules_text_count(rules, rule, form); ++i)
            json.value(qelcal_rules_text(rules, rule, form, i));
        json.endArray();
    }
}

int addDate(void* json, const qelcal_time* time) {
    char text[QELCAL_TIME_SIZE];
    if (qelcal_time_write(time, text) == QELCAL_OK) static_cast<Json*>(json)->value(text);
    return 0;
}

void writeRules(Json& json, const qelcal_entry* entry) {
    json.key("rules");
    json.beginArray();
    for (std::size_t i = 0; i < qelcal_entry_rule_count(entry); ++i)
        if (qelcal_entry_rule_excludes(entry, i) == 0)
            for (std::size_t k = 0; k < qelcal_rules_count(qelcal_entry_rules(entry, i)); ++k) {
                json.beginObject();
                writeRule(json, qelcal_entry_rules(entry, i), k);
                json.endObject();
            }
    json.endArray();
}

void writeAlarms(Json& json, const qelcal_entry* entry) {
    json.key("alarms");
    json.beginArray();
    qelcal_alarm alarm{};
    for (std::size_t i = 0; i < qelcal_entry_alarm_count(entry); ++i) {
        if (qelcal_entry_alarm(entry, i, &alarm) != QELCAL_OK) continue;
        json.beginObject();
        if (alarm.has_time != 0)
            writeTime(json, "time", alarm.time);
        else
            json.field("minutes", alarm.offset / 60);
        json.field("fromEnd", alarm.from_end);
        json.field("text", alarm.text);
        json.endObject();
    }
    json.endArray();
}

void describe(const qelcal_converted& converted) {
    Json json(buffers[kDetails]);
    const qelcal_entry* const entry = converted.entry;
    json.beginObject();
    json.field("line", qelcal_entry_line(entry));
    json.field("uid", qelcal_entry_uid(entry));
    json.field("allDay", qelcal_entry_all_day(entry));
    writeTimes(json, entry);
    writeProperties(json, entry);
    writeRules(json, entry);
    writeAlarms(json, entry);
    json.key("notes");
    json.beginArray();
    for (std::size_t i = 0; i < qelcal_entry_note_count(entry); ++i)
        writeNote(json, qelcal_entry_note(entry, i));
    json.endArray();
    json.field("source", std::string_view(converted.source, converted.source_size));
    json.field("sourceCut", converted.source_cut);
    json.field("written", std::string_view(converted.written, converted.written_size));
    json.endObject();
    buffers[kDetails] += '\n';
}

int entryComes(void* context, const qelcal_converted* converted) {
    auto& conversion = *static_cast<Conversion*>(context);
    ++conversion.entries;
    summarise(conversion, converted->entry);
    describe(*converted);
    return 0;
}

// Leaves the reason of a failure as the answer.
int checked(int result) {
    if (result != QELCAL_OK) buffers[kAnswer] = qelcal_last_error();
    return result;
}

void writeKinds(Json& json) {
    json.beginArray();
    qelcal_note_kind kind{};
    for (std::size_t i = 0; qelcal_note_kind_at(i, &kind) == QELCAL_OK; ++i) {
        json.beginObject();
        json.field("code", kind.code);
        json.field("severity", kind.severity);
        json.field("fate", kind.fate);
        json.field("name", kind.name);
        json.field("meaning", kind.meaning);
        json.field("advice", kind.advice);
        json.endObject();
    }
    json.endArray();
}

}  // namespace

// --- What JavaScript calls
// -------------------------------------------------------------------------

QEL_ENGINE(engine_allocate) void* allocate(std::size_t size) {
    return std::malloc(size);
}
QEL_ENGINE(engine_free) void release(void* bytes) {
    std::free(bytes);
}

// What a stream holds: engine_size bytes at engine_bytes, until engine_drop or the next call.
QEL_ENGINE(engine_bytes) const char* bytes(int stream) {
    return buffers[stream].data();
}
QEL_ENGINE(engine_size) std::size_t size(int stream) {
    return buffers[stream].size();
}
QEL_ENGINE(engine_drop) void drop(int stream) {
    // A buffer that an exceptional file has blown up gives its memory back.
    constexpr std::size_t kUsual = std::size_t{4} << 20;
    if (buffers[stream].capacity() > kUsual)
        std::string().swap(buffers[stream]);
    else
        buffers[stream].clear();
}

// A conversion to `target`, a qelcal_format. `horizon` is the date that the dates of series end at.
// `more`: what is wanted besides the calendar, kWantsEntries and kWantsReport together or none.
QEL_ENGINE(engine_begin)
Conversion* begin(int target, const char* horizon, int more) {
    auto* conversion = new Conversion;
    qelcal_time_read(horizon, &conversion->horizon);
    conversion->converter = qelcal_converter_new(target, append, &buffers[kOutput]);
    qelcal_converter_on_note(conversion->converter, noteComes, conversion);
    if ((more & kWantsEntries) != 0)
        qelcal_converter_on_entry(conversion->converter, entryComes, conversion, 1);
    if ((more & kWantsReport) != 0) {
        conversion->report = qelcal_report_new(append, &buffers[kReport]);
        qelcal_converter_report(conversion->converter, conversion->report);
    }
    return conversion;
}

QEL_ENGINE(engine_choose) int choose(Conversion* conversion, int choice, const char* value) {
    const int result = qelcal_converter_choose(conversion->converter, choice, value);
    return checked(result);
}

QEL_ENGINE(engine_begin_file) int beginFile(Conversion* conversion, const char* name) {
    ++conversion->file;
    return checked(qelcal_converter_begin_file(conversion->converter, name));
}

QEL_ENGINE(engine_scan) int scan(Conversion* conversion, const void* piece, std::size_t length) {
    return checked(qelcal_converter_scan(conversion->converter, piece, length));
}

QEL_ENGINE(engine_write) int write(Conversion* conversion, const void* piece, std::size_t length) {
    return checked(qelcal_converter_write(conversion->converter, piece, length));
}

// The answer is the number of entries so far as text.
QEL_ENGINE(engine_end_file) int endFile(Conversion* conversion) {
    const int result = qelcal_converter_end_file(conversion->converter);
    qelcal_counts counts{};
    qelcal_converter_counts(conversion->converter, &counts);
    if (result != QELCAL_OK) return checked(result);
    buffers[kAnswer] = std::to_string(counts.entries);
    return result;
}

// The answer is what became of the whole, as JSON.
QEL_ENGINE(engine_finish) int finish(Conversion* conversion, const char* output) {
    const int result = qelcal_converter_finish(conversion->converter);
    if (result != QELCAL_OK) return checked(result);
    if (conversion->report != nullptr) {
        for (std::int64_t i = 0; i <= conversion->file; ++i)
            qelcal_report_result(conversion->report, static_cast<std::size_t>(i), output, "");
        qelcal_report_finish(conversion->report, "", append, &buffers[kHead]);
    }
    qelcal_counts counts{};
    qelcal_converter_counts(conversion->converter, &counts);
    buffers[kAnswer].clear();
    Json json(buffers[kAnswer]);
    json.beginObject();
    json.field("target", qelcal_converter_target(conversion->converter));
    json.field("calendars", counts.calendars);
    json.field("entries", counts.entries);
    json.field("alarms", counts.alarms);
    json.field("changed", counts.changed);
    json.field("errors", counts.errors);
    json.field("lost", counts.lost);
    json.field("seriesCut", conversion->series);
    json.key("notes");
    json.beginArray();
    for (const auto& [code, kind] : conversion->notes) {
        json.beginObject();
        json.field("code", code);
        json.field("count", kind.count);
        json.key("first");
        json.raw(kind.first);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return result;
}

QEL_ENGINE(engine_end) void end(Conversion* conversion) {
    qelcal_converter_free(conversion->converter);
    qelcal_report_free(conversion->report);
    delete conversion;
}

// What a file seems to be, a qelcal_kind, from its first bytes.
QEL_ENGINE(engine_recognise) int recognise(const void* piece, std::size_t length) {
    return qelcal_recognise(piece, length);
}

// The answer is the entries of a small calendar as JSON, read with the character set.
QEL_ENGINE(engine_texts) int texts(const void* piece, std::size_t length, const char* charset) {
    qelcal_reader* const reader = qelcal_reader_new();
    int result = qelcal_reader_choose(reader, QELCAL_CHOOSE_CHARSET, charset);
    // With the empty name a set is guessed from what the scan finds.
    if (result == QELCAL_OK) result = qelcal_reader_scan(reader, piece, length);
    if (result == QELCAL_OK) result = qelcal_reader_write(reader, piece, length);
    if (result == QELCAL_OK) result = qelcal_reader_end(reader);
    buffers[kAnswer].clear();
    if (result == QELCAL_OK) {
        Json json(buffers[kAnswer]);
        json.beginArray();
        const qelcal_entry* entry = nullptr;
        while (qelcal_reader_next(reader, &entry) == QELCAL_OK)
            for (const char* name : {"SUMMARY", "LOCATION", "DESCRIPTION"})
                if (const char* text = qelcal_entry_text(entry, name)) json.value(text);
        json.endArray();
    }
    qelcal_reader_free(reader);
    return checked(result);
}

// The answer is a rule in words and in both formats, with its first dates, as JSON.
QEL_ENGINE(engine_rule)
int rule(const char* text, const char* startText, std::size_t most) {
    qelcal_time start{};
    int result = qelcal_time_read(startText, &start);
    if (result != QELCAL_OK) return checked(result);
    qelcal_rules* rules = nullptr;
    result = qelcal_rules_read(text, QELCAL_FORM_ANY, &start, &rules);
    if (result != QELCAL_OK) return checked(result);
    buffers[kAnswer].clear();
    Json json(buffers[kAnswer]);
    json.beginArray();
    for (std::size_t i = 0; i < qelcal_rules_count(rules) && result == QELCAL_OK; ++i) {
        json.beginObject();
        writeRule(json, rules, i);
        json.key("dates");
        json.beginArray();
        if (most > 0) result = qelcal_rules_dates(rules, i, nullptr, nullptr, most, addDate, &json);
        json.endArray();
        json.endObject();
    }
    json.endArray();
    qelcal_rules_free(rules);
    return checked(result);
}

// The answer is the catalogue of notes as JSON.
QEL_ENGINE(engine_kinds) void kinds() {
    buffers[kAnswer].clear();
    Json json(buffers[kAnswer]);
    writeKinds(json);
}

// The answer is the names of the zones that may be chosen, as JSON.
QEL_ENGINE(engine_zones) void zones() {
    buffers[kAnswer].clear();
    Json json(buffers[kAnswer]);
    json.beginArray();
    for (std::size_t i = 1; i <= qelcal_zone_count(); ++i)
        json.value(qelcal_zone_name(static_cast<int>(i)));
    json.endArray();
}

QEL_ENGINE(engine_version) const char* version() {
    return qelcal_version();
}

}  // namespace qel::web
