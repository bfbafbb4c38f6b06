// qelutil log: where this computer's trace goes, with which options, and the end of it; and the
// logs of other computers.
#include <array>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

#include "QelUtility/BxTrace.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "commands/LogFiles.h"

namespace qel::cli {

namespace {

constexpr char kSection[] = "LogSettings";
constexpr std::size_t kUsualTail = 10;
constexpr std::size_t kMostTail = 100000;
// A trace line has no bound; what is looked through for the last lines has.
constexpr std::streamoff kMostTailBytes = 16 << 20;

struct TraceOption {
    const char* key;
    bool hexadecimal;
    int defaultValue;
    const char* meaning;
};

constexpr std::array<TraceOption, 10> kOptions = {{
    {"MaxFileSize", false, 5000000, "bytes at which the log is rotated"},
    {"MaxBackupCount", false, 3, "backups that a rotation keeps, 16 at most"},
    {"KeepLogFiles", false, 1, "not 0: a host's request to delete the log does nothing"},
    {"VTraceVerbosity", false, 0, "levelled traces are written up to this level"},
    {"TracingOptions", true, 1, "bits: 1 default, 2 and 4 SyncML in and out, 8000000 in one log"},
    {"LogManagerLevel", true, 0, "stored only"},
    {"LogManagerDetail", true, 0, "stored only"},
    {"RetroactiveTracingBufferSize", false, 0, "not 0: traces are kept back until an error"},
    {"SeparateLogForEachProcess", false, 0, "not 0: the process number joins the log's name"},
    {"KeepLogFileOpen", false, 0, "not 0: the log stays open between messages"},
}};

struct Options {
    std::vector<std::string> settings;
    LogFilesOptions log;
};

int valueOf(const TraceOption& option) {
    int value = option.defaultValue;
    if (option.hexadecimal)
        BxTrace_GetHexOptionValue(kSection, option.key, value);
    else
        BxTrace_GetOptionValue(kSection, option.key, value);
    return value;
}

std::string textOf(const TraceOption& option, int value) {
    if (!option.hexadecimal) return std::to_string(value);
    char text[16];
    std::snprintf(text, sizeof(text), "%x", static_cast<unsigned>(value));
    return text;
}

const TraceOption& optionNamed(const std::string& key) {
    std::string known;
    for (const TraceOption& option : kOptions) {
        if (CLI::detail::to_lower(option.key) == CLI::detail::to_lower(key)) return option;
        known += (known.empty() ? "" : ", ") + std::string(option.key);
    }
    throw UsageError("there is no option \"" + key + "\"; there are " + known);
}

int parseValue(const TraceOption& option, const std::string& text) {
    std::size_t used = 0;
    long long value = 0;
    try {
        value = std::stoll(text, &used, option.hexadecimal ? 16 : 10);
    } catch (const std::exception&) {
        used = 0;
    }
    using Limits = std::numeric_limits<std::int32_t>;
    const long long most =
        option.hexadecimal ? std::numeric_limits<std::uint32_t>::max() : Limits::max();
    const long long least = option.hexadecimal ? 0 : Limits::min();
    if (used == 0 || used != text.size() || value < least || value > most)
        throw UsageError("\"" + text + "\" is not a " +
                         (option.hexadecimal ? "hexadecimal" : "decimal") +
                         " number of 32 bits, which " + option.key + " takes");
    return static_cast<int>(static_cast<std::uint32_t>(value & 0xFFFFFFFFLL));
}

void set(Context& context, const std::string& setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos)
        throw UsageError("\"" + setting + "\" is not of the form KEY=VALUE");
    const TraceOption& option = optionNamed(setting.substr(0, equals));
    const int wanted = parseValue(option, setting.substr(equals + 1));
    if (option.hexadecimal)
        BxTrace_SetHexOptionValue(kSection, option.key, wanted);
    else
        BxTrace_SetOptionValue(kSection, option.key, wanted);
    // Writing reports nothing; reading back what is missing leaves the other value in place.
    TraceOption other = option;
    other.defaultValue = wanted == 0 ? 1 : 0;
    if (valueOf(other) != wanted)
        throw InputError(std::string(BxTrace_GetOptionsFilePath()) +
                         ": cannot be written; check that you may write to its directory");
    constexpr int kMostBackups = 16;
    if (std::string_view(option.key) == "MaxBackupCount" && wanted > kMostBackups)
        context.note({}, 0,
                     "a rotation keeps 16 backups at most; " + std::to_string(wanted) +
                         " is stored and counts as 16");
}

// The file's size and its last lines; no size when it cannot be read.
struct Tail {
    std::optional<std::uint64_t> size;
    std::deque<std::string> lines;
};

Tail tailOf(const std::string& path, std::size_t most) {
    Tail tail;
    // The library's paths are in the system's own character set, as fopen takes them.
    std::ifstream file(path.c_str(), std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? static_cast<std::streamoff>(file.tellg()) : -1;
    if (size < 0) return tail;
    const std::streamoff start = size > kMostTailBytes ? size - kMostTailBytes : 0;
    file.seekg(start);
    std::string line;
    // The first line is cut off when the reading does not begin with the file.
    if (start != 0) std::getline(file, line);
    while (most != 0 && std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        tail.lines.push_back(line);
        if (tail.lines.size() > most) tail.lines.pop_front();
    }
    // A directory can be opened and has a size, but nothing can be read from it.
    if (!file.bad()) tail.size = static_cast<std::uint64_t>(size);
    return tail;
}

void showText(Context& context, const Tail& tail) {
    std::ostream& out = context.out;
    out << "log      " << printable(BxTrace_GetLogFilePath());
    if (tail.size)
        out << " (" << *tail.size << " bytes)\n";
    else
        out << " (not there yet, or not readable)\n";
    out << "options  " << printable(BxTrace_GetOptionsFilePath()) << "\n\n";
    for (const TraceOption& option : kOptions) {
        const std::string key = option.key;
        const std::string value = textOf(option, valueOf(option));
        out << key << std::string(29 - key.size(), ' ') << value
            << std::string(value.size() < 9 ? 9 - value.size() : 1, ' ') << option.meaning << '\n';
    }
    if (!tail.lines.empty()) out << '\n';
    for (const std::string& line : tail.lines) out << printable(line) << '\n';
}

void showJson(Context& context, const Tail& tail) {
    Json document;
    document["log"] = jsonText(BxTrace_GetLogFilePath());
    document["bytes"] = nullptr;
    if (tail.size) document["bytes"] = *tail.size;
    document["optionsFile"] = jsonText(BxTrace_GetOptionsFilePath());
    for (const TraceOption& option : kOptions)
        document["options"][option.key] = textOf(option, valueOf(option));
    document["tail"] = Json::array();
    for (const std::string& line : tail.lines) document["tail"].push_back(jsonText(line));
    writeJson(context.out, "log", document);
}

// This computer's log, by lines.
void showOwnLog(Context& context, LogFilesOptions options) {
    // In the system's own character set.
    const std::filesystem::path path(BxTrace_GetLogFilePath());
    std::error_code unknown;
    if (std::filesystem::exists(path, unknown))
        options.files = {nameOf(path)};
    else
        context.error(nameOf(path) + ": nothing has been logged on this computer yet");
    if (options.json || !options.files.empty()) showLogFiles(context, options);
}

void run(Context& context, const Options& options) {
    if (!options.log.files.empty()) {
        if (!options.settings.empty())
            throw UsageError("--set changes the options of this computer; leave FILE out");
        showLogFiles(context, options.log);
        return;
    }
    // Loads the settings, so that the paths are known.
    static_cast<void>(BxTrace_GetTracingOptions());
    if (options.log.errors || options.log.summary || options.log.follow ||
        !(options.log.thread + options.log.since + options.log.through + options.log.search)
             .empty()) {
        if (!options.settings.empty())
            throw UsageError("--set changes options, the others show lines; give one of them");
        showOwnLog(context, options.log);
        return;
    }
    for (const std::string& setting : options.settings) set(context, setting);
    if (!options.settings.empty() && !options.log.json) return;
    const Tail tail = tailOf(BxTrace_GetLogFilePath(), options.log.tail.value_or(kUsualTail));
    if (options.log.json)
        showJson(context, tail);
    else
        showText(context, tail);
}

}  // namespace

std::vector<std::string> traceOptionKeys() {
    std::vector<std::string> keys;
    for (const TraceOption& option : kOptions) keys.emplace_back(option.key);
    return keys;
}

void addLogCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    LogFilesOptions& log = options->log;
    CLI::App* command = app.add_subcommand(
        "log", "The trace log: where it is, its options, its last lines; and logs of others");
    command
        ->add_option("FILE", log.files,
                     "logs of other computers, each with its backups, or folders with logs at any\n"
                     "depth, or - for standard input; those of several processes are merged by\n"
                     "time. Nothing is written beside them")
        ->option_text("[FILE|FOLDER...|-]");
    command->add_flag("--errors", log.errors, "only the errors");
    command->add_option("--thread", log.thread, "only what this thread wrote")->option_text("HEX");
    command->add_option("--since", log.since, "from this time on: 06/15 or 06/15 14:02:11")
        ->option_text("TIME");
    command->add_option("--through", log.through, "up to and with this time")->option_text("TIME");
    command->add_option("--search", log.search, "only lines with this text")->option_text("TEXT");
    command->add_flag("--summary", log.summary,
                      "the first and the last line, errors by code, gaps, starts, and the options");
    command->add_flag("-f,--follow", log.follow, "go on with what is written later");
    command->add_option("--set", options->settings, "set an option; may be repeated")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command->add_option("--tail", log.tail, "only the last lines; 10 of this computer's log")
        ->option_text("NUMBER")
        ->check(CLI::Range(std::size_t{0}, kMostTail));
    command->add_flag("--json", log.json, "print the facts as JSON");
    command->footer(
        "Without FILE it is this computer's log. BX_ERR_LOG_FILE_PATH names it, otherwise it is "
        "in\n"
        "the user's profile directory; BX_OPTIONS_FILE_PATH names the options file, otherwise it "
        "is\n"
        "beside the log. Running programs read the options again within a minute.\n"
        "Examples:\n"
        "  qelutil log --tail 40\n"
        "  qelutil log --set VTraceVerbosity=3 --set TracingOptions=7\n"
        "  qelutil log customer/BxTrace.log --errors --since \"06/15 14:00\"\n"
        "  qelutil log customer/ --summary");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
