// qelutil date: day numbers, date-time texts and durations, each in the forms of the others.
#include <cstdlib>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "base/Json.h"
#include "base/Moment.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

struct Options {
    std::vector<std::string> values;
    std::string form;
    std::string add;
    std::string until;
    bool json = false;
};

// What a value is taken for.
enum class Form { Moment, Day, Seconds, Unix, Duration, Length };

// A value as it was understood: a moment, or a length of time.
struct Value {
    std::optional<Time> moment;
    std::int64_t length = 0;
};

bool isNumber(std::string_view text) {
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// `digits` is the number within `text`, which is what a message names.
std::int64_t readNumber(const std::string& text, const std::string& digits) {
    constexpr std::size_t kMostDigits = 17;  // more than any moment or duration has
    if (!isNumber(digits))
        throw InputError(
            "\"" + text +
            "\": is not a whole number; write digits only, with \"-\" in front if need be");
    if (digits.size() > kMostDigits)
        throw InputError("\"" + text + "\": is too large; no date needs more than " +
                         std::to_string(kMostDigits) + " digits");
    return std::strtoll(digits.c_str(), nullptr, 10);
}

Form formOf(const std::string& text) {
    if (isNumber(text)) {
        if (text.size() == 8) return Form::Moment;
        if (text.size() <= 6) return Form::Day;
        throw InputError("\"" + text +
                         "\": may be seconds since 1900 or since 1970; say which with --from "
                         "seconds or --from unix");
    }
    if (text.size() > 1 && text.back() == 's' && isNumber(text.substr(0, text.size() - 1)))
        return Form::Length;
    if (!text.empty() && text.front() == '@') return Form::Unix;
    const std::size_t sign = text.find_first_not_of("+-");
    return sign != std::string::npos && text[sign] == 'P' ? Form::Duration : Form::Moment;
}

Value checkedMoment(const std::string& text, std::int64_t seconds, bool hasTime, bool utc) {
    if (seconds < 0 || seconds >= kEndOfTime) {
        throw InputError("\"" + text + "\": lies outside the years 1900 to 2499" +
                         (hasTime ? "" : ", which are the days 0 to 219145"));
    }
    return {hasTime ? momentAt(seconds, utc) : dateOf(static_cast<int>(seconds / kDaySeconds))};
}

Value readValue(const std::string& text, const std::string& form) {
    static const std::vector<std::pair<std::string, Form>> kForms = {
        {"date", Form::Moment}, {"day", Form::Day},           {"seconds", Form::Seconds},
        {"unix", Form::Unix},   {"duration", Form::Duration}, {"length", Form::Length}};
    Form wanted = Form::Moment;
    if (form.empty()) wanted = formOf(text);
    for (const auto& [name, each] : kForms)
        if (name == form) wanted = each;
    switch (wanted) {
        case Form::Day: {
            // Held short of what the multiplication would overflow at.
            const std::int64_t day = readNumber(text, text);
            const bool known = day >= 0 && day <= kLastDay;
            return checkedMoment(text, known ? day * kDaySeconds : -1, false, false);
        }
        case Form::Seconds:
            return checkedMoment(text, readNumber(text, text), true, false);
        case Form::Unix:
            return checkedMoment(text,
                                 readNumber(text, text.rfind('@', 0) == 0 ? text.substr(1) : text) +
                                     kUnixEpochDay * kDaySeconds,
                                 true, true);
        case Form::Duration:
            return {std::nullopt, readDuration(text)};
        case Form::Length:
            return {std::nullopt, readNumber(text, text.substr(0, text.find_last_not_of('s') + 1))};
        case Form::Moment:
            break;
    }
    return {readMoment(text)};
}

Json factsOf(const Value& value) {
    if (!value.moment) {
        return {{"duration", durationText(value.length)},
                {"seconds", value.length},
                {"words", durationWords(value.length)}};
    }
    const Time& moment = *value.moment;
    const int day = codeDateOf(moment);
    Json facts = {{"text", moment.text()}, {"words", momentWords(moment)}, {"day", day}};
    if (moment.is_date == 0) facts["secondOfDay"] = moment.seconds() % kDaySeconds;
    facts["weekday"] = moment.weekday();
    facts["seconds"] = moment.seconds();
    facts["unix"] = moment.seconds() - kUnixEpochDay * kDaySeconds;
    facts["utc"] = isUtc(moment);
    return facts;
}

void writeFact(std::ostream& out, const char* label, std::int64_t number, const char* note = "") {
    const std::string name = label;
    out << "  " << name << std::string(20 - name.size(), ' ') << number << note << '\n';
}

void writeFacts(std::ostream& out, const Value& value) {
    if (!value.moment) {
        out << durationText(value.length) << "\n  " << durationWords(value.length) << '\n';
        writeFact(out, "seconds", value.length);
        return;
    }
    const Time& moment = *value.moment;
    const int day = codeDateOf(moment);
    out << moment.text() << "\n  " << momentWords(moment) << '\n';
    writeFact(out, "day number", day);
    if (moment.is_date == 0) writeFact(out, "second of the day", moment.seconds() % kDaySeconds);
    writeFact(out, "weekday", moment.weekday(), " (1 = Sunday)");
    writeFact(out, "seconds since 1900", moment.seconds());
    writeFact(out, "Unix time", moment.seconds() - kUnixEpochDay * kDaySeconds,
              isUtc(moment) ? "" : " (if it is UTC)");
}

// The value after --add and --until.
Value applied(const std::string& text, const Value& value, const Options& options,
              const std::optional<Time>& until) {
    if (options.add.empty() && !until) return value;
    const std::int64_t added = options.add.empty() ? 0 : readDuration(options.add);
    if (!value.moment) {
        if (until) throw InputError("\"" + text + "\": --until needs a date, not a duration");
        return {std::nullopt, value.length + added};
    }
    const Time start = later(*value.moment, added);
    if (!until) return {start};
    if (start.is_date == 0 && until->is_date == 0 && isUtc(start) != isUtc(*until)) {
        throw InputError(
            "\"" + text +
            "\": one of the two times is UTC and the other is not; see `qelutil zone --help`");
    }
    return {std::nullopt, until->seconds() - start.seconds()};
}

void run(Context& context, const Options& options) {
    std::optional<Time> until;
    try {
        if (!options.until.empty()) until = readMoment(options.until);
        if (!options.add.empty()) static_cast<void>(readDuration(options.add));
    } catch (const InputError& problem) {
        throw UsageError(problem.what());
    }
    const std::vector<std::string> values =
        options.values.empty() ? std::vector<std::string>{"now"} : options.values;
    Json document = Json::array();
    for (const std::string& text : values) {
        try {
            const Value value = applied(text, readValue(text, options.form), options, until);
            if (options.json)
                document.push_back(factsOf(value));
            else
                writeFacts(context.out, value);
        } catch (const InputError& problem) {
            context.error(problem.what());
        }
    }
    if (options.json) writeJson(context.out, "date", {{"values", document}});
}

}  // namespace

void addDateCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("date", "Day numbers, date-time texts and durations");
    command->add_option("VALUE", options->values,
                        "a date 20050615 or 2005-06-15, a date-time 20050615T083000Z,\n"
                        "today, tomorrow, yesterday, now, a day number 38516,\n"
                        "Unix time @1118824200,\n"
                        "a duration P1DT2H or a length 93600s");
    command->add_option("--from", options->form, "treat every VALUE as this")
        ->check(CLI::IsMember({"date", "day", "seconds", "unix", "duration", "length"}));
    command->add_option("--add", options->add, "add this duration first");
    command->add_option("--until", options->until, "show the duration from VALUE to this date");
    command->add_flag("--json", options->json, "print the facts as JSON");
    command->footer(
        "Day numbers count from 1 January 1900, which is day 0, to 31 December 2499.\n"
        "Examples:\n"
        "  qelutil date 38516\n"
        "  qelutil date 20050615T083000Z --add PT45M\n"
        "  qelutil date 20050615 --until 20051231\n"
        "  qelutil date --json -- -PT15M 93600s");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
