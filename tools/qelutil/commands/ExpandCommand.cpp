// qelutil expand: the dates of a rule inside a range, excluded ones marked.
#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <set>

#include "base/Json.h"
#include "base/RepeatText.h"
#include "base/RuleArguments.h"
#include "base/RuleDates.h"
#include "base/Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

struct Options {
    RuleArguments rule;
    std::string since;
    std::string through;
    std::vector<std::string> excluded;
    std::size_t count = 0;
    bool record = false;
    bool calendar = false;
    bool json = false;
};

struct Range {
    int first = 0;
    int last = kLastDay;
};

// Without an end of the range, a year from its beginning is shown.
Range rangeOf(const Options& options, int start) {
    Range range;
    range.first =
        options.since.empty() ? start : codeDateOf(readMomentOf("--since", options.since));
    if (options.through.empty()) {
        Time next = dateOf(range.first);
        ++next.year;
        // A leap day has no anniversary.
        if (next.month == 2 && next.day == 29) {
            next.month = 3;
            next.day = 1;
        }
        range.last = std::min(kLastDay, codeDateOf(next) - 1);
    } else {
        range.last = codeDateOf(readMomentOf("--through", options.through));
    }
    if (range.last < range.first)
        throw UsageError(
            "the range ends before it begins; give --through a later date than --since");
    return range;
}

std::set<int> excludedDays(const std::vector<std::string>& lists) {
    std::set<int> days;
    for (const std::string& list : lists) {
        std::size_t at = 0;
        while (at <= list.size()) {
            const std::size_t end = std::min(list.find_first_of(",;", at), list.size());
            const std::string item = list.substr(at, end - at);
            if (!item.empty()) days.insert(codeDateOf(readMomentOf("--exclude", item)));
            at = end + 1;
        }
    }
    return days;
}

// The dates up to the range's end, as the rule means them or as its repeat records give them.
std::vector<int> datesOf(Context& context, const ReadRules& read, std::size_t rule,
                         const Options& options, int last) {
    if (!options.record) {
        std::vector<int> dates;
        for (const Time& date : read.rules.dates(read.start, dateOf(last), rule))
            dates.push_back(codeDateOf(date));
        return dates;
    }
    std::vector<Repeat> repeats;
    for (const Repeat& repeat : repeatsOf(read.rules, rule, read.start))
        if (repeat.code == 0)
            repeats.push_back(repeat);
        else
            context.error("no repeat record: " + repeat.problem + "; leave --record out");
    constexpr std::size_t kAll = kLastDay + 1;  // there are no more days
    return repeatDates(repeats, kAll, last);
}

// The dates inside the range; what was excluded is marked and does not count towards `most` (0 for
// all). REQUIRES: dates ascend, each once.
std::vector<MarkedDay> select(const std::vector<int>& dates, const Range& range,
                              const std::set<int>& excluded, std::size_t most) {
    std::vector<MarkedDay> chosen;
    std::size_t kept = 0;
    for (const int date : dates) {
        if (date < range.first || date > range.last) continue;
        const bool isExcluded = excluded.count(date) != 0;
        if (!isExcluded && most != 0 && ++kept > most) break;
        chosen.push_back({date, isExcluded});
    }
    return chosen;
}

void noteStrayExclusions(Context& context, const std::vector<int>& dates, const Range& range,
                         const std::set<int>& excluded) {
    for (const int day : excluded) {
        if (day < range.first || day > range.last) continue;
        if (!std::binary_search(dates.begin(), dates.end(), day))
            context.note({}, 0, "--exclude: the rule has no date on " + isoDate(day));
    }
}

void writeDocument(Context& context, const Options& options, const Range& range,
                   const std::vector<MarkedDay>& dates) {
    Json document{{"text", jsonText(options.rule.text)},
                  {"since", isoDate(range.first)},
                  {"through", isoDate(range.last)},
                  {"dates", Json::array()},
                  {"excluded", Json::array()}};
    for (const MarkedDay& date : dates)
        document[date.excluded ? "excluded" : "dates"].push_back(isoDate(date.day));
    writeJson(context.out, "expand", document);
}

void writeResult(Context& context, const Options& options, const Range& range,
                 const std::vector<MarkedDay>& dates) {
    if (options.json)
        writeDocument(context, options, range, dates);
    else if (options.calendar)
        writeDateGrids(context.out, dates);
    else
        writeDateList(context.out, dates);
    if (dates.empty()) {
        context.note(
            {}, 0,
            "the rule has no date from " + isoDate(range.first) + " to " + isoDate(range.last));
    }
}

void expand(Context& context, const Options& options, const ReadRules& read) {
    writeNotes(context, read);
    const Range range = rangeOf(options, codeDateOf(read.start));
    const std::set<int> excluded = excludedDays(options.excluded);
    std::vector<int> dates;
    for (std::size_t rule = 0; rule < read.rules.count(); ++rule) {
        const std::vector<int> more = datesOf(context, read, rule, options, range.last);
        dates.insert(dates.end(), more.begin(), more.end());
    }
    std::sort(dates.begin(), dates.end());
    dates.erase(std::unique(dates.begin(), dates.end()), dates.end());
    noteStrayExclusions(context, dates, range, excluded);
    writeResult(context, options, range, select(dates, range, excluded, options.count));
}

void run(Context& context, const Options& options) {
    try {
        expand(context, options, readRuleArguments(options.rule));
    } catch (const InputError& problem) {
        if (!options.json) throw;
        context.error(problem.what());
        const Time start = readMomentOf("--start", options.rule.start);
        writeDocument(context, options, rangeOf(options, codeDateOf(start)), {});
    }
}

}  // namespace

void addExpandCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("expand", "List the dates of a rule inside a range");
    options->rule.addTo(*command);
    command->add_option("--since", options->since, "The first day shown; the start otherwise")
        ->type_name("DATE");
    command
        ->add_option("--through", options->through, "The last day shown; otherwise a year is shown")
        ->type_name("DATE");
    command
        ->add_option("--exclude", options->excluded,
                     "Dates on which the series does not take place, separated by commas")
        ->type_name("DATES")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->add_option("--count", options->count, "Show no more dates than this")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, std::size_t{kLastDay}));
    command->add_flag("--record", options->record, "The dates that the rule's repeat record gives");
    CLI::Option* calendar =
        command->add_flag("--calendar", options->calendar, "Show the dates in month grids");
    command->add_flag("--json", options->json, "Print the facts as JSON")->excludes(calendar);
    command->footer(
        "Excluded dates are shown in parentheses.\n"
        "Examples:\n"
        "  qelutil expand \"W1 MO #0\" --start 20050606 --since 20060101 --through 20060331\n"
        "  qelutil expand \"D1 #10\" --start 20050615 --exclude 20050617,20050620 --calendar\n"
        "  qelutil expand \"FREQ=YEARLY;BYDAY=1SU;BYMONTH=6\" --start 20050605 --through "
        "2015-12-31");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
