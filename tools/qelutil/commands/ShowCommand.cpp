// qelutil show: what is in a calendar, by days.
#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "QelCalendar/Entries.h"
#include "base/CalendarFiles.h"
#include "base/EntryJson.h"
#include "base/Text.h"
#include "commands/Agenda.h"
#include "commands/CalendarInput.h"
#include "commands/Commands.h"
#include "platform/Letters.h"

namespace qel::cli {

namespace {

struct Options {
    std::vector<std::string> files;
    std::string since;
    std::string through;
    std::vector<std::string> search;
    std::string only;
    std::size_t next = 0;  // 0: all
    std::string zone;
    std::string charset;
    bool calendar = false;
    bool json = false;
};

Agenda::Range rangeOf(const Options& options) {
    Agenda::Range range;
    if (!options.since.empty()) range.since = readMomentOf("--since", options.since);
    if (!options.through.empty()) range.through = readMomentOf("--through", options.through);
    if (options.next != 0 && !range.since) range.since = readMoment("today");
    range.most = options.next;
    if (options.next != 0 && !range.through) range.through = dateOf(kLastDay);
    if (range.since && !range.through) {
        // A series may have no end: a year shows its pattern.
        const Time last = later(*range.since, 366 * kDaySeconds);
        range.through = dateOf(codeDateOf(last));
    }
    if (range.through && !range.since) range.since = dateOf(0);
    if (range.since && codeDateOf(*range.through) < codeDateOf(*range.since))
        throw UsageError("the range ends before it begins; give --through a later date");
    range.everyDate = range.since.has_value();
    if (range.through && range.through->is_date != 0)
        range.through = range.through->plus(kDaySeconds).plus(-1);
    return range;
}

std::optional<qelcal::Zone> zoneOf(const Options& options) {
    if (options.zone.empty()) return std::nullopt;
    try {
        return qelcal::Zone::find(options.zone);
    } catch (const qelcal::Error& unknown) {
        throw UsageError(std::string("--zone: ") + unknown.what());
    }
}

std::string withoutCase(const std::string& text) {
    return lowerCase(platform::smallLetters(text));
}

class Show {
  public:
    Show(Context& context, const Options& options)
        : context_(context),
          options_(options),
          agenda_(rangeOf(options), zoneOf(options)),
          json_(context.out, "show", "entries") {
        for (const std::string& each : options.search) wanted_.push_back(withoutCase(each));
        try {
            qelcal::Reader nothing;
            choose(nothing);
        } catch (const qelcal::Error& refused) {
            throw UsageError(refused.what());
        }
    }

    void run() {
        const CalendarFiles found = calendarFiles(context_, options_.files, {}, options_.charset);
        for (const CalendarFile& file : found.files) {
            try {
                read(file);
            } catch (const InputError& problem) {
                context_.error(problem.what());
            }
        }
        if (options_.json) {
            json_.finish();
        } else {
            agenda_.settle(options_.next);
            if (options_.calendar)
                agenda_.writeMonths(context_.out);
            else
                agenda_.writeDays(context_.out);
            if (agenda_.empty() && context_.exitCode() == kExitFine)
                context_.say("nothing to show: no entry fits");
        }
        if (remarks_ != 0)
            context_.say(std::to_string(remarks_) + (remarks_ == 1 ? " warning" : " warnings") +
                         " about how this was read; `qelutil convert --dry-run` lists them");
    }

  private:
    void read(const CalendarFile& file) {
        CalendarInput input(context_, file);
        qelcal::Reader reader;
        choose(reader);
        const auto take = [&] {
            while (const qelcal::Entry entry = reader.next()) {
                count(entry.notes());
                show(input.name(), entry);
            }
        };
        input.read(
            [&](const char* bytes, std::size_t size, std::uint64_t) { reader.scan(bytes, size); },
            [&](const char* bytes, std::size_t size, std::uint64_t) {
                reader.write(bytes, size);
                take();
            });
        reader.end();
        take();
        count(reader.notes());
    }

    void choose(qelcal::Reader& reader) const {
        reader.choose(QELCAL_CHOOSE_ZONE, options_.zone);
        reader.choose(QELCAL_CHOOSE_CHARSET, options_.charset);
        reader.choose(QELCAL_CHOOSE_ONLY, options_.only);
    }

    void count(const std::vector<qelcal::Note>& notes) {
        for (const qelcal::Note& note : notes)
            // The zone is chosen to show times in: files may well have another one.
            if (note.severity != QELCAL_NOTE && note.code != QELCAL_NOTE_CHOSEN_ZONE_DIFFERS)
                ++remarks_;
    }

    [[nodiscard]] bool isWanted(const qelcal::Entry& entry) const {
        if (wanted_.empty()) return true;
        std::string text = entry.text("SUMMARY") + "\n" + entry.text("DESCRIPTION") + "\n" +
                           entry.text("LOCATION");
        for (const std::string& each : entry.values("CATEGORIES")) text += "\n" + each;
        text = withoutCase(text);
        return std::all_of(wanted_.begin(), wanted_.end(), [&](const std::string& each) {
            return text.find(each) != std::string::npos;
        });
    }

    void show(const std::string& file, const qelcal::Entry& entry) {
        if (!isWanted(entry)) return;
        if (!options_.json) {
            agenda_.add(entry);
            return;
        }
        const std::vector<Time> occurrences = agenda_.occurrencesOf(entry);
        if (ranged() && occurrences.empty()) return;
        Json json{{"file", jsonText(file)}};
        json.update(entryJson(entry));
        json["occurrences"] = Json::array();
        for (std::size_t i = 0; i < occurrences.size(); ++i)
            if (options_.next == 0 || i < options_.next)
                json["occurrences"].push_back(occurrences[i].text());
        json_.add(json);
    }

    [[nodiscard]] bool ranged() const {
        return !options_.since.empty() || !options_.through.empty() || options_.next != 0;
    }

    Context& context_;
    const Options& options_;
    Agenda agenda_;
    JsonArrayWriter json_;
    std::vector<std::string> wanted_;
    std::size_t remarks_ = 0;
};

}  // namespace

void addShowCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("show", "Shows what is in a calendar, by days");
    command
        ->add_option("FILE", options->files,
                     "calendar files, or folders and ZIP archives with such files; - is standard\n"
                     "input, the default")
        ->option_text("[FILE|FOLDER...|-]");
    command
        ->add_option(
            "--since", options->since,
            "the first day, as 2005-06-15, today or yesterday; without a range every entry\n"
            "is shown once, with its rule")
        ->option_text("DATE");
    command
        ->add_option("--through", options->through,
                     "the last day, a year after the first when it is missing")
        ->option_text("DATE");
    command->add_option("--next", options->next, "the next so many from today on, or from --since")
        ->check(CLI::Range(1, 100000))
        ->option_text("NUMBER");
    command
        ->add_option("--search", options->search,
                     "only what has this in its title, text, place or categories; of\n"
                     "several --search, all of them")
        ->option_text("WORD")
        ->allow_extra_args(false);
    command
        ->add_option("--only", options->only,
                     "only entries of these kinds, with commas between several")
        ->option_text("events,todos,notes");
    command
        ->add_option("--zone", options->zone,
                     "the zone in which times are shown, as Europe/Berlin, and that of times\n"
                     "without one; else each time stands on its own clock")
        ->option_text("AREA/CITY");
    command
        ->add_option("--charset", options->charset,
                     "the character set of text that names none; see convert")
        ->option_text("NAME");
    CLI::Option* calendar =
        command->add_flag("--calendar", options->calendar,
                          "month grids with the days marked; without a range the\n"
                          "first date of each series");
    command->add_flag("--json", options->json, "print each entry with its facts as JSON")
        ->excludes(calendar);
    command->footer(
        "Examples:\n"
        "  qelutil show phone.vcs\n"
        "  qelutil show phone/ --next 10 --zone Europe/Berlin\n"
        "  qelutil show backup.zip --since 20050601 --through 20050630 --search dentist\n"
        "  qelutil show phone.vcs --since 20050101 --calendar");
    command->callback([options, &context] {
        if (options->files.empty()) options->files.emplace_back("-");
        Show(context, *options).run();
    });
}

}  // namespace qel::cli
