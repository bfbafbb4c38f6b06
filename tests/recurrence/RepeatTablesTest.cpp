// Public tables of rules with their dates, where they lie beside the checkout: each rule goes
// through a reader and the repeat record to the engine. A rule that the conversion carries must
// give the dates of the table, unless a rule of this system explains the difference; the other rows
// are counted by the reason why it is not carried. Of these, the ones that the types 7, 8 and 15
// hold are given to the engine as records built here. The counts are printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/VStr.h"
#include "recurrence/RepeatRecord.h"

namespace {

using qel::test::code;
using qel::test::codes;
using qel::test::date;
using qel::test::dates;
using qel::test::describe;
using Row = std::map<std::string, std::string>;

constexpr unsigned kWorkdays = 0x7C;
constexpr unsigned kWeekend = 0x82;
constexpr unsigned kEveryDay = 0xFE;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> items;
    std::istringstream in(text);
    for (std::string item; std::getline(in, item, separator);) items.push_back(item);
    return items;
}

// The rows of a table by column name; empty when the table is not there.
std::vector<Row> table(const std::string& name) {
    std::ifstream in(std::string(QEL_TEST_SHARED_DATA) + "/tables/" + name);
    std::vector<Row> rows;
    std::string line;
    std::getline(in, line);
    const std::vector<std::string> columns = split(line, '\t');
    while (std::getline(in, line)) {
        const std::vector<std::string> fields = split(line, '\t');
        Row row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row[columns[i]] = i < fields.size() ? fields[i] : "";
        }
        rows.push_back(row);
    }
    return rows;
}

// The rows by what became of them: "agree" and so on, then the reason.
struct Tally {
    std::map<std::string, std::map<std::string, int>> counts;

    void add(const std::string& outcome, const std::string& reason = "") {
        ++counts[outcome][reason];
    }
    int total(const std::string& outcome) {
        int sum = 0;
        for (const auto& [reason, count] : counts[outcome]) sum += count;
        return sum;
    }
    int print(const std::string& name) {
        int sum = 0;
        for (const char* outcome : {"agree", "differ", "not carried"}) sum += total(outcome);
        std::cout << name << ": " << sum << " rows\n";
        for (const auto& [outcome, reasons] : counts) {
            std::cout << "  " << total(outcome) << " " << outcome << "\n";
            for (const auto& [reason, count] : reasons) {
                if (!reason.empty()) std::cout << "    " << count << " " << reason << "\n";
            }
        }
        return sum;
    }
};

// The positional form of an iCalendar rule: the iCalendar reader reads no BYMONTHDAY and no WKST.
std::string positional(const std::string& rule) {
    std::map<std::string, std::string> parts;
    for (const std::string& part : split(rule, ';')) {
        const std::size_t equals = part.find('=');
        if (equals != std::string::npos) parts[part.substr(0, equals)] = part.substr(equals + 1);
    }
    std::string text;
    for (const char* name :
         {"FREQ", "UNTIL", "COUNT", "INTERVAL", "BYSECOND", "BYMINUTE", "BYHOUR", "BYDAY",
          "BYMONTHDAY", "BYYEARDAY", "BYWEEKNO", "BYMONTH", "BYSETPOS"}) {
        text += parts[name] + ";";
    }
    // A rule without WKST has weeks that begin on Monday.
    return text + (parts["WKST"].empty() ? "MO" : parts["WKST"]) + ";";
}

int positionsOf(const _rruleRepeat& rule) {
    int used = 0;
    while (used < 4 && rule.setPos[used] != 0) ++used;
    return used;
}

// Whether weeks that begin on the rule's day part its weekdays otherwise than weeks from Sunday do.
bool weekStartMatters(const _rruleRepeat& rule) {
    const unsigned start = std::bit_floor(unsigned{rule.wkst});
    const unsigned before = rule.byDay & (start - 1);
    return rule.interval > 1 && before != 0 && before != rule.byDay;
}

// Why the conversion does not carry the rule; empty when it does.
std::string notCarried(const _rruleRepeat& rule) {
    const int days = std::popcount(rule.byDay);
    const int months = std::popcount(rule.byMonth);
    const int monthDays = std::popcount(rule.byMonthDay) + std::popcount(rule.byMonthDayNeg);
    const int positions = positionsOf(rule);
    if ((rule.type & RRULE_TYPE_BYWEEKNO) != 0) return "week numbers";
    for (int word = 0; word < 6; ++word) {
        if ((rule.byYearDay[word] | rule.byYearDayNeg[word]) != 0) return "days of the year";
    }
    if ((rule.freq & (RRULE_FREQ_DAILY | RRULE_FREQ_WEEKLY)) != 0) {
        if (months + monthDays > 0) return "days or weeks limited to months or month days";
        if (positions > 0) return "positions of days or weeks";
        if (rule.freq == RRULE_FREQ_WEEKLY && days == 0) return "weekly without weekdays, refused";
        if (rule.freq == RRULE_FREQ_DAILY && days > 0 && rule.interval > 1) {
            return "every n-th day that is a weekday";
        }
        return weekStartMatters(rule) ? "weeks that do not begin on Sunday" : "";
    }
    if (monthDays > 1) return "several days of the month";
    if (rule.byMonthDayNeg != 0) return "a day before the end of the month";
    if (monthDays > 0 && days + positions > 0) return "days of the month that are weekdays";
    if (rule.freq == RRULE_FREQ_MONTHLY && months > 0) return "months limited to some months";
    if (months > 1) return "several months of a year";
    if (rule.freq == RRULE_FREQ_YEARLY && months == 0 && monthDays > 0)
        return "a day of every month";
    if (rule.freq == RRULE_FREQ_YEARLY && months == 0 && days > 0) return "a weekday of the year";
    if (days == 0 && (rule.type & RRULE_TYPE_BYDAY) != 0) return "no weekday";
    if (days == 0) return positions > 0 ? "positions of days of the month" : "";
    if (positions == 0) return "every such weekday of a month";
    if (positions > 1) return "several positions";
    const bool isKind =
        rule.byDay == kWorkdays || rule.byDay == kWeekend || rule.byDay == kEveryDay;
    if (days > 1 && !isKind) return "the n-th of a free choice of weekdays";
    if (rule.setPos[0] < -1) return "a position before the last";
    return rule.setPos[0] > (isKind ? 4 : 5) ? "a position past the record's" : "";
}

// The rule of this system that explains why `found` differs from `expected`; empty for none.
std::string explanation(const _rruleRepeat& rule, const ZQTR_REPEAT& repeat, bool untilHasTime,
                        const std::vector<int>& expected, const std::vector<int>& found) {
    const bool byDate = repeat.type == REPEAT_MONTHLY_DAY || repeat.type == REPEAT_YEARLY_DATE;
    if (byDate && repeat.dayOfMonth > 28) return "a day that a month lacks is its last day";
    if (repeat.type == REPEAT_MONTHLY_WEEKDAY && rule.setPos[0] == 5) {
        return "the fifth weekday is the last one";
    }
    std::vector<int> withLastDay = expected;
    withLastDay.push_back(+repeat.endDate);
    if (untilHasTime && found == withLastDay) return "UNTIL ends a day, not a time of day";
    const int daysLeft = 7 - ((repeat.startDate + 1) % 7 + 1);  // of the start's week
    if (rule.freq == RRULE_FREQ_WEEKLY && rule.interval > 1 && !found.empty() &&
        found.front() > repeat.startDate + daysLeft) {
        return "the first occurrence is at most a week after the start";
    }
    return "";
}

// The types that no rule is converted to, for rules that they hold: 7 (a day of selected months), 8
// and 15 (weekdays of selected weeks). Type 0 when they do not hold the rule.
ZQTR_REPEAT builtHere(const _rruleRepeat& rule, int start) {
    ZQTR_REPEAT repeat = qel::test::Record("0 from " + std::to_string(date(start))).repeat;
    const int positions = positionsOf(rule);
    const bool isYearly = rule.freq == RRULE_FREQ_YEARLY;
    if (rule.freq == RRULE_FREQ_WEEKLY || rule.byMonthDayNeg != 0 ||
        (rule.type & (RRULE_TYPE_BYWEEKNO | RRULE_TYPE_BYYEARDAY)) != 0 ||
        (positions > 0 && (!std::has_single_bit(rule.byDay) || (isYearly && rule.byMonth == 0))) ||
        (rule.interval > 1 && (rule.freq != RRULE_FREQ_MONTHLY || rule.byMonth != 0))) {
        return repeat;
    }
    for (int i = 0; i < 12; ++i)
        repeat.months[i] = rule.byMonth == 0 || (rule.byMonth >> (i + 1) & 1);
    if (rule.freq != RRULE_FREQ_DAILY && rule.byDay == 0) {
        const bool fromStart = rule.byMonthDay == 0;
        const int day = fromStart ? date(start) % 100 : std::countr_zero(rule.byMonthDay);
        if (std::popcount(rule.byMonthDay) > 1 || day > 28 || rule.interval > 1) return repeat;
        if (isYearly && rule.byMonth == 0 && fromStart) return repeat;
        repeat.dayOfMonth = static_cast<short>(day);
        repeat.type = REPEAT_DAY_OF_MONTHS;
        return repeat;
    }
    if (rule.byMonthDay != 0) return repeat;
    for (int i = 0; i < 5; ++i) repeat.weeks[i] = positions == 0;
    for (int i = 0; i < positions; ++i) {
        if (rule.setPos[i] < -1 || rule.setPos[i] > 4) return repeat;
        repeat.weeks[rule.setPos[i] == -1 ? 4 : rule.setPos[i] - 1] = 1;
    }
    for (int i = 0; i < 7; ++i) repeat.days[i] = rule.byDay == 0 || (rule.byDay >> (i + 1) & 1);
    repeat.interval = rule.interval;
    repeat.type = rule.interval > 1 ? REPEAT_WEEKS_MONTHLY : REPEAT_WEEKS_OF_MONTHS;
    return repeat;
}

// The record of a rule from a start, the conversion's warnings in `flags`.
int toRepeat(_rruleRepeat rule, int start, ZQTR_REPEAT& repeat, int& flags) {
    int endFromRule = 0;
    return BxUtil_RRuleToBxRepeat(&rule, nullptr, std::to_string(date(start)).c_str(), &endFromRule,
                                  &repeat, &flags);
}

// To a rule and back the record stays as it is; a counted end becomes its last occurrence.
void expectRoundTrip(ZQTR_REPEAT repeat) {
    ZQTR_REPEAT again{};
    _rruleRepeat rule;
    VStr exclusions;
    VStr startText;
    int flags = 0;
    EXPECT_EQ(BxUtil_BxRepeatToRRule(&repeat, &rule, exclusions, startText, 0, &flags), 0);
    EXPECT_EQ(toRepeat(rule, repeat.startDate, again, flags), 0);
    if ((flags & BXREPEAT_END_FROM_COUNT) != 0) {
        EXPECT_LE(+again.endDate, +repeat.endDate);
        again.endDate = repeat.endDate;
    }
    EXPECT_EQ(describe(again), describe(repeat));
}

// Compares one rule that the conversion carries with the dates of its row.
void compare(const _rruleRepeat& rule, int readerFlags, int start, const std::string& expectedDates,
             bool isWhole, const std::string& agreement, Tally& tally) {
    ZQTR_REPEAT repeat{};
    int flags = 0;
    ASSERT_EQ(toRepeat(rule, start, repeat, flags), 0);
    EXPECT_EQ(flags & ~(BXREPEAT_END_FROM_COUNT | BXREPEAT_WORKDAYS), 0);
    const std::vector<int> expected = codes(expectedDates);
    std::vector<int> found =
        qel::test::occurrences(repeat, -1, expected.size() + (isWhole ? 1 : 0));
    if (repeat.endDate != -1) {
        std::erase_if(found, [&repeat](int day) { return day > repeat.endDate; });
    }
    const bool isTail = found.size() + 1 >= expected.size() &&
                        std::equal(expected.begin() + 1, expected.end(), found.begin());
    const bool untilHasTime = (readerFlags & RRULE_UNTIL_HAS_TIME) != 0;
    const std::string why = explanation(rule, repeat, untilHasTime, expected, found);
    if (found == expected) {
        tally.add("agree");
        expectRoundTrip(repeat);
    } else if (agreement == "counts-the-start" && isTail) {
        tally.add("differ", "the peer lists a start that the rule does not yield");
    } else if (agreement == "differs") {
        tally.add("differ", "the peers disagree");
    } else if (!why.empty()) {
        tally.add("differ", why);
    } else {
        ADD_FAILURE() << "expected " << dates(expected) << "\nfound    " << dates(found) << "\n"
                      << describe(repeat);
    }
}

TEST(RepeatTables, PeerRulesGiveTheirDates) {
    auto rows = table("peer_rrule_dates.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["dtstart"] + " " + row["rrule"]);
        if (row["status"] != "ok") {
            tally.add("not carried", "skipped by the table: " + row["reason"]);
            continue;
        }
        const int start = code(std::stoi(row["dtstart"]));
        _rruleRepeat rule;
        int flags = 0;
        ASSERT_EQ(BxUtil_PositionaltoRRULE(positional(row["rrule"]).c_str(), &rule, &flags), 0);
        if (const std::string reason = notCarried(rule); !reason.empty()) {
            tally.add("not carried", reason);
            const ZQTR_REPEAT own = builtHere(rule, start);
            if (own.type == REPEAT_NONE || row["agreement"] == "counts-the-start") continue;
            const std::size_t count = codes(row["expected"]).size();
            EXPECT_EQ(dates(qel::test::occurrences(own, -1, count)), row["expected"])
                << describe(own);
            tally.add("of these agree as records built here");
            continue;
        }
        compare(rule, flags, start, row["expected"], row["complete"] == "yes", row["agreement"],
                tally);
    }
    EXPECT_EQ(tally.print("peer_rrule_dates.tsv"), static_cast<int>(rows.size()));
    EXPECT_GT(tally.total("agree"), 50);
    EXPECT_GT(tally.total("of these agree as records built here"), 10);
}

// What the vCalendar 1.0 reader itself reads otherwise than peers do; empty for none.
std::string notRead(const std::string& text) {
    const std::vector<std::string> tokens = split(text, ' ');
    int signs = 0;
    int ends = 0;
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        const bool isEnd = tokens[i][0] == '#' || tokens[i].size() >= 8;
        ends += isEnd;
        signs += !isEnd && tokens[i].find_first_of("+-") != std::string::npos;
        if (tokens[i] == "LD") return "the last day by name";
        if (text[1] == 'P' && tokens[i] == "1200") return "a time of day";
    }
    if (ends == 0) return "no end token, which peers read as twice";
    if (ends > 1) return "a count and an end date";
    if (text.compare(0, 2, "MD") == 0 && signs > 0) return "a signed day of the month";
    return signs > 1 ? "several positions" : "";
}

TEST(RepeatTables, VCalendarRulesGiveTheirDates) {
    auto rows = table("vcal10_rules.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["dtstart"] + " " + row["rule"]);
        _rruleRepeat rule;
        int flags = 0;
        ASSERT_EQ(BxUtil_PositionalV10toRRULE(row["rule"].c_str(), &rule, &flags), 0);
        std::string reason =
            row["status"] == "basic" ? notRead(row["rule"]) : "beyond the basic grammar";
        if (reason.empty()) reason = notCarried(rule);
        if (!reason.empty()) {
            tally.add("not carried", reason);
            continue;
        }
        // The number behind # counts events here.
        compare(rule, flags, code(std::stoi(row["dtstart"])), row["dates_if_number_counts_events"],
                row["complete_events"] == "yes", "same", tally);
    }
    EXPECT_EQ(tally.print("vcal10_rules.tsv"), static_cast<int>(rows.size()));
    EXPECT_GT(tally.total("agree"), 0);
}

// A vCalendar 1.0 rule and the iCalendar rule that peers pair it with become the same record.
TEST(RepeatTables, RulePairsMakeTheSameRecord) {
    auto rows = table("vcal10_ical_pairs.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["vcal10_rule"] + " " + row["ical_rule"]);
        _rruleRepeat rules[2];
        if (BxUtil_PositionaltoRRULE(positional(row["ical_rule"]).c_str(), &rules[0], nullptr) !=
            0) {
            tally.add("not carried", "no pair");
            continue;
        }
        ASSERT_EQ(BxUtil_PositionalV10toRRULE(row["vcal10_rule"].c_str(), &rules[1], nullptr), 0);
        std::string reason = notRead(row["vcal10_rule"]);
        for (const _rruleRepeat& rule : rules) {
            if (reason.empty()) reason = notCarried(rule);
        }
        tally.add(reason.empty() ? "agree" : "not carried", reason);
        if (!reason.empty()) continue;
        ZQTR_REPEAT repeats[2];
        int flags = 0;
        for (int i : {0, 1}) ASSERT_EQ(toRepeat(rules[i], code(20020902), repeats[i], flags), 0);
        EXPECT_EQ(describe(repeats[0]), describe(repeats[1]));
    }
    EXPECT_EQ(tally.print("vcal10_ical_pairs.tsv"), static_cast<int>(rows.size()));
    EXPECT_GT(tally.total("agree"), 10);
}

}  // namespace
