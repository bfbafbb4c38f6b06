// The occurrences of an entry, and the days that a page marks.
#include "calendar/entries/EntryDates.h"

#include <gtest/gtest.h>

#include "Conversions.h"

namespace qel::test {
namespace {

using calendar::Entry;
using calendar::parseMoment;

Entry eventWith(const std::string& lines) {
    return entriesOf("BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\n" + lines +
                     "END:VEVENT\nEND:VCALENDAR\n")
        .at(0);
}

std::string textOf(const std::vector<calendar::Moment>& dates) {
    std::string text;
    for (const calendar::Moment& each : dates)
        text += (text.empty() ? "" : " ") + calendar::formatMoment(each);
    return text;
}

std::string datesOf(const Entry& entry, const calendar::OccurrenceRange& range) {
    return textOf(calendar::occurrences(entry, range));
}

std::string daysOf(const Entry& entry, std::size_t most) {
    const calendar::EntryDays days = calendar::markedDays(entry, most);
    std::string text;
    for (const calendar::MarkedDay& each : days.days)
        text += (each.excluded ? "(" : "") + calendar::formatMoment({each.day, 0, true}) +
                (each.excluded ? ") " : " ");
    return text + (days.more ? "..." : "");
}

TEST(EntryDates, RulesListsAndExclusionsMakeOneSeries) {
    const Entry entry = eventWith(
        "DTSTART:20050615T083000\nRRULE:FREQ=DAILY;COUNT=6\nEXRULE:FREQ=DAILY;INTERVAL=5;COUNT=2\n"
        "RDATE:20050616T120000,20050616T083000,20050629T120000,20050630T083000\n"
        "EXRULE:FREQ=DAILY;BYHOUR=9\nEXRULE:FREQ=DAILY;BYMONTHDAY=29;BYHOUR=7,12;BYMINUTE=0\n"
        "EXDATE:20050616T083000\n"
        "EXDATE:20050617\nEXDATE:20050618T090000\nDURATION:PT1H\n");
    // The exclusions of 15, 20 and 29 June are EXRULE's; a date or a rule at another time excludes
    // nothing.
    EXPECT_EQ(datesOf(entry, {}),
              "20050616T120000 20050618T083000 20050619T083000 "
              "20050630T083000");
    EXPECT_EQ(daysOf(entry, 100),
              "(20050615) (20050616) (20050617) 20050618 20050619 (20050620) (20050629) 20050630 ");
}

TEST(EntryDates, ARangeIsCutFromTheWholeSeries) {
    const Entry entry = eventWith(
        "DTSTART:20050615T083000\nDTEND:20050616T000000\nRRULE:FREQ=DAILY\n"
        "EXRULE:FREQ=DAILY;COUNT=40\n");
    const auto from = parseMoment("20050701");
    // More dates are excluded than are asked for.
    EXPECT_EQ(datesOf(entry, {{}, {}, 2}), "20050725T083000 20050726T083000");
    EXPECT_EQ(datesOf(entry, {from, parseMoment("20050726"), 0}),
              "20050725T083000 20050726T083000");
    EXPECT_EQ(datesOf(entry, {from, parseMoment("20050726T082959"), 9}), "20050725T083000");
    EXPECT_EQ(datesOf(entry, {parseMoment("24991230"), {}, 0}), "24991230T083000 24991231T083000");
    EXPECT_EQ(datesOf(entry, {parseMoment("20050101"), parseMoment("20050201"), 3}), "");
    EXPECT_EQ(daysOf(entry, 3), "(20050615) (20050616) (20050617) ...");
}

TEST(EntryDates, ARuleOfExceptionsIsListedAsFarAsItGoes) {
    for (const bool endless : {true, false}) {
        // It takes out Thursdays, not the start, a Wednesday.
        const Entry entry =
            eventWith(std::string("DTSTART:20050615T083000\nRRULE:FREQ=DAILY") +
                      (endless ? "" : ";COUNT=20") + "\nEXRULE:FREQ=WEEKLY;BYDAY=TH\n");
        const calendar::Exclusions found = calendar::excludedByRules(entry, 3);
        EXPECT_EQ(textOf(found.dates), "20050616T083000 20050623T083000 20050630T083000");
        EXPECT_EQ(found.more, endless);
        EXPECT_EQ(datesOf(entry, {{}, {}, 2}), "20050615T083000 20050617T083000");
    }
}

TEST(EntryDates, ADayMayBePartOfALongerOccurrence) {
    const Entry entry = eventWith(
        "DTSTART;VALUE=DATE:20050615\nDTEND;VALUE=DATE:20050618\nRRULE:FREQ=WEEKLY;COUNT=2\n"
        "EXDATE;VALUE=DATE:20050622\n");
    EXPECT_EQ(datesOf(entry, {}), "20050615");
    EXPECT_EQ(daysOf(entry, 100), "20050615 20050616 20050617 (20050622) ");
}

}  // namespace
}  // namespace qel::test
