// Every calendar file of the public data: it converts, nothing is lost in silence, and what both
// formats can hold comes back as it went.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "convert/Conversions.h"
#include "convert/Days.h"
#include "convert/RuleText.h"
#include "convert/Vocabulary.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

using namespace qel::convert;
namespace fs = std::filesystem;

std::vector<fs::path> filesIn(const char* folder, const char* extension) {
    std::vector<fs::path> files;
    const fs::path root = fs::path(QEL_TEST_SHARED_DATA) / folder;
    std::error_code failure;
    for (const auto& each : fs::directory_iterator(root, failure))
        if (each.path().extension() == extension) files.push_back(each.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string momentText(const Entry& entry, const std::optional<Moment>& moment) {
    if (!moment) return "none";
    return formatMoment(entry.toUtc(*moment).value_or(*moment));
}

// The dates of a rule rather than its words, and its words where it has no date to start from.
std::string ruleText(const Entry& entry, const EntryRule& rules) {
    std::string text = rules.exclude ? "not" : "on";
    for (const Rule& rule : rules.rules) {
        RuleLimits limits;
        limits.most = 50;
        text += rule.endless() ? " endless" : " ends";
        if (!entry.start) continue;
        for (const int day : expandRule(rule, entry.ruleStart(), limits))
            text += " " + std::to_string(day);
    }
    return text;
}

std::string alarmText(const Entry& entry, const Alarm& alarm) {
    std::optional<Moment> at = alarm.at;
    if (!at && entry.start) {
        Moment moment = entry.toUtc(*entry.start).value_or(*entry.start);
        at = momentAt(moment, moment.seconds() + alarm.offset);
        at->isDate = false;
    }
    return std::string(alarmName(alarm.action)) + " " + momentText(entry, at) + " " +
           (alarm.fromVCalendar ? alarm.fields : writeAlarmFields(alarm));
}

// Everything of an entry that must come back.
std::multiset<std::string> factsOf(const Entry& entry, bool withUid) {
    std::multiset<std::string> facts;
    if (withUid) facts.insert("UID " + entry.uid);
    facts.insert("component " + entry.component);
    const std::pair<const char*, const std::optional<Moment>*> dates[] = {
        {"start", &entry.start},
        {"end", &entry.end},
        {"due", &entry.due},
        {"completed", &entry.completed},
        {"created", &entry.created},
        {"modified", &entry.modified},
        {"instance", &entry.recurrenceId}};
    for (const auto& [name, moment] : dates)
        facts.insert(std::string(name) + " " + momentText(entry, *moment));
    for (const EntryRule& rules : entry.rules) facts.insert(ruleText(entry, rules));
    for (const auto& [name, list] : {std::pair{"date ", &entry.dates}, {"not ", &entry.excluded}}) {
        std::set<std::string> once;
        for (const Moment& each : *list)
            once.insert(name + momentText(entry, entry.inClockOf(*entry.start, each)));
        facts.insert(once.begin(), once.end());
    }
    for (const Alarm& alarm : entry.alarms) facts.insert(alarmText(entry, alarm));
    for (const EntryProperty& property : entry.properties) {
        std::string text = property.name;
        // iCalendar has no names with "_".
        std::replace(text.begin(), text.end(), '_', '-');
        // A series that is due and has no start begins when it is due.
        if (text == "X-VCAL-DUE") {
            facts.erase("due none");
            facts.insert("due " + property.value());
            continue;
        }
        for (const std::string& value : property.values) text += " [" + value + "]";
        facts.insert(text);
    }
    return facts;
}

std::string difference(const std::multiset<std::string>& one,
                       const std::multiset<std::string>& other) {
    std::vector<std::string> lost;
    std::vector<std::string> gained;
    std::set_difference(one.begin(), one.end(), other.begin(), other.end(),
                        std::back_inserter(lost));
    std::set_difference(other.begin(), other.end(), one.begin(), one.end(),
                        std::back_inserter(gained));
    std::string text;
    for (const std::string& each : lost) text += "\n  lost   " + each;
    for (const std::string& each : gained) text += "\n  gained " + each;
    return text;
}

// Events that have an end alone start there in iCalendar, and so they come back.
void expectSameEntries(const std::string& before, const std::string& after) {
    const std::vector<Entry> first = entriesOf(before);
    const std::vector<Entry> second = entriesOf(after);
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t each = 0; each < first.size(); ++each) {
        if (!first[each].start && first[each].end) continue;
        const bool withUid = !first[each].uid.empty();
        EXPECT_EQ(difference(factsOf(first[each], withUid), factsOf(second[each], withUid)), "")
            << "entry at line " << first[each].line;
    }
}

TEST(SharedFiles, VCalendarComesBackFromICalendar) {
    const std::vector<fs::path> files = filesIn("vcs", ".vcs");
    if (files.empty()) GTEST_SKIP() << "no public files at " << QEL_TEST_SHARED_DATA;
    std::size_t entries = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string before = readFile(file.string());
        const Conversion there = toICalendar(before);
        EXPECT_EQ(faultOf(there.out), "");
        EXPECT_EQ(toICalendar(before).out, there.out);
        const Conversion back = toVCalendar(there.out);
        expectSameEntries(before, back.out);
        entries += there.counts.entries;
    }
    std::cout << files.size() << " files, " << entries << " entries\n";
}

TEST(SharedFiles, ICalendarConverts) {
    const std::vector<fs::path> files = filesIn("ics", ".ics");
    if (files.empty()) GTEST_SKIP() << "no public files at " << QEL_TEST_SHARED_DATA;
    std::size_t entries = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string before = readFile(file.string());
        const Conversion there = toVCalendar(before);
        EXPECT_EQ(toVCalendar(before).out, there.out);
        const Conversion back = toICalendar(there.out);
        EXPECT_EQ(faultOf(back.out), "");
        EXPECT_EQ(entriesOf(before).size(), entriesOf(back.out).size());
        entries += there.counts.entries;
    }
    std::cout << files.size() << " files, " << entries << " entries\n";
}

}  // namespace
}  // namespace qel::test
