// qelutil rule: a recurrence rule explained: its forms, its repeat record, its dates.
#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>

#include "base/Json.h"
#include "base/RepeatText.h"
#include "base/RuleArguments.h"
#include "base/RuleDates.h"
#include "base/Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

constexpr std::size_t kMostDates = 100000;

struct Options {
    RuleArguments rule;
    std::string to;
    std::size_t count = 10;
    bool calendar = false;
    bool json = false;
};

// All that is known of one rule.
struct Explained {
    std::string sentence;
    std::string ical;
    std::vector<std::string> v10;
    std::string v10Reason;  // what vCalendar 1.0 cannot hold
    std::vector<std::string> positional;
    std::vector<Repeat> repeats;
    std::vector<std::string> warnings;  // of the records, each once
    std::vector<int> dates;
    bool more = false;  // the series goes on after `dates`
};

// A day of the month that not every month has: 0 where the record names none.
int rareDay(const Repeat& repeat) {
    const bool byDay =
        repeat.record.type == REPEAT_MONTHLY_DAY || repeat.record.type == REPEAT_YEARLY_DATE;
    return byDay && repeat.record.dayOfMonth > 28 ? repeat.record.dayOfMonth : 0;
}

std::string counted(std::size_t number) {
    return std::to_string(number) + (number == 1 ? " date" : " dates");
}

// How the dates that the records give through 2499 differ from the rule's; empty when they do not.
std::string difference(const std::vector<Repeat>& repeats, const std::vector<int>& dates,
                       int start) {
    const auto usable = [](const Repeat& repeat) { return repeat.code == 0; };
    if (repeats.empty() || !std::all_of(repeats.begin(), repeats.end(), usable)) return {};
    const std::vector<int> given = repeatDates(repeats, kLastDay + std::size_t{1}, kLastDay);
    std::vector<int> missing;
    std::vector<int> added;
    std::set_difference(dates.begin(), dates.end(), given.begin(), given.end(),
                        std::back_inserter(missing));
    std::set_difference(given.begin(), given.end(), dates.begin(), dates.end(),
                        std::back_inserter(added));
    if (missing.empty() && added.empty()) return {};
    if (added.empty() && missing == std::vector<int>{start})
        return "the start is not a day of the rule: calendars count it as the first date, the "
               "record leaves it out";
    const int rare = rareDay(repeats.front());
    const bool inShortMonths =
        rare != 0 && !added.empty() &&
        std::all_of(added.begin(), added.end(), [rare](int day) { return dateOf(day).day < rare; });
    std::string text = inShortMonths
                           ? "in a month without day " + std::to_string(rare) +
                                 " the record takes the last day, where the rule has no date: "
                           : "the record gives other dates than the rule: ";
    if (!missing.empty())
        text += counted(missing.size()) + " of " + std::to_string(dates.size()) +
                " missing, the first " + isoDate(missing.front());
    if (!missing.empty() && !added.empty()) text += ", and ";
    if (!added.empty())
        text += counted(added.size()) + " more, the first " + isoDate(added.front());
    return text;
}

Explained explain(const ReadRules& read, std::size_t rule, std::size_t count) {
    const qelcal::Rules& rules = read.rules;
    Explained explained;
    explained.sentence = rules.words(rule);
    explained.ical = rules.text(QELCAL_FORM_ICALENDAR, rule);
    explained.v10 = rules.texts(QELCAL_FORM_VCALENDAR, rule);
    explained.v10Reason = rules.reason(QELCAL_FORM_VCALENDAR, rule);
    explained.positional = rules.texts(QELCAL_FORM_POSITIONAL, rule);
    explained.repeats = repeatsOf(rules, rule, read.start);
    const auto warn = [&](const std::string& text) {
        auto& all = explained.warnings;
        if (std::find(all.begin(), all.end(), text) == all.end()) all.push_back(text);
    };
    for (const Time& date : rules.dates(0, rule)) explained.dates.push_back(codeDateOf(date));
    // Several times of a day are one date.
    auto& dates = explained.dates;
    dates.erase(std::unique(dates.begin(), dates.end()), dates.end());
    // Other dates are the greatest loss: they come first.
    const std::string other = difference(explained.repeats, dates, codeDateOf(read.start));
    if (!other.empty()) warn(other);
    for (const qelcal::Note& note : rules.recordNotes(rule)) warn(note.text);
    for (const Repeat& repeat : explained.repeats)
        for (const std::string& warning : repeat.warnings) warn(warning);
    explained.more = dates.size() > count;
    if (explained.more) dates.resize(count);
    return explained;
}

void line(std::ostream& out, const char* label, const std::string& text) {
    constexpr std::size_t kLabelWidth = 15;
    std::string padded = label;
    padded.resize(std::max(padded.size(), kLabelWidth), ' ');
    out << "  " << padded << printable(text) << "\n";
}

void writeForms(std::ostream& out, const Explained& explained) {
    for (const std::string& text : explained.v10) line(out, "vCalendar 1.0", text);
    if (explained.v10.empty()) line(out, "vCalendar 1.0", "none: " + explained.v10Reason);
    line(out, "iCalendar", explained.ical);
    for (const std::string& text : explained.positional) line(out, "positional", text);
}

// False for a part without a value, "BYDAY=", which the library writes of a record without days.
bool isRule(const std::string& text) {
    return !text.empty() && !text.ends_with('=') && text.find("=;") == std::string::npos;
}

void writeRepeats(std::ostream& out, const Explained& explained) {
    out << "\nAs a repeat record, the library's packed form, it would be\n";
    for (const Repeat& repeat : explained.repeats) {
        if (repeat.code != 0) {
            line(out, "record", "none: " + repeat.problem);
            continue;
        }
        line(out, "record",
             "type " + std::to_string(repeat.record.type) + ", " +
                 repeatTypeName(repeat.record.type));
        line(out, "", repeatFields(repeat.record));
        const std::string back = ruleBack(repeat.record);
        line(out, "as a rule", isRule(back) ? back : "none: " + back + " is not valid");
    }
    if (explained.repeats.empty()) line(out, "record", "none");
    for (const std::string& warning : explained.warnings) line(out, "difference", warning);
}

void writeText(std::ostream& out, const Explained& explained, const Options& options) {
    out << explained.sentence << "\n\n";
    writeForms(out, explained);
    out << "\n";
    const std::vector<MarkedDay> dates = listed(explained.dates);
    if (options.calendar)
        writeDateGrids(out, dates);
    else
        writeDateList(out, dates);
    if (explained.more) out << (options.calendar ? "\n" : "") << "  and so on\n";
    writeRepeats(out, explained);
}

Json repeatJson(const Repeat& repeat) {
    if (repeat.code != 0) return Json{{"code", repeat.code}, {"problem", repeat.problem}};
    const ZQTR_REPEAT& record = repeat.record;
    Json json{{"type", int{record.type}},
              {"typeName", repeatTypeName(record.type)},
              {"start", isoDate(record.startDate)},
              {"end", record.endDate == -1 ? Json() : Json(isoDate(record.endDate))},
              {"interval", int{record.interval}},
              {"dayOfMonth", int{record.dayOfMonth}},
              {"month", int{record.month}},
              {"dayOfWeek", int{record.dayOfWeek}},
              {"weekOfMonth", int{record.weekOfMonth}},
              {"days", Json::array()},
              {"warningBits", repeat.warningBits},
              {"asRule", ruleBack(record)}};
    for (std::size_t day = 0; day < 7; ++day) json["days"].push_back(int{record.days[day]});
    return json;
}

Json ruleJson(const Explained& explained) {
    Json json{{"sentence", explained.sentence},
              {"v10", explained.v10},
              {"v10Reason", explained.v10Reason},
              {"ical", explained.ical},
              {"positional", explained.positional},
              {"repeats", Json::array()},
              {"warnings", explained.warnings},
              {"dates", Json::array()},
              {"more", explained.more}};
    if (explained.v10Reason.empty()) json.erase("v10Reason");
    for (const Repeat& repeat : explained.repeats) json["repeats"].push_back(repeatJson(repeat));
    for (const int date : explained.dates) json["dates"].push_back(isoDate(date));
    return json;
}

// Only the texts of one form, one a line.
void writeOneForm(Context& context, const std::vector<Explained>& all, qelcal_form form) {
    for (const Explained& explained : all) {
        std::vector<std::string> texts = {explained.ical};
        if (form == QELCAL_FORM_VCALENDAR) texts = explained.v10;
        if (form == QELCAL_FORM_POSITIONAL) texts = explained.positional;
        if (texts.empty()) {
            context.error("\"" + explained.sentence + "\" has no vCalendar 1.0 form: " +
                          explained.v10Reason + "; `qelutil expand` lists its dates");
        }
        for (const std::string& text : texts) context.out << text << "\n";
    }
}

Json documentOf(const Options& options, const Time& start) {
    return {{"text", jsonText(options.rule.text)},
            {"form", nullptr},
            {"start", isoDate(start)},
            {"complete", false},
            {"notes", Json::array()},
            {"rules", Json::array()}};
}

void writeRules(Context& context, const Options& options, const ReadRules& read) {
    std::vector<Explained> all;
    for (std::size_t rule = 0; rule < read.rules.count(); ++rule)
        all.push_back(explain(read, rule, options.count));
    if (options.json) {
        Json document = documentOf(options, read.start);
        document["form"] = nameOfForm(read.rules.form());
        document["complete"] = read.rules.complete();
        for (const qelcal::Note& note : read.rules.notes())
            document["notes"].push_back(jsonText(note.text));
        for (const Explained& explained : all) document["rules"].push_back(ruleJson(explained));
        writeJson(context.out, "rule", document);
    } else if (!options.to.empty()) {
        writeOneForm(context, all, formOfName(options.to));
    } else {
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (i > 0) context.out << "\n";
            writeText(context.out, all[i], options);
        }
    }
}

void run(Context& context, const Options& options) {
    std::optional<ReadRules> read;
    try {
        read = readRuleArguments(options.rule);
    } catch (const InputError& problem) {
        if (!options.json) throw;
        context.error(problem.what());
        Json document = documentOf(options, readMomentOf("--start", options.rule.start));
        document["notes"].push_back(jsonText(problem.what()));
        writeJson(context.out, "rule", document);
        return;
    }
    writeNotes(context, *read);
    writeRules(context, options, *read);
}

}  // namespace

void addRuleCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("rule", "Explain a recurrence rule");
    options->rule.addTo(*command);
    CLI::Option* to =
        command->add_option("--to", options->to, "Print the rule in this form and nothing else")
            ->type_name("FORM")
            ->check(CLI::IsMember({"v10", "ical", "positional"}));
    command->add_option("--count", options->count, "How many dates to show")
        ->capture_default_str()
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, kMostDates));
    CLI::Option* calendar =
        command->add_flag("--calendar", options->calendar, "Show the dates in month grids")
            ->excludes(to);
    command->add_flag("--json", options->json, "Print the facts as JSON")
        ->excludes(to)
        ->excludes(calendar);
    command->footer(
        "Forms: v10 is vCalendar 1.0, ical is iCalendar, positional is the library's own.\n"
        "Examples:\n"
        "  qelutil rule \"W2 MO WE FR #10\" --start 2005-06-15\n"
        "  qelutil rule \"FREQ=MONTHLY;BYDAY=-1FR\" --start 20050624 --calendar\n"
        "  qelutil rule \"MP1 1+ MO #0\" --start 20050606 --to ical\n"
        "  qelutil rule \"YM1 6 #5\" --start today --count 3 --json");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
