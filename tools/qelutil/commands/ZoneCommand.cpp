// qelutil zone: the time zones, their rules, times moved between them, and a year's changes of
// offset.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "QelCalendar/Zones.h"
#include "QelUtility/ZQDate.h"
#include "base/Json.h"
#include "base/Moment.h"
#include "base/RealZone.h"
#include "base/Text.h"
#include "base/ZoneRules.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

using qelcal::Zone;

// Throws UsageError that says which zones there are.
Zone zoneNamed(const std::string& name) {
    try {
        return Zone::find(name);
    } catch (const qelcal::Error& problem) {
        throw UsageError(std::string(problem.what()) + "; `qelutil zone list` shows all of them");
    }
}

struct Options {
    std::vector<std::string> texts;
    std::string from;
    std::string to;
    std::string zone;
    std::string year;
    bool table = false;
    bool iana = false;
    bool json = false;
};

int thisYear() {
    return dateOf(ZQ_GetCurrentDate()).year;
}

void noteYear(Context& context, const Zone& zone, int year) {
    constexpr int kFirstYear = 1990;
    if (zone.knows(year)) {
        if (const auto real = realZoneOf(zone, year))
            context.note({}, 0,
                         zone.name() + ": the clocks of " + real->name() + " were others in " +
                             std::to_string(year) +
                             ", the table has one rule for all years; name " + real->name() +
                             " to have them");
        const bool fromTable = zone.number() != 0 && zone.number() < QELCAL_FIRST_WORLD_ZONE;
        if (year == kFirstYear && fromTable && !zone.changes(kFirstYear + 1).empty()) {
            context.note({}, 0,
                         zone.name() +
                             ": the table begins with this zone's first change of 1990; before it "
                             "the offset that it brings is used");
        }
        return;
    }
    const auto place = placeOf(zone);
    context.warning({}, 0,
                    "the changes of " + std::to_string(year) + " are not known by the name \"" +
                        zone.name() +
                        "\": it is of a table that knows those of 1990 to 2010 "
                        "only" +
                        (place ? "; use " + place->name() + " for the real ones" : ""));
}

// Outside its years the table has one offset all year: it is said where that makes a time wrong.
void noteOffset(Context& context, const Zone& zone, std::int64_t utc) {
    const int year = momentAt(std::clamp<std::int64_t>(utc, 0, kEndOfTime - 1), true).year;
    if (zone.knows(year)) return noteYear(context, zone, year);
    const auto place = placeOf(zone);
    const std::int64_t wrong = place ? zone.offset(utc) - place->offset(utc) : 0;
    if (wrong == 0) return;
    context.warning({}, 0,
                    "this time is " + durationWords(wrong < 0 ? -wrong : wrong) +
                        " wrong: the zone \"" + zone.name() +
                        "\" is of a table that knows the changes of 1990 to 2010 only; use " +
                        place->name() + " for the real clocks of " + std::to_string(year));
}

// The offsets of a year: that of the winter, and that of the summer where it has one.
struct Offsets {
    std::int64_t standard;
    std::optional<std::int64_t> summer;
};

Offsets offsetsOf(const Zone& zone, int year) {
    Time january{};
    january.year = year;
    january.month = january.day = 1;
    const std::vector<qelcal_offset_change> changes = zone.changes(year);
    if (changes.empty()) return {zone.offset(january.seconds()), std::nullopt};
    const auto [least, most] = std::minmax({changes[0].before, changes[0].after});
    return {least, most};
}

bool isOfDatabase(const Zone& zone) {
    return zone.number() >= QELCAL_FIRST_WORLD_ZONE;
}

// Those of the table and of the database, or one of them, with `options.zone` in their names.
std::vector<Zone> listedZones(const Options& options) {
    std::vector<Zone> zones;
    if (!options.iana) zones = Zone::all();
    if (!options.table)
        for (const Zone& each : Zone::world()) zones.push_back(each);
    const auto lower = [](std::string text) {
        for (char& c : text) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
            if (c == '_') c = ' ';
        }
        return text;
    };
    const std::string part = lower(options.zone);
    std::erase_if(zones, [&](const Zone& each) {
        return lower(each.name()).find(part) == std::string::npos;
    });
    return zones;
}

void list(Context& context, const Options& options) {
    constexpr int kTableYear = 2005;
    const int year = thisYear();
    Json document = Json::array();
    const std::vector<Zone> zones = listedZones(options);
    for (const Zone& zone : zones) {
        const bool world = isOfDatabase(zone);
        const auto [standard, summer] = offsetsOf(zone, world ? year : kTableYear);
        if (options.json) {
            document.push_back({{"number", world ? Json() : Json(zone.number())},
                                {"name", zone.name()},
                                {"standard", offsetText(standard)},
                                {"summer", summer ? Json(offsetText(*summer)) : Json()}});
        } else {
            const std::string number = world ? "" : std::to_string(zone.number());
            context.out << std::string(2 - std::min<std::size_t>(number.size(), 2), ' ') << number
                        << "  " << offsetText(standard) << "  "
                        << (summer ? offsetText(*summer) : "      ") << "  " << zone.name() << '\n';
        }
    }
    if (options.json) writeJson(context.out, "zone list", {{"zones", document}});
    if (zones.empty()) context.error("no zone has \"" + printable(options.zone) + "\" in its name");
}

std::string yearsText(const ZoneRule& rule) {
    const std::string first = std::to_string(rule.first);
    if (rule.endless) return "from " + first + " on";
    return rule.last == rule.first ? first : first + " to " + std::to_string(rule.last);
}

void show(Context& context, const Options& options) {
    const Zone zone = zoneNamed(options.zone);
    const std::vector<ZoneRule> rules = zoneRules(zone);
    const std::string always = offsetText(offsetsOf(zone, thisYear()).standard);
    if (options.json) {
        Json document{{"name", zone.name()}, {"rules", Json::array()}};
        if (rules.empty()) document["always"] = always;
        for (const ZoneRule& rule : rules) {
            Json json{{"first", rule.first},
                      {"last", rule.endless ? Json() : Json(rule.last)},
                      {"changes", Json::array()}};
            for (const YearlyChange& each : rule.changes)
                json["changes"].push_back({{"when", each.when},
                                           {"before", offsetText(each.before)},
                                           {"after", offsetText(each.after)}});
            document["rules"].push_back(std::move(json));
        }
        return writeJson(context.out, "zone show", document);
    }
    context.out << zone.name() << '\n';
    if (rules.empty()) context.out << "  always " << always << '\n';
    for (const ZoneRule& rule : rules) {
        constexpr std::size_t kWidth = 14;
        std::string years = yearsText(rule);
        for (const YearlyChange& each : rule.changes) {
            years.resize(std::max(years.size(), kWidth), ' ');
            context.out << "  " << years << "  " << offsetText(each.before) << " to "
                        << offsetText(each.after) << "  " << each.when << '\n';
            years.clear();
        }
    }
}

// A time before and after, with the offsets from UTC that it has in the two zones.
struct Conversion {
    Time input;
    Time output;
    std::int64_t inputOffset;
    std::int64_t outputOffset;
};

void noteKind(Context& context, const std::string& text, qelcal_occurs occurs, const Zone& zone) {
    if (occurs == QELCAL_SKIPPED) {
        context.note({}, 0,
                     text + ": clocks skip this time in " + zone.name() +
                         "; it is taken as if they had run on");
    } else if (occurs == QELCAL_REPEATED) {
        context.note(
            {}, 0,
            text + ": clocks show this time twice in " + zone.name() + "; the first is taken");
    }
}

// Without a zone, a local text comes from the computer's own and goes to UTC, and a UTC text goes
// to the computer's own.
Conversion convertOne(Context& context, const std::string& text, std::optional<Zone> from,
                      std::optional<Zone> to) {
    Conversion result{};
    result.input = readMoment(text);
    if (result.input.is_date != 0) {
        throw InputError(
            "\"" + text +
            "\": a date without a time is the same in every zone; add one, as in 20050615T083000");
    }
    Time utc = result.input;
    utc.clock = QELCAL_UTC;
    if (isUtc(result.input)) {
        if (from && from->name() != "UTC") {
            throw InputError("\"" + text +
                             "\": the Z says that it is UTC; leave the Z or --from out");
        }
    } else {
        const Zone zone = from ? *from : zoneNamed("local");
        const qelcal::UtcTime time = zone.toUtc(result.input.seconds());
        noteOffset(context, zone, time.utc);
        noteKind(context, text, time.occurs, zone);
        result.inputOffset = result.input.seconds() - time.utc;
        utc = later(utc, time.utc - result.input.seconds());
    }
    const Zone target = to ? *to : zoneNamed(isUtc(result.input) ? "local" : "UTC");
    noteOffset(context, target, utc.seconds());
    result.outputOffset = target.offset(utc.seconds());
    result.output = later(utc, result.outputOffset);
    result.output.clock = target.name() == "UTC" ? QELCAL_UTC : QELCAL_FLOATING;
    return result;
}

void convert(Context& context, const Options& options) {
    std::optional<Zone> from;
    std::optional<Zone> to;
    if (!options.from.empty()) from = zoneNamed(options.from);
    if (!options.to.empty()) to = zoneNamed(options.to);
    Json document = Json::array();
    for (const std::string& text : options.texts) {
        try {
            const Conversion result = convertOne(context, text, from, to);
            if (options.json) {
                document.push_back({{"input", result.input.text()},
                                    {"inputOffset", offsetText(result.inputOffset)},
                                    {"output", result.output.text()},
                                    {"outputOffset", offsetText(result.outputOffset)}});
            } else {
                context.out << result.input.text() << " (" << offsetText(result.inputOffset)
                            << ") = " << result.output.text() << " ("
                            << offsetText(result.outputOffset) << ")\n";
            }
        } catch (const InputError& problem) {
            context.error(problem.what());
        }
    }
    if (options.json) writeJson(context.out, "zone convert", {{"times", document}});
}

int readYear(const std::string& text) {
    if (text.empty()) return thisYear();
    const bool number =
        text.size() == 4 && text.find_first_not_of("0123456789") == std::string::npos;
    const int year = number ? std::atoi(text.c_str()) : 0;
    if (year < 1900 || year > 2499)
        throw UsageError("the year \"" + text + "\" is not one of 1900 to 2499");
    return year;
}

void changes(Context& context, const Options& options) {
    const Zone zone = zoneNamed(options.zone);
    const int year = readYear(options.year);
    noteYear(context, zone, year);
    const std::vector<qelcal_offset_change> found = zone.changes(year);
    Json document = Json::array();
    if (!options.json) {
        context.out << zone.name() << ", " << year
                    << (found.empty() ? ": no change of offset\n" : ":\n");
    }
    for (const qelcal_offset_change& change : found) {
        const Time local = momentAt(change.local, false);
        const std::string utc = momentAt(change.local - change.before, true).text();
        if (options.json) {
            document.push_back({{"local", local.text()},
                                {"utc", utc},
                                {"before", offsetText(change.before)},
                                {"after", offsetText(change.after)}});
        } else {
            context.out << "  " << local.text() << "  " << offsetText(change.before) << " to "
                        << offsetText(change.after) << "  " << utc << "  " << momentWords(local)
                        << '\n';
        }
    }
    if (options.json) writeJson(context.out, "zone changes", {{"changes", document}});
}

constexpr char kZoneHelp[] =
    "a name such as Europe/Berlin, which has the clocks of all\nyears; a number, name or part of a "
    "name of the library's\ntable, for 1990 to 2010; UTC; local, the computer's own";

void addList(CLI::App* command, const std::shared_ptr<Options>& options, Context& context) {
    CLI::App* listing = command->add_subcommand(
        "list", "List the zones: number in the table, standard and summer offset, name");
    listing->add_option("TEXT", options->zone, "a part of the names; all zones when it is missing");
    CLI::Option* table =
        listing->add_flag("--table", options->table, "only the library's table, as in 2005");
    listing->add_flag("--iana", options->iana, "only the IANA time zone database, as in this year")
        ->excludes(table);
    listing->add_flag("--json", options->json, "print the facts as JSON");
    listing->footer(
        "Examples:\n  qelutil zone list --table\n  qelutil zone list berlin\n  qelutil zone list "
        "--iana america/ --json");
    listing->callback([options, &context] { list(context, *options); });
}

void addShow(CLI::App* command, const std::shared_ptr<Options>& options, Context& context) {
    CLI::App* showing =
        command->add_subcommand("show", "Show the rules of a zone's changes of offset");
    showing->add_option("ZONE", options->zone, kZoneHelp)->required();
    showing->add_flag("--json", options->json, "print the facts as JSON");
    showing->footer("Example:\n  qelutil zone show Europe/Berlin");
    showing->callback([options, &context] { show(context, *options); });
}

void addConvert(CLI::App* command, const std::shared_ptr<Options>& options, Context& context) {
    CLI::App* conversion = command->add_subcommand("convert", "Convert times between zones");
    conversion
        ->add_option("TIME", options->texts,
                     "a date-time such as 20050615T083000; with a Z it is UTC")
        ->required();
    conversion->add_option("--from", options->from, kZoneHelp)->type_name("ZONE");
    conversion->add_option("--to", options->to, "the zone to convert to, in the same way")
        ->type_name("ZONE");
    conversion->add_flag("--json", options->json, "print the facts as JSON");
    conversion->footer(
        "Without --from a time is in the computer's zone; without --to it becomes UTC, and UTC\n"
        "becomes the computer's time.\n"
        "Examples:\n"
        "  qelutil zone convert 20050615T083000\n"
        "  qelutil zone convert 20260715T123000Z --to America/New_York\n"
        "  qelutil zone convert 2005-06-15T08:30 --from Asia/Kathmandu --to Asia/Tokyo --json");
    conversion->callback([options, &context] { convert(context, *options); });
}

void addChanges(CLI::App* command, const std::shared_ptr<Options>& options, Context& context) {
    CLI::App* year = command->add_subcommand("changes", "List the changes of offset in a year");
    year->add_option("ZONE", options->zone, kZoneHelp)->required();
    year->add_option("--year", options->year, "the year; this year by default")->type_name("YEAR");
    year->add_flag("--json", options->json, "print the facts as JSON");
    year->footer(
        "Examples:\n  qelutil zone changes America/New_York --year 2030\n  qelutil zone changes "
        "local");
    year->callback([options, &context] { changes(context, *options); });
}

}  // namespace

void addZoneCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("zone", "Time zones: their list, rules, conversions, changes of a year");
    command->require_subcommand(1);
    command->footer(
        "Names such as Europe/Berlin are those of the IANA time zone database, with the rules of "
        "all\n"
        "years. Others are those of the library's table, with its rules for 1990 to 2010.\n"
        "Examples:\n"
        "  qelutil zone list berlin\n"
        "  qelutil zone show Europe/Berlin\n"
        "  qelutil zone convert 20260715T083000 --from Europe/Berlin --to America/New_York\n"
        "  qelutil zone changes America/New_York --year 2030");
    addList(command, options, context);
    addShow(command, options, context);
    addConvert(command, options, context);
    addChanges(command, options, context);
}

}  // namespace qel::cli
