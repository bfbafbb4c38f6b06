// Public tables of rules with their dates, where they lie beside the checkout. Each rule goes
// through a reader, the conversion and the engine, completed by its entry's start as a caller
// completes it; a rule that the conversion loses, but a record holds, is given to the engine as
// that record. The rows are counted by what becomes of them, and the counts are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/VStr.h"
#include "recurrence/RepeatRecord.h"
#include "support/Tables.h"

namespace {

using qel::test::code;
using qel::test::codes;
using qel::test::date;
using qel::test::dates;
using qel::test::describe;
using qel::test::Row;
using qel::test::split;
using qel::test::table;
using qel::test::Tally;

// The record that holds a rule which the conversion loses; empty for none.
std::string heldAs(const std::string& rule) {
    static std::vector<Row> held = qel::test::cases("recurrence/held.txt");
    const auto found =
        std::find_if(held.begin(), held.end(), [&rule](Row& row) { return row["case"] == rule; });
    return found == held.end() ? "" : (*found)["record"];
}

// The positional form of an iCalendar rule: the iCalendar reader reads no BYMONTHDAY and no WKST.
std::string positional(const std::string& rule) {
    std::map<std::string, std::string> parts;
    for (const std::string& part : split(rule, ';')) {
        const std::size_t equals = part.find('=');
        if (equals != std::string::npos) parts[part.substr(0, equals)] = part.substr(equals + 1);
    }
    std::string text;
    for (const char* name : {"FREQ", "UNTIL", "COUNT", "INTERVAL", "BYSECOND", "BYMINUTE", "BYHOUR",
                             "BYDAY", "BYMONTHDAY", "BYYEARDAY", "BYWEEKNO", "BYMONTH", "BYSETPOS"})
        text += parts[name] + ";";
    // A rule without WKST has weeks that begin on Monday.
    return text + (parts["WKST"].empty() ? "MO" : parts["WKST"]) + ";";
}

// What a caller fills in before it converts: the start's weekday of a weekly rule, the weekday and
// its position of "MP1 #3".
void complete(_rruleRepeat& rule, int start) {
    if (rule.byDay != 0) return;
    const bool isPlain = rule.type == 0 && rule.freq == RRULE_FREQ_WEEKLY;
    const bool isByPosition = rule.type == RRULE_TYPE_BYDAY && rule.freq == RRULE_FREQ_MONTHLY;
    if (!isPlain && !isByPosition) return;
    rule.byDay = static_cast<unsigned char>(2U << (start + 1) % 7);
    rule.type = RRULE_TYPE_BYDAY;
    if (!isByPosition) return;
    rule.type |= RRULE_TYPE_BYSETPOS;
    rule.setPos[0] = static_cast<short>((date(start) % 100 - 1) / 7 + 1);
}

// Whether every date of `some` up to the last one of `all` is among `all`.
bool holdsAll(const std::vector<int>& all, std::vector<int> some) {
    if (all.empty()) return some.empty();
    std::erase_if(some, [&all](int day) { return day > all.back(); });
    return std::includes(all.begin(), all.end(), some.begin(), some.end());
}

// The rule of this system that makes `found` of what peers make `expected` of; empty for none.
std::string explanation(const _rruleRepeat& rule, const ZQTR_REPEAT& repeat, bool untilHasTime,
                        const std::vector<int>& expected, std::vector<int> found) {
    const bool byDate = repeat.type == REPEAT_MONTHLY_DAY || repeat.type == REPEAT_YEARLY_DATE;
    if (byDate && repeat.dayOfMonth > 28 && holdsAll(found, expected))
        return "a day that a month lacks is its last day";
    if (repeat.type == REPEAT_MONTHLY_WEEKDAY && rule.setPos[0] == 5 && holdsAll(found, expected))
        return "the fifth weekday is the last one";
    std::vector<int> withLastDay = expected;
    withLastDay.push_back(+repeat.endDate);
    if (untilHasTime && found == withLastDay) return "UNTIL ends a day, not a time of day";
    for (int& day : found) day += 7 * (rule.interval - 1);
    if (rule.freq == RRULE_FREQ_WEEKLY && rule.interval > 1 && holdsAll(found, expected))
        return "the first occurrence is at most a week after the start";
    return "";
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

// The rule without what an entry adds to it.
_rruleRepeat endless(_rruleRepeat rule) {
    rule.count = -1;
    rule.until = -1;
    rule.wkst = RRULE_DAY_SU;
    return rule;
}

// One row: its rule, as a record, against its dates.
struct Rule {
    _rruleRepeat rule;
    int readerFlags = 0;
    std::string text;  // without its end
};

void compare(Rule& made, int start, const std::string& expectedDates, bool isWhole,
             const std::string& agreement, Tally& tally) {
    complete(made.rule, start);
    const std::string rule = describe(endless(made.rule));
    std::vector<int> expected = codes(expectedDates);
    for (const std::string& held : {heldAs(made.text), heldAs(rule)}) {
        if (held.empty()) continue;
        ZQTR_REPEAT repeat = qel::test::Record(held).repeat;
        repeat.startDate = start;
        EXPECT_EQ(dates(qel::test::occurrences(repeat, -1, expected.size())), expectedDates);
        return tally.add("agree", "as a record built here");
    }
    ZQTR_REPEAT repeat{};
    int flags = 0;
    if (toRepeat(made.rule, start, repeat, flags) != 0 ||
        (flags & ~(BXREPEAT_END_FROM_COUNT | BXREPEAT_WORKDAYS)) != 0)
        return tally.add("lost", rule);
    // Some peers list a start that the rule does not yield, and some count it.
    const bool listsStart = agreement == "counts-the-start";
    if (listsStart) expected.erase(expected.begin());
    const bool toEnd = isWhole && !listsStart;
    std::vector<int> found = qel::test::occurrences(repeat, -1, expected.size() + toEnd);
    if (repeat.endDate != -1)
        std::erase_if(found, [&repeat](int day) { return day > repeat.endDate; });
    const bool untilHasTime = (made.readerFlags & RRULE_UNTIL_HAS_TIME) != 0;
    const std::string why = explanation(made.rule, repeat, untilHasTime, expected, found);
    if (found == expected && listsStart) {
        tally.add("differ", "the peer lists a start that the rule does not yield");
    } else if (found == expected) {
        tally.add("agree", "through reader, conversion and engine");
        expectRoundTrip(repeat);
    } else if (!why.empty() || agreement == "differs") {
        tally.add("differ", why.empty() ? "the peers disagree" : why);
    } else {
        tally.add("lost", rule);
    }
}

// How many rows come to each outcome; the others have none to come to.
void expectCounts(const Tally& tally, const char* name, std::size_t rows,
                  const std::map<std::string, int>& counts) {
    EXPECT_EQ(tally.print(name), static_cast<int>(rows));
    for (const auto& [outcome, count] : counts) EXPECT_EQ(tally.total(outcome), count) << outcome;
}

TEST(RepeatTables, PeerRulesGiveTheirDates) {
    auto rows = table("peer_rrule_dates.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["dtstart"] + " " + row["rrule"]);
        if (row["status"] != "ok") {
            tally.add("no dates in the table", row["reason"]);
            continue;
        }
        Rule made;
        const std::string text = positional(row["rrule"]);
        ASSERT_EQ(BxUtil_PositionaltoRRULE(text.c_str(), &made.rule, &made.readerFlags), 0);
        compare(made, code(std::stoi(row["dtstart"])), row["expected"], row["complete"] == "yes",
                row["agreement"], tally);
    }
    expectCounts(tally, "peer_rrule_dates.tsv", rows.size(),
                 {{"agree", 91}, {"differ", 22}, {"lost", 81}});
}

TEST(RepeatTables, VCalendarRulesGiveTheirDates) {
    auto rows = table("vcal10_rules.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["dtstart"] + " " + row["rule"]);
        if (row["status"] != "basic") {
            tally.add("beyond the basic grammar", row["note"]);
            continue;
        }
        Rule made;
        // No end at all means twice, which is the caller's to fill in.
        if (row["reading"] == "default2") row["rule"] += " #2";
        ASSERT_EQ(BxUtil_PositionalV10toRRULE(row["rule"].c_str(), &made.rule, &made.readerFlags),
                  0);
        made.text = row["rule"].substr(0, row["rule"].rfind(' '));
        // The number behind # counts events here.
        compare(made, code(std::stoi(row["dtstart"])), row["dates_if_number_counts_events"],
                row["complete_events"] == "yes", "same", tally);
    }
    expectCounts(tally, "vcal10_rules.tsv", rows.size(),
                 {{"agree", 11}, {"differ", 1}, {"lost", 7}});
}

// A vCalendar 1.0 rule and the iCalendar rule that peers pair it with give the same rule record,
// and so the same repeat record, or are refused alike. Those read otherwise have a time of day or
// are beyond the reader: "LD", a signed month day, several positions.
TEST(RepeatTables, RulePairsMakeTheSameRecord) {
    auto rows = table("vcal10_ical_pairs.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["vcal10_rule"] + " " + row["ical_rule"]);
        const std::string texts[] = {positional(row["ical_rule"]), row["vcal10_rule"]};
        _rruleRepeat rules[2];
        if (BxUtil_PositionaltoRRULE(texts[0].c_str(), &rules[0], nullptr) != 0) {
            tally.add("no pair", "no iCalendar rule, or a sub-daily one");
            continue;
        }
        ASSERT_EQ(BxUtil_PositionalV10toRRULE(texts[1].c_str(), &rules[1], nullptr), 0);
        std::string made[2];
        for (int i : {0, 1}) {
            ZQTR_REPEAT repeat{};
            int flags = 0;
            const int result = toRepeat(rules[i], code(20020902), repeat, flags);
            // "#0" is no count, and a part without members is none.
            if (rules[i].count == 0) rules[i].count = -1;
            rules[i].type = 0;
            rules[i].wkst = RRULE_DAY_SU;
            made[i] = describe(rules[i]) + ", " + std::to_string(result) + ", " + describe(repeat);
        }
        tally.add(made[0] == made[1] ? "agree" : "read otherwise", texts[1]);
    }
    expectCounts(tally, "vcal10_ical_pairs.tsv", rows.size(),
                 {{"agree", 24}, {"read otherwise", 5}});
}

}  // namespace
