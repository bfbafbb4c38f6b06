// Public tables of rules with their dates, where they lie beside the checkout: the converter reads
// each rule, writes it in both formats, and lists its dates. Rows that it cannot say are counted by
// what is in the way, rows that it reads otherwise by why.
#include <gtest/gtest.h>

#include <algorithm>

#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"
#include "support/Tables.h"

namespace qel::test {
namespace {

using namespace qel::calendar;

RuleStart startOf(const std::string& date) {
    const Civil start = civilOf(parseMoment(date).value().day);
    return {start.year, start.month, start.day, 0, true};
}

// Without the start, and not counting it, when it is `outside` the rule.
std::string datesOf(std::vector<Rule> rules, const RuleStart& start, bool outside,
                    std::size_t most) {
    std::vector<int> days;
    RuleLimits limits;
    limits.most = most + (outside ? 1 : 0);
    for (Rule& rule : rules) {
        if (outside && rule.count > 0) ++rule.count;
        for (const int day : expandRule(rule, start, limits)) days.push_back(day);
    }
    if (outside) std::erase(days, dayNumber(start.year, start.month, start.day));
    std::sort(days.begin(), days.end());
    days.erase(std::unique(days.begin(), days.end()), days.end());
    std::string text;
    for (const int day : days)
        text += (text.empty() ? "" : " ") + formatMoment({.day = day, .isDate = true});
    return text;
}

// The dates of a rule text, when they are the same again by way of either written form.
std::string datesOf(const std::string& text, RuleForm form, const RuleStart& start, bool outside,
                    std::size_t most, CountMeans means = CountMeans::Dates) {
    const RuleReading reading = readRules(text, form, start, means);
    const std::string dates = datesOf(reading.rules, start, outside, most);
    for (const Rule& rule : reading.rules) {
        const std::string one = datesOf({rule}, start, false, most);
        const std::string again = iCalendarText(rule);
        EXPECT_EQ(datesOf(readRules(again, RuleForm::ICalendar, start).rules, start, false, most),
                  one)
            << again;
        const VCalendarRule back = vCalendarTexts(rule, start);
        if (back.texts.empty()) continue;
        EXPECT_EQ(datesOf(readRules(back.texts[0], RuleForm::VCalendar10, start).rules, start,
                          false, most),
                  one)
            << back.texts[0];
    }
    return dates;
}

// A row's dates against those that are expected; `whole` when these are all.
void compare(const std::string& found, const std::string& expected, const std::string& why,
             Tally& tally) {
    if (found == expected)
        tally.add("agree", "the dates");
    else if (!why.empty())
        tally.add("differ", why);
    else
        ADD_FAILURE() << "expected " << expected << "\nfound    " << found;
}

TEST(RuleTables, PeerRulesGiveTheirDates) {
    std::vector<Row> rows = table("peer_rrule_dates.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["dtstart"] + " " + row["rrule"]);
        if (row["status"] != "ok") {
            tally.add("no dates in the table", row["reason"]);
            continue;
        }
        RuleStart start = startOf(row["dtstart"]);
        if (row["agreement"] == "until-time") {
            // The peers' series are at nine.
            start.isDate = false;
            start.secondOfDay = 9 * 3600;
        }
        const std::string& expected = row["expected"];
        // A start is the first occurrence here, as RFC 5545 has it; most peers leave it out where
        // the rule does not yield it.
        const bool outside = row["start_in_rule"] == "no" && !expected.starts_with(row["dtstart"]);
        const std::string why =
            row["agreement"] == "differs" ? "the peers disagree"
            : row["agreement"] == "counts-the-start"
                ? "the peer lists a start that the rule does not yield, and does not count it"
                : "";
        const std::size_t most = split(expected, ' ').size() + (row["complete"] == "yes" ? 1 : 0);
        compare(datesOf(row["rrule"], RuleForm::ICalendar, start, outside, most), expected, why,
                tally);
    }
    EXPECT_EQ(tally.print("peer_rrule_dates.tsv"), static_cast<int>(rows.size()));
}

TEST(RuleTables, VCalendarRulesGiveTheirDates) {
    std::vector<Row> rows = table("vcal10_rules.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    Tally periods;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["dtstart"] + " " + row["rule"]);
        if (row["status"] != "basic") {
            tally.add("no dates in the table", row["note"]);
            continue;
        }
        for (const bool dates : {true, false}) {
            const std::string& expected =
                row[dates ? "dates_if_number_counts_events" : "dates_if_number_counts_periods"];
            const bool whole = row[dates ? "complete_events" : "complete_periods"] == "yes";
            const std::size_t most = split(expected, ' ').size() + (whole ? 1 : 0);
            compare(datesOf(row["rule"], RuleForm::VCalendar10, startOf(row["dtstart"]), false,
                            most, dates ? CountMeans::Dates : CountMeans::Periods),
                    expected, "", dates ? tally : periods);
        }
    }
    EXPECT_EQ(tally.print("vcal10_rules.tsv"), static_cast<int>(rows.size()));
    periods.print("  as periods");
}

// A vCalendar 1.0 rule and the iCalendar rule that peers pair it with give the same dates.
TEST(RuleTables, RulePairsGiveTheSameDates) {
    std::vector<Row> rows = table("vcal10_ical_pairs.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public tables beside the checkout";
    Tally tally;
    for (Row& row : rows) {
        SCOPED_TRACE(row["id"] + " " + row["vcal10_rule"] + " " + row["ical_rule"]);
        const RuleStart start = startOf("19970902");
        const std::string one =
            datesOf(row["vcal10_rule"], RuleForm::VCalendar10, start, false, 60);
        const std::string other = datesOf(row["ical_rule"], RuleForm::ICalendar, start, false, 60);
        const std::string why = row["ical_rule"].empty() ? "the peer refuses what is half a rule"
                                : row["ical_rule"].starts_with("FREQ=MINUTELY")
                                    ? "M alone is minutes in the extended grammar, months on phones"
                                    : "";
        compare(one, other, why, tally);
    }
    EXPECT_EQ(tally.print("vcal10_ical_pairs.tsv"), static_cast<int>(rows.size()));
}

}  // namespace
}  // namespace qel::test
