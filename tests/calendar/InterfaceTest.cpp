// The calendar library as a program of somebody else uses it: the shared library and its public
// headers, nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "QelCalendar/All.h"
#include "QelUtility/RRule.h"
#include "support/Resources.h"

namespace {

using qelcal::Time;

std::string phoneFile() {
    std::ifstream file(QEL_TEST_SOURCE_DIR "/examples/phone.vcs", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// One event per text of `lines`, in iCalendar.
std::string calendarOf(const std::vector<std::string>& lines) {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (const std::string& each : lines) text += "BEGIN:VEVENT\r\n" + each + "END:VEVENT\r\n";
    return text + "END:VCALENDAR\r\n";
}

// Calls `call` for the pieces of `text`.
template <class Call>
void inPieces(const std::string& text, std::size_t piece, Call call) {
    for (std::size_t at = 0; at < text.size(); at += piece)
        call(text.data() + at, std::min(piece, text.size() - at));
}

struct Result {
    std::string text;
    std::vector<std::string> notes;
    bool operator==(const Result&) const = default;
};

Result converted(const std::string& text, qelcal_format target, std::size_t piece) {
    Result result;
    qelcal::Converter converter(
        target, [&](const char* bytes, std::size_t size) { result.text.append(bytes, size); });
    converter.onNote([&](const qelcal::Note& note) {
        result.notes.push_back(std::to_string(note.line) + " " + note.name);
    });
    converter.beginFile("phone.vcs");
    inPieces(
        text, piece, [&](const char* bytes, std::size_t size) { converter.scan(bytes, size); });
    inPieces(text, piece,
             [&](const char* bytes, std::size_t size) { converter.write(bytes, size); });
    converter.endFile();
    converter.finish();
    return result;
}

// Everything that is asked of each entry, one text for each.
std::vector<std::string> entriesOf(const std::string& text, std::size_t piece) {
    std::vector<std::string> entries;
    qelcal::Reader reader;
    const auto take = [&] {
        while (const qelcal::Entry entry = reader.next()) {
            std::string line = std::to_string(entry.line()) + " " + entry.text("SUMMARY") +
                               (entry.allDay() ? " all day" : "");
            for (const std::string& each : entry.values("CATEGORIES")) line += " #" + each;
            for (const qelcal::Rules& rule : entry.rules()) line += "; " + rule.words();
            for (const Time& date : entry.occurrences(3)) line += " " + date.text();
            for (const qelcal_alarm& alarm : entry.alarms())
                line += std::string("; ") + alarm.action + " " + Time(alarm.time).text();
            for (const qelcal::Note& note : entry.notes()) line += "; note " + note.name;
            entries.push_back(line);
        }
    };
    inPieces(text, piece, [&](const char* bytes, std::size_t size) {
        reader.write(bytes, size);
        take();
    });
    reader.end();
    take();
    for (const qelcal::Note& note : reader.notes()) entries.push_back("note " + note.name);
    return entries;
}

int QELCALENDAR_CALL stopAtOnce(void*, const char*, std::size_t) {
    return 1;
}

int QELCALENDAR_CALL stopAtSecond(void* context, const qelcal_time*) {
    return ++*static_cast<int*>(context) == 2 ? 1 : 0;
}

TEST(Interface, PiecesOfAnySizeConvertAlike) {
    const std::string phone = phoneFile();
    const Result whole = converted(phone, QELCAL_OTHER, phone.size());
    EXPECT_NE(whole.text.find("SUMMARY:Zo\xC3\xAB's birthday\r\n"), std::string::npos);
    EXPECT_EQ(whole.notes,
              (std::vector<std::string>{"17 rule-count-of-dates", "4 zone-recognised",
                                        "30 rule-end-whole-day", "67 rule-without-end"}));
    for (const std::size_t piece : {1U, 7U}) {
        EXPECT_EQ(converted(phone, QELCAL_OTHER, piece), whole);
        EXPECT_EQ(converted(whole.text, QELCAL_VCALENDAR, piece),
                  converted(whole.text, QELCAL_VCALENDAR, whole.text.size()));
    }
    EXPECT_EQ(qelcal::convert(phone), whole.text);
}

// Of a calendar that has ended, no more stays than what finds an entry that comes a second time.
TEST(Interface, MemoryStaysWithinBoundsOverManyCalendars) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer keeps what was freed";
#endif
    qelcal::Converter converter(QELCAL_OTHER, [](const char*, std::size_t) {});
    converter.beginFile("phone.vcs");
    int calendars = 0;
    const auto convert = [&](int count) {
        for (const int end = calendars + count; calendars < end; ++calendars) {
            const std::string text =
                "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nTZ:+01\r\n"
                "DAYLIGHT:TRUE;+02;20050327T010000Z;20051030T010000Z;CET;CEST\r\n"
                "BEGIN:VEVENT\r\nUID:" +
                std::to_string(calendars) +
                "\r\nDTSTART:20050601T090000\r\nSUMMARY:" + std::string(500, 'a') +
                "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
            converter.write(text.data(), text.size());
        }
        return qel::test::memoryInUse();
    };
    constexpr int kMore = 10000;
    const std::size_t before = convert(1000);
    const std::size_t after = convert(kMore);
    converter.endFile();
    converter.finish();
    EXPECT_LT(after, before + std::size_t{kMore} * 300);
}

TEST(Interface, EntriesOfAPhone) {
    const std::vector<std::string> expected = {
        "8 Team meeting #MEETING #WORK; every 2 weeks on Monday, Wednesday and Friday, 10 times "
        "20050615T093000 20050617T093000 20050627T093000; AUDIO 20050615T091500; "
        "note rule-count-of-dates",
        "25 Club night; every month on the first Friday and the last Friday, until 31 December "
        "2005, 23:59:59 20050603T200000 20050624T200000 20050701T200000; DISPLAY 20050603T190000; "
        "note rule-end-whole-day",
        "34 Pay the rent all day; every month on the last day, without end 20050630 20050731 "
        "20050831",
        "41 Zo\xC3\xAB's birthday all day; every year on 14 July, without end 20050714 20060714 "
        "20070714",
        "48 Flight to Oslo 20051029T220000Z; AUDIO 20051029T190000Z",
        "55 Send the tax form; EMAIL 20050929T090000",
        "63 Water the plants; every 2 days, twice 20050601T180000 20050603T180000; note "
        "rule-without-end",
        "note zone-recognised"};
    std::string phone = phoneFile();
    EXPECT_EQ(entriesOf(phone, phone.size()), expected);
    EXPECT_EQ(entriesOf(phone, 1), expected);
    // Line ends of CR alone: many lines come at once.
    std::erase(phone, '\n');
    EXPECT_EQ(entriesOf(phone, phone.size()), expected);
    EXPECT_EQ(entriesOf("", 1), std::vector<std::string>{"note no-calendar"});
}

TEST(Interface, EntriesThatLackSomething) {
    const std::string text = calendarOf({"RRULE:FREQ=DAILY\r\nBROKEN LINE\r\n",
                                         "DTSTART:99991231T235959\r\nRRULE:FREQ=DAILY\r\n",
                                         "DTSTART;TZID=None:20050615T090000\r\n"});
    qelcal::Reader reader;
    reader.write(text.data(), text.size());
    EXPECT_THROW(reader.scan(text.data(), text.size()), qelcal::Error);
    reader.end();
    const qelcal::Entry undated = reader.next();
    EXPECT_TRUE(undated.rules().empty() && undated.occurrences(0).empty());
    EXPECT_EQ(undated.text("X-ICAL-RRULE"), "FREQ=DAILY");
    ASSERT_EQ(undated.notes().size(), 2U);
    EXPECT_EQ(undated.notes()[0].line, 5U);
    EXPECT_FALSE(undated.has(QELCAL_START));
    EXPECT_THROW(undated.time(QELCAL_START), qelcal::Error);
    EXPECT_EQ(qelcal_entry_rules(undated.get(), 0), nullptr);
    EXPECT_EQ(qelcal_entry_text(undated.get(), "SUMMARY"), nullptr);
    EXPECT_STREQ(qelcal_entry_value(undated.get(), 0, 9), "");
    // The calendar ends in 2499; the entry that starts later has no dates, and nothing hangs.
    EXPECT_TRUE(reader.next().occurrences(0).empty());
    const qelcal::Entry zoneless = reader.next();
    EXPECT_EQ(zoneless.zone(), "");
    EXPECT_THROW(zoneless.utc(zoneless.time(QELCAL_START)), qelcal::Error);
    const qelcal_entry* const entry = zoneless.get();
    qelcal_time time = Time::read("20050615");
    qelcal_alarm alarm;
    for (const int refused :
         {qelcal_entry_time(entry, QELCAL_START, nullptr), qelcal_entry_time(entry, 99, &time),
          qelcal_entry_duration(entry, nullptr), qelcal_entry_to_utc(entry, &time, nullptr),
          qelcal_entry_to_utc(entry, nullptr, &time), qelcal_entry_date(entry, 0, 0, &time),
          qelcal_entry_occurrences(entry, nullptr, nullptr, 1, nullptr, nullptr),
          qelcal_entry_alarm(entry, 0, &alarm), qelcal_entry_alarm(entry, 0, nullptr)})
        EXPECT_EQ(refused, QELCAL_INVALID_ARGUMENT);
    EXPECT_EQ(qelcal_entry_text(entry, nullptr), nullptr);
    EXPECT_EQ(qelcal_entry_parameter_count(entry, 99), 0U);
    EXPECT_STREQ(qelcal_entry_parameter_value(entry, 99, 0), "");
    EXPECT_FALSE(reader.next());
}

TEST(Interface, RulesInEveryForm) {
    const struct {
        const char* text;
        qelcal_form form;
        std::vector<std::string> vcalendar;
        std::string icalendar;
        std::string positional;
    } cases[] = {{"W2 MO WE FR #10",
                  QELCAL_FORM_VCALENDAR,
                  {"W2 MO WE FR #10"},
                  "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR",
                  "WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;"},
                 {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30",
                  QELCAL_FORM_ICALENDAR,
                  {},
                  "FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=30;BYMONTH=2",
                  "YEARLY;;;1;;;;;30;;;2;;;"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        const qelcal::Rules rules(each.text, Time::read("20050615T090000"));
        EXPECT_EQ(rules.form(), each.form);
        EXPECT_EQ(rules.texts(QELCAL_FORM_VCALENDAR), each.vcalendar);
        EXPECT_EQ(rules.reason(QELCAL_FORM_VCALENDAR).empty(), !each.vcalendar.empty());
        EXPECT_EQ(rules.text(QELCAL_FORM_ICALENDAR), each.icalendar);
        EXPECT_EQ(rules.text(QELCAL_FORM_POSITIONAL), each.positional);
        EXPECT_EQ(qelcal_rules_record_count(rules.get(), 0), 1U);
    }
    // What a record cannot hold is known whatever was asked for before.
    const Time start = Time::read("20050615T090000");
    EXPECT_NE(qelcal::Rules("FREQ=DAILY;BYHOUR=9,11", start).reason(QELCAL_FORM_POSITIONAL), "");
    const qelcal::Rules hours("FREQ=DAILY;BYHOUR=9,11", start);
    EXPECT_EQ(qelcal_rules_record_note_count(hours.get(), 0), 1U);
    // A rule by itself is on no line.
    std::string many;
    for (int i = 0; i < 2000; ++i) many += "D1 #2 ";
    for (const std::string& text : {std::string("D1 #99999999999"), many}) {
        const std::vector<qelcal::Note> notes = qelcal::Rules(text).notes();
        ASSERT_FALSE(notes.empty());
        for (const qelcal::Note& note : notes) EXPECT_EQ(note.line, 0U) << note.text;
    }
    _rruleRepeat record;
    const qelcal::Rules free("MD1 #0");
    EXPECT_EQ(free.words(), "");
    EXPECT_THROW(free.dates(1), qelcal::Error);
    EXPECT_EQ(qelcal_rules_record(free.get(), 0, 1, &record, nullptr), QELCAL_INVALID_ARGUMENT);
    EXPECT_EQ(qelcal_rules_text_count(free.get(), 1, QELCAL_FORM_ICALENDAR), 0U);
    EXPECT_EQ(qelcal_rules_text_count(free.get(), 0, QELCAL_FORM_ANY), 0U);
}

TEST(Interface, DatesKeepToTheirRange) {
    const qelcal::Rules daily("D1 #0", Time::read("20050615T090000"));
    const auto between = [&](const char* since, const char* through) {
        return daily.dates(Time::read(since), Time::read(through));
    };
    EXPECT_EQ(between("20050616", "20050618").size(), 3U);
    EXPECT_EQ(between("20050615T090001", "20050618T085959").front().text(), "20050616T090000");
    EXPECT_EQ(between("20050615T090001", "20050618T085959").back().text(), "20050617T090000");
    EXPECT_TRUE(between("20050618", "20050616").empty());
    EXPECT_TRUE(between("25000101", "99991231").empty());
    EXPECT_EQ(daily.dates(0).back().text(), "24991231T090000");
    EXPECT_TRUE(qelcal::Rules("D1 #0", Time::read("25000101")).dates(0).empty());
    int calls = 0;
    EXPECT_EQ(qelcal_rules_dates(daily.get(), 0, nullptr, nullptr, 0, stopAtSecond, &calls),
              QELCAL_STOPPED);
    EXPECT_EQ(calls, 2);
}

TEST(Interface, TimesAtTheirLimits) {
    qelcal_time time = Time::read("99991231T235959");
    EXPECT_EQ(qelcal_time_add(&time, 1, &time), QELCAL_INVALID_ARGUMENT);
    for (const std::int64_t far :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(qelcal_time_add(&time, far, &time), QELCAL_INVALID_ARGUMENT);
        EXPECT_LT(qelcal::durationText(far).size(), std::size_t{QELCAL_TIME_SIZE});
    }
    EXPECT_EQ(qelcal::durationText(std::numeric_limits<std::int64_t>::min())[0], '-');
    EXPECT_EQ(Time::read("00010101").plus(86400).text(), "00010102");
    EXPECT_EQ(Time::read("00010101").plus(3600).text(), "00010101T010000");
    EXPECT_EQ(qelcal_time_read("20050631", &time), QELCAL_INVALID_TEXT);
    EXPECT_STREQ(qelcal_last_error(), "June 2005 has no day 31");
    EXPECT_EQ(qelcal_time_read("00010101T000000+1400", &time), QELCAL_INVALID_TEXT);
    EXPECT_THROW(qelcal::readDuration("PT99999999999999999999S"), qelcal::Error);
    EXPECT_EQ(qelcal::monthName(12) + qelcal::weekdayName(7), "DecemberSaturday");
    for (const int beyond : {0, 13})
        EXPECT_EQ(qelcal::monthName(beyond) + qelcal::weekdayName(beyond), "");
}

TEST(Interface, ZonesAndTextsByName) {
    const qelcal::Zone berlin =
        qelcal::Zone::find("amsterdam, berlin, bern, rome, stockholm, vienna");
    const std::int64_t repeated = Time::read("20051030T023000").seconds();
    EXPECT_EQ(berlin.toUtc(repeated).occurs, QELCAL_REPEATED);
    EXPECT_EQ(qelcal::Zone::local().changes(2499).size() % 2, 0U);
    EXPECT_THROW(berlin.changes(std::numeric_limits<int>::max()), qelcal::Error);
    EXPECT_THROW(berlin.offset(-1), qelcal::Error);
    int zone = 5;
    EXPECT_EQ(qelcal_zone_find("e", &zone), QELCAL_UNKNOWN_NAME);
    EXPECT_EQ(zone, 5);
    const std::vector<qelcal::Zone> world = qelcal::Zone::world();
    EXPECT_EQ(qelcal::Zone::find("asia/tokyo").offset(repeated), 9 * 3600);
    EXPECT_EQ(qelcal::Zone::find(world.back().name()).number(), world.back().number());
    EXPECT_STREQ(qelcal_zone_name(world.back().number() + 1), "");
    EXPECT_EQ(qelcal::Zone::worldVersion().size(), 5U);
    EXPECT_THROW(qelcal::toUtf8("no-such-set", "a"), qelcal::Error);
    EXPECT_EQ(qelcal_text_to_utf8("utf-8", "a", 1, stopAtOnce, nullptr, nullptr), QELCAL_STOPPED);
}

// A file that another thread reads has the same calendar, notes and page; a part does nothing else.
TEST(Interface, PartsAreJoinedInOrder) {
    const std::string first =
        "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nTZ:+01\r\nBEGIN:VEVENT\r\nUID:1\r\nRRULE:D1 #3\r\n"
        "DTSTART:20050615T083000\r\nno property\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    const auto convert = [&](bool parts) {
        std::string all;
        const auto add = [&all](const char* bytes, std::size_t size) { all.append(bytes, size); };
        qelcal::Report report(add);
        qelcal::Converter converter(QELCAL_OTHER, add);
        converter.onNote([&](const qelcal::Note& note) { all += note.file + note.text; });
        converter.onEntry(
            [&](const qelcal::Converted& each) {
                all += each.source + each.written + std::to_string(each.entry.notes().size());
            },
            true);
        converter.reportTo(&report);
        for (const std::string& text : {first, std::string("BEGIN:VCALENDAR\n"), first}) {
            qelcal::Converter part = converter.part();
            qelcal::Converter& reader = parts ? part : converter;
            reader.beginFile("name");
            reader.scan(text.data(), text.size());
            reader.write(text.data(), text.size());
            if (parts) EXPECT_THROW(converter.join(part), qelcal::Error);
            reader.endFile();
            if (parts) converter.join(part);
        }
        converter.finish();
        report.finish("", add);
        const qelcal_counts counts = converter.counts();
        return all + std::to_string(counts.calendars) + std::to_string(counts.entries) +
               std::to_string(counts.warnings);
    };
    EXPECT_EQ(convert(true), convert(false));
    qelcal::Report page([](const char*, std::size_t) {});
    qelcal::Report held = page.part();
    EXPECT_THROW(held.finish("", {}), qelcal::Error);
    EXPECT_THROW(held.join(page), qelcal::Error);
    qelcal::Converter part = qelcal::Converter(QELCAL_OTHER, {}).part();
    EXPECT_THROW(part.finish(), qelcal::Error);
    EXPECT_THROW(part.reportTo(&page), qelcal::Error);
    EXPECT_EQ(qelcal_report_part(held.get()), nullptr);
}

// Null for every pointer, 0 for every number.
template <class Result, class... Arguments>
Result withNothing(Result (*call)(Arguments...)) {
    return call(Arguments{}...);
}

TEST(Interface, NullHandlesAreAnswered) {
    qelcal_note_kind kind;
    EXPECT_EQ(qelcal_note_kind_at(qelcal_note_kind_count(), &kind), QELCAL_INVALID_ARGUMENT);
    const int refused[] = {
        withNothing(qelcal_note_kind_at),        withNothing(qelcal_reader_scan),
        withNothing(qelcal_reader_write),        withNothing(qelcal_reader_end),
        withNothing(qelcal_reader_next),         withNothing(qelcal_reader_choose),
        withNothing(qelcal_converter_on_note),   withNothing(qelcal_converter_on_entry),
        withNothing(qelcal_converter_choose),    withNothing(qelcal_converter_begin_file),
        withNothing(qelcal_converter_scan),      withNothing(qelcal_converter_write),
        withNothing(qelcal_converter_end_file),  withNothing(qelcal_converter_finish),
        withNothing(qelcal_converter_join),      withNothing(qelcal_converter_counts),
        withNothing(qelcal_converter_report),    withNothing(qelcal_converter_threads),
        withNothing(qelcal_report_week_start),   withNothing(qelcal_report_add_file),
        withNothing(qelcal_report_join),         withNothing(qelcal_report_result),
        withNothing(qelcal_report_finish),       withNothing(qelcal_rules_read),
        withNothing(qelcal_rules_read_counting), withNothing(qelcal_rules_record),
        withNothing(qelcal_rules_dates),         withNothing(qelcal_entry_time),
        withNothing(qelcal_entry_duration),      withNothing(qelcal_entry_to_utc),
        withNothing(qelcal_entry_date),          withNothing(qelcal_entry_occurrences),
        withNothing(qelcal_entry_alarm),         withNothing(qelcal_time_read),
        withNothing(qelcal_time_write),          withNothing(qelcal_time_add),
        withNothing(qelcal_duration_read),       withNothing(qelcal_duration_write),
        withNothing(qelcal_zone_find),           withNothing(qelcal_zone_to_utc),
        withNothing(qelcal_zone_offset),         withNothing(qelcal_zone_changes),
        withNothing(qelcal_text_to_utf8),        withNothing(qelcal_printable)};
    for (std::size_t i = 0; i < std::size(refused); ++i)
        EXPECT_EQ(refused[i], QELCAL_INVALID_ARGUMENT) << "the function with number " << i;
    for (const std::size_t count :
         {withNothing(qelcal_entry_property_count), withNothing(qelcal_entry_value_count),
          withNothing(qelcal_entry_parameter_count), withNothing(qelcal_entry_rule_count),
          withNothing(qelcal_entry_date_count), withNothing(qelcal_entry_alarm_count),
          withNothing(qelcal_entry_note_count), withNothing(qelcal_entry_line),
          withNothing(qelcal_note_line), withNothing(qelcal_note_value_count),
          withNothing(qelcal_reader_note_count), withNothing(qelcal_rules_count),
          withNothing(qelcal_rules_note_count), withNothing(qelcal_rules_record_count),
          withNothing(qelcal_rules_record_note_count), withNothing(qelcal_rules_text_count)})
        EXPECT_EQ(count, 0U);
    for (const char* text :
         {withNothing(qelcal_entry_uid), withNothing(qelcal_note_text),
          withNothing(qelcal_note_name), withNothing(qelcal_note_file),
          withNothing(qelcal_note_value), withNothing(qelcal_entry_property_name),
          withNothing(qelcal_entry_value), withNothing(qelcal_entry_parameter_name),
          withNothing(qelcal_entry_parameter_value), withNothing(qelcal_rules_text),
          withNothing(qelcal_rules_words), qelcal_result_text(-1)})
        EXPECT_STREQ(text, "");
    for (const void* nothing : {static_cast<const void*>(withNothing(qelcal_report_new)),
                                static_cast<const void*>(withNothing(qelcal_report_part)),
                                static_cast<const void*>(withNothing(qelcal_converter_part)),
                                static_cast<const void*>(withNothing(qelcal_entry_zone)),
                                static_cast<const void*>(withNothing(qelcal_entry_text)),
                                static_cast<const void*>(withNothing(qelcal_entry_rules)),
                                static_cast<const void*>(withNothing(qelcal_entry_note)),
                                static_cast<const void*>(withNothing(qelcal_reader_note)),
                                static_cast<const void*>(withNothing(qelcal_rules_note))})
        EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(withNothing(qelcal_note_code_of) + withNothing(qelcal_entry_kind_of) +
                  withNothing(qelcal_entry_all_day) + withNothing(qelcal_rules_form) +
                  withNothing(qelcal_rules_complete) + withNothing(qelcal_time_weekday) +
                  static_cast<int>(withNothing(qelcal_time_seconds)),
              0);
    for (int result = QELCAL_OK; result <= QELCAL_INTERNAL; ++result)
        EXPECT_STRNE(qelcal_result_text(result), "") << result;
    qelcal_reader_free(nullptr);
    qelcal_converter_free(nullptr);
    qelcal_report_free(nullptr);
    qelcal_rules_free(nullptr);
}

int QELCALENDAR_CALL ignore(void*, const char*, std::size_t) {
    return 0;
}

int QELCALENDAR_CALL ignoreDate(void*, const qelcal_time*) {
    return 0;
}

TEST(Interface, EveryFieldOfATimeIsChecked) {
    const qelcal::Rules rules("D1 #3", Time::read("20050615"));
    const std::string text = calendarOf({"DTSTART:20050615T090000Z\r\n"});
    qelcal::Reader reader;
    reader.write(text.data(), text.size());
    const qelcal::Entry entry = reader.next();
    qelcal_time good = Time::read("20050615T090000");
    char written[QELCAL_TIME_SIZE];
    qelcal_rules* read = nullptr;
    for (const auto field :
         {&qelcal_time::year, &qelcal_time::month, &qelcal_time::day, &qelcal_time::hour,
          &qelcal_time::minute, &qelcal_time::second, &qelcal_time::clock})
        for (const int value : {-1, 10000}) {
            qelcal_time bad = good;
            bad.*field = value;
            for (const int refused :
                 {qelcal_time_write(&bad, written), qelcal_time_add(&bad, 1, &good),
                  qelcal_rules_read("D1 #3", QELCAL_FORM_ANY, &bad, &read),
                  qelcal_rules_dates(rules.get(), 0, &bad, nullptr, 0, ignoreDate, nullptr),
                  qelcal_rules_dates(rules.get(), 0, nullptr, &bad, 0, ignoreDate, nullptr),
                  qelcal_entry_occurrences(entry.get(), &bad, nullptr, 0, ignoreDate, nullptr),
                  qelcal_entry_occurrences(entry.get(), nullptr, &bad, 0, ignoreDate, nullptr),
                  qelcal_entry_to_utc(entry.get(), &bad, &good)})
                EXPECT_EQ(refused, QELCAL_INVALID_ARGUMENT);
        }
    EXPECT_EQ(qelcal_time_add(&good, -std::int64_t{800000} * 86400, &good),
              QELCAL_INVALID_ARGUMENT);
}

TEST(Interface, EveryArgumentIsChecked) {
    qelcal_time time = Time::read("20050615T090000");
    std::int64_t number = 0;
    std::size_t count = 0;
    qelcal_rules* read = nullptr;
    const qelcal::Rules rules("D1 #3", time);
    const std::unique_ptr<qelcal_reader, decltype(&qelcal_reader_free)> readerOwner(
        qelcal_reader_new(), &qelcal_reader_free);
    qelcal_reader* reader = readerOwner.get();
    const std::unique_ptr<qelcal_converter, decltype(&qelcal_converter_free)> converterOwner(
        qelcal_converter_new(QELCAL_OTHER, nullptr, nullptr), &qelcal_converter_free);
    qelcal_converter* converter = converterOwner.get();
    const std::unique_ptr<qelcal_converter, decltype(&qelcal_converter_free)> partOwner(
        qelcal_converter_part(converter), &qelcal_converter_free);
    qelcal_converter* part = partOwner.get();
    qelcal::Report page([](const char*, std::size_t) {});
    const qelcal::Report other([](const char*, std::size_t) {});
    qelcal_report* report = page.get();
    ASSERT_EQ(qelcal_report_add_file(report, "one"), QELCAL_OK);
    const int zones = static_cast<int>(qelcal_zone_count());
    const int refused[] = {
        qelcal_time_read("20050615", nullptr),
        qelcal_time_write(&time, nullptr),
        qelcal_time_add(&time, 1, nullptr),
        qelcal_duration_read("P1D", nullptr),
        qelcal_zone_find("Berlin", nullptr),
        qelcal_zone_to_utc(zones + 1, 0, &number, nullptr),
        qelcal_zone_to_utc(1, -1, &number, nullptr),
        qelcal_zone_offset(-1, 0, &number),
        qelcal_zone_offset(1, Time::read("25000101").seconds(), &number),
        qelcal_zone_changes(-1, 2005, nullptr, 0, &count),
        qelcal_zone_changes(1, 2005, nullptr, 0, nullptr),
        qelcal_zone_changes(1, 2005, nullptr, 1, &count),
        qelcal_text_to_utf8("utf-8", "a", 1, nullptr, nullptr, nullptr),
        qelcal_text_to_utf8("utf-8", nullptr, 1, ignore, nullptr, nullptr),
        qelcal_printable(nullptr, 1, 0, ignore, nullptr),
        qelcal_rules_read("D1", QELCAL_FORM_ANY, nullptr, nullptr),
        qelcal_rules_read("D1", 99, nullptr, &read),
        qelcal_rules_read_counting("D1", QELCAL_FORM_ANY, nullptr, "weeks", &read),
        qelcal_rules_record(rules.get(), 0, 0, nullptr, nullptr),
        qelcal_rules_dates(rules.get(), 0, nullptr, nullptr, 0, nullptr, nullptr),
        qelcal_reader_scan(reader, nullptr, 1),
        qelcal_reader_write(reader, nullptr, 1),
        qelcal_reader_next(reader, nullptr),
        qelcal_reader_choose(reader, 99, ""),
        qelcal_reader_choose(reader, QELCAL_CHOOSE_ZONE, "Atlantis"),
        qelcal_reader_choose(reader, QELCAL_CHOOSE_DISTINCT_UIDS, "maybe"),
        qelcal_converter_choose(converter, QELCAL_CHOOSE_ONLY, "events,dreams"),
        qelcal_converter_join(converter, nullptr),
        qelcal_converter_join(converter, converter),
        qelcal_converter_join(part, part),
        qelcal_converter_on_note(part, nullptr, nullptr),
        qelcal_converter_on_entry(part, nullptr, nullptr, 0),
        qelcal_converter_scan(converter, nullptr, 1),
        qelcal_converter_write(converter, nullptr, 1),
        qelcal_converter_counts(converter, nullptr),
        qelcal_report_week_start(report, 0),
        qelcal_report_week_start(report, 8),
        qelcal_report_add_file(report, nullptr),
        qelcal_report_join(report, nullptr),
        qelcal_report_join(report, report),
        qelcal_report_join(report, other.get()),
        qelcal_report_result(report, 0, nullptr, ""),
        qelcal_report_result(report, 0, "", nullptr),
        qelcal_report_finish(report, nullptr, ignore, nullptr),
        qelcal_report_finish(report, "", nullptr, nullptr)};
    for (std::size_t i = 0; i < std::size(refused); ++i)
        EXPECT_EQ(refused[i], QELCAL_INVALID_ARGUMENT) << "the call with number " << i;
    EXPECT_EQ(qelcal_converter_part(part), nullptr);
    EXPECT_EQ(qelcal_converter_new(QELCAL_OTHER - 1, ignore, nullptr), nullptr);
    EXPECT_EQ(qelcal_reader_choose(reader, QELCAL_CHOOSE_CHARSET, "no-such-set"),
              QELCAL_UNKNOWN_NAME);
    // Nothing of nothing is allowed, and a choice without a value is the usual one.
    for (const int done :
         {qelcal_reader_choose(reader, QELCAL_CHOOSE_COUNT_MEANS, "dates"),
          qelcal_reader_choose(reader, QELCAL_CHOOSE_ONLY, "todos,notes"),
          qelcal_reader_choose(reader, QELCAL_CHOOSE_DISTINCT_UIDS, nullptr),
          qelcal_reader_choose(reader, QELCAL_CHOOSE_DISTINCT_UIDS, "no"),
          qelcal_reader_scan(reader, nullptr, 0), qelcal_reader_write(reader, nullptr, 0),
          qelcal_text_to_utf8("utf-8", nullptr, 0, ignore, nullptr, nullptr),
          qelcal_printable(nullptr, 0, 0, ignore, nullptr),
          qelcal_zone_to_utc(1, 0, &number, nullptr)})
        EXPECT_EQ(done, QELCAL_OK);
    EXPECT_EQ(qelcal_is_utf8(nullptr, 0) + qelcal_is_utf8(nullptr, 1), 1);
    EXPECT_EQ(qelcal_zone_knows(1, 1) + qelcal_zone_knows(-1, 2005) + qelcal_charset_known(nullptr),
              0);
    EXPECT_STREQ(qelcal_kind_text(-1), "");
    EXPECT_EQ(qelcal_converter_target(nullptr), QELCAL_OTHER);
    int replaced = 2;
    EXPECT_EQ(qelcal_text_to_utf8("ascii", "\xE9", 1, ignore, nullptr, &replaced), QELCAL_OK);
    EXPECT_EQ(replaced, 1);
}

TEST(Interface, CallsOutOfOrderAreRefused) {
    const std::string phone = phoneFile();
    qelcal::Reader reader;
    reader.scan(phone.data(), phone.size());
    EXPECT_THROW(reader.choose(QELCAL_CHOOSE_ZONE, "Europe/Berlin"), qelcal::Error);
    reader.end();
    EXPECT_THROW(reader.choose(QELCAL_CHOOSE_ZONE, ""), qelcal::Error);
    EXPECT_THROW(reader.write(phone.data(), 1), qelcal::Error);
    const auto nothing = [](const char*, std::size_t) {};
    qelcal::Report report(nothing);
    qelcal::Report done(nothing);
    done.finish("", nothing);
    qelcal::Report part = report.part();
    qelcal::Converter converter(QELCAL_OTHER, {});
    EXPECT_EQ(converter.target(), QELCAL_OTHER);
    converter.reportTo(nullptr);
    EXPECT_THROW(converter.reportTo(&done), qelcal::Error);
    EXPECT_THROW(done.finish("", nothing), qelcal::Error);
    EXPECT_THROW(done.addFile("a"), qelcal::Error);
    EXPECT_THROW(done.join(part), qelcal::Error);
    converter.reportTo(&report);
    converter.beginFile("a");
    EXPECT_THROW(converter.choose(QELCAL_CHOOSE_ZONE, ""), qelcal::Error);
    converter.write(phone.data(), phone.size());
    EXPECT_THROW(converter.reportTo(nullptr), qelcal::Error);
    EXPECT_THROW(converter.onEntry([](const qelcal::Converted&) {}, false), qelcal::Error);
    EXPECT_THROW(report.addFile("b"), qelcal::Error);
    EXPECT_THROW(report.join(part), qelcal::Error);
    EXPECT_THROW(report.finish("", nothing), qelcal::Error);
    // While its file is open, nobody else's goes into the report.
    qelcal::Converter second(QELCAL_VCALENDAR, {});
    second.reportTo(&report);
    qelcal::Converter files = second.part();
    files.beginFile("b");
    files.endFile();
    EXPECT_THROW(second.join(files), qelcal::Error);
    EXPECT_THROW(converter.join(files), qelcal::Error);
    converter.endFile();
    EXPECT_EQ(converter.target(), QELCAL_ICALENDAR);
    second.join(files);
    report.join(part);
    EXPECT_THROW(report.join(part), qelcal::Error);
    report.finish("", nothing);
}

TEST(Interface, ConvertersRefuseCallsOutOfOrder) {
    EXPECT_EQ(qelcal_converter_new(99, nullptr, nullptr), nullptr);
    const std::string phone = phoneFile();
    const std::unique_ptr<qelcal_converter, decltype(&qelcal_converter_free)> owner(
        qelcal_converter_new(QELCAL_OTHER, stopAtOnce, nullptr), &qelcal_converter_free);
    qelcal_converter* converter = owner.get();
    EXPECT_EQ(qelcal_converter_write(converter, "A", 1), QELCAL_WRONG_ORDER);
    EXPECT_EQ(qelcal_converter_end_file(converter), QELCAL_WRONG_ORDER);
    EXPECT_EQ(qelcal_converter_begin_file(converter, nullptr), QELCAL_INVALID_ARGUMENT);
    EXPECT_EQ(qelcal_converter_begin_file(converter, "a"), QELCAL_OK);
    EXPECT_EQ(qelcal_converter_begin_file(converter, "a"), QELCAL_WRONG_ORDER);
    EXPECT_EQ(qelcal_converter_write(converter, nullptr, 1), QELCAL_INVALID_ARGUMENT);
    EXPECT_EQ(qelcal_converter_write(converter, phone.data(), phone.size()), QELCAL_OK);
    EXPECT_EQ(qelcal_converter_scan(converter, "A", 1), QELCAL_WRONG_ORDER);
    EXPECT_EQ(qelcal_converter_finish(converter), QELCAL_WRONG_ORDER);
    EXPECT_EQ(qelcal_converter_end_file(converter), QELCAL_OK);
    // The refused calls did no harm; what the output refuses ends the conversion.
    EXPECT_EQ(qelcal_converter_finish(converter), QELCAL_STOPPED);
    EXPECT_EQ(qelcal_converter_finish(converter), QELCAL_WRONG_ORDER);
    qelcal_counts counts;
    EXPECT_EQ(qelcal_converter_counts(converter, &counts), QELCAL_OK);
    EXPECT_EQ(counts.entries, 7U);
}

TEST(Interface, ThreadsShareAFile) {
    std::string calendars;
    for (int i = 0; i < 400; ++i) calendars += phoneFile();
    const auto convert = [&](int threads) {
        std::string all;
        qelcal::Converter converter(
            QELCAL_OTHER, [&](const char* bytes, std::size_t size) { all.append(bytes, size); });
        converter.threads(threads);
        converter.onNote([&](const qelcal::Note& note) { all += note.text; });
        converter.beginFile("");
        EXPECT_THROW(converter.threads(1), qelcal::Error);
        converter.scan(calendars.data(), calendars.size());
        converter.write(calendars.data(), calendars.size());
        converter.endFile();
        converter.finish();
        return all;
    };
    EXPECT_EQ(convert(3) == convert(1), true);
    qelcal::Converter converter(QELCAL_OTHER, {});
    for (const int wrong : {0, -1, QELCAL_MOST_THREADS + 1})
        EXPECT_THROW(converter.threads(wrong), qelcal::Error);
    EXPECT_THROW(converter.part().threads(2), qelcal::Error);
}

TEST(Interface, WhatACallbackThrowsComesOut) {
    const std::string phone = phoneFile();
    qelcal::Converter converter(QELCAL_OTHER, {});
    int seen = 0;
    converter.onEntry(
        [&](const qelcal::Converted& each) {
            EXPECT_EQ(each.source.rfind("BEGIN:V", 0), 0U);
            EXPECT_EQ(each.target, QELCAL_ICALENDAR);
            if (++seen == 3) throw std::out_of_range("three");
        },
        true);
    converter.beginFile("");
    EXPECT_THROW(converter.write(phone.data(), phone.size()), std::out_of_range);
    EXPECT_EQ(seen, 3);
    EXPECT_THROW(converter.endFile(), qelcal::Error);
}

TEST(Interface, OneReportForSeveralConverters) {
    const std::string phone = phoneFile();
    std::string body;
    std::string head;
    const auto to = [](std::string& text) {
        return [&text](const char* bytes, std::size_t size) { text.append(bytes, size); };
    };
    qelcal::Report report(to(body));
    qelcal::Converter first(QELCAL_OTHER, {});
    first.reportTo(&report);
    {
        qelcal::Converter second(QELCAL_OTHER, {});
        second.reportTo(&report);
        second.onNote([](const qelcal::Note&) { throw std::runtime_error("no more"); });
        first.beginFile("one");
        first.write(phone.data(), phone.size());
        second.beginFile("two");
        EXPECT_THROW(second.write(phone.data(), phone.size()), qelcal::Error);
        EXPECT_THROW(report.finish("", to(head)), qelcal::Error);
        first.endFile();
        EXPECT_THROW(second.write(phone.data(), phone.size()), std::runtime_error);
    }
    report.result(1, "", "it was given up");
    EXPECT_THROW(report.result(2, "", ""), qelcal::Error);
    report.finish("A remark", to(head));
    const auto count = [&](const char* part) {
        int found = 0;
        for (std::size_t at = body.find(part); at != std::string::npos;
             at = body.find(part, at + 1))
            ++found;
        return found;
    };
    EXPECT_EQ(count("<section"), 2);
    EXPECT_EQ(count("</section>"), 2);
    EXPECT_NE(head.find("A remark"), std::string::npos);
    const std::size_t size = body.size();
    first.beginFile("late");
    EXPECT_THROW(first.write(phone.data(), phone.size()), qelcal::Error);
    EXPECT_THROW(report.result(0, "", ""), qelcal::Error);
    EXPECT_EQ(body.size(), size);
}

TEST(Interface, FilesAreRecognised) {
    using namespace std::string_literals;
    const std::string utf16 = "\0B\0E\0G\0I\0N\0:\0V\0C\0A\0L\0E\0N\0D\0A\0R\0\r\0\n"s;
    const std::pair<std::string, qelcal_kind> kFiles[] = {
        {"BEGIN:VCALENDAR\r\n", QELCAL_KIND_CALENDAR},
        {"\xEF\xBB\xBF\r\n begin : vevent :\r\n", QELCAL_KIND_CALENDAR},
        {"BEGIN:VCARD\nEND:VCARD\nBEGIN:VTODO\n", QELCAL_KIND_CALENDAR},
        {"\xFE\xFF" + utf16, QELCAL_KIND_CALENDAR},
        {utf16.substr(1), QELCAL_KIND_CALENDAR},
        {"\0\n"s + utf16, QELCAL_KIND_UTF16},
        {"BEGIN:VCARD\r\nNOTE:BEGIN:VEVENT\r\n", QELCAL_KIND_CONTACT},
        {"", QELCAL_KIND_EMPTY},
        {"\xEF\xBB\xBF \r\n\x1A", QELCAL_KIND_EMPTY},
        {"PK\3\4rest", QELCAL_KIND_ZIP},
        {"\n<!DOCTYPE html><p>BEGIN:VEVENT", QELCAL_KIND_HTML},
        {"<?xml version=\"1.0\"?>", QELCAL_KIND_XML},
        {"MZ\x90\0\3\0\0\0\4 This program"s, QELCAL_KIND_BINARY},
        {"What to do: BEGIN:VEVENT", QELCAL_KIND_TEXT},
        {std::string(60000, ':'), QELCAL_KIND_TEXT},
    };
    for (const auto& [bytes, kind] : kFiles)
        EXPECT_EQ(qelcal::recognise(bytes), kind) << bytes.substr(0, 40);
    EXPECT_EQ(qelcal_recognise(nullptr, 5), QELCAL_KIND_EMPTY);
    EXPECT_STREQ(qelcal_kind_text(99), "");
    for (int kind = QELCAL_KIND_TEXT; kind <= QELCAL_KIND_BINARY; ++kind)
        EXPECT_STRNE(qelcal_kind_text(kind), "");
}

}  // namespace
