// qelutil status: the names of result statuses and operations.
#include <memory>
#include <optional>
#include <vector>

#include "QelUtility/BxStatusNames.h"
#include "base/Json.h"
#include "base/Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

constexpr int kStatuses = 43;
// Operation codes lie in two ranges that start here.
constexpr unsigned long kFirstReply = 10000;
constexpr unsigned long kFirstOperation = 20000;
constexpr unsigned long kRange = 100;

struct Options {
    std::vector<std::string> wanted;
    bool list = false;
    bool json = false;
};

struct Entry {
    const char* kind;  // "status", "reply" or "operation"
    long code;
    std::string name;
};

Entry statusEntry(int status) {
    const VStr text = StatusText(status);
    const std::string_view shown = static_cast<const char*>(text);
    return {"status", status, std::string(shown.substr(shown.find('=') + 1))};
}

std::optional<Entry> operationEntry(unsigned long code) {
    const char* name = OperationName(code);
    if (name == nullptr) return {};
    return Entry{code < kFirstOperation ? "reply" : "operation", static_cast<long>(code), name};
}

std::vector<Entry> allEntries() {
    std::vector<Entry> entries;
    for (int status = 0; status < kStatuses; ++status) entries.push_back(statusEntry(status));
    for (const unsigned long first : {kFirstReply, kFirstOperation})
        for (unsigned long code = first; code < first + kRange; ++code)
            if (auto entry = operationEntry(code)) entries.push_back(*entry);
    return entries;
}

std::optional<Entry> entryFor(const std::string& wanted) {
    if (!wanted.empty() && wanted.size() < 7 &&
        wanted.find_first_not_of("0123456789") == std::string::npos) {
        const int number = std::stoi(wanted);
        if (number < kStatuses) return statusEntry(number);
        return operationEntry(static_cast<unsigned long>(number));
    }
    // A NUL would end the text for the library.
    if (wanted.find('\0') != std::string::npos) return {};
    unsigned long code = 0;
    const std::string tag = wanted.rfind('<', 0) == 0 ? wanted : "<" + wanted + ">";
    if (OperationFromTag(tag.c_str(), code) == 0) return operationEntry(code);
    const std::string name = wanted.rfind("Status=", 0) == 0 ? wanted.substr(7) : wanted;
    for (int status = 0; status < kStatuses; ++status) {
        Entry entry = statusEntry(status);
        if (CLI::detail::to_lower(entry.name) == CLI::detail::to_lower(name)) return entry;
    }
    return {};
}

void run(Context& context, const Options& options) {
    if (options.list == !options.wanted.empty())
        throw UsageError(options.list ? "--list takes no number or name"
                                      : "give a number, a tag or a name, or --list them");
    std::vector<Entry> found;
    if (options.list) found = allEntries();
    for (const std::string& wanted : options.wanted) {
        if (auto entry = entryFor(wanted))
            found.push_back(*entry);
        else
            context.error("\"" + wanted +
                          "\" is neither a status nor an operation; see `qelutil status --list`");
    }
    if (options.json) {
        Json document = Json::array();
        for (const Entry& entry : found)
            document.push_back({{"kind", entry.kind}, {"code", entry.code}, {"name", entry.name}});
        writeJson(context.out, "status", {{"names", document}});
        return;
    }
    for (const Entry& entry : found) {
        const std::string code = std::to_string(entry.code);
        const bool isStatus = std::string_view(entry.kind) == "status";
        context.out << code << std::string(7 - code.size(), ' ')
                    << (isStatus ? "Status=" + entry.name : "<" + entry.name + ">") << '\n';
    }
}

}  // namespace

void addStatusCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("status", "The names of result statuses and operations");
    command
        ->add_option("WHAT", options->wanted,
                     "the number of a status or operation, a tag, or a name")
        ->type_name("");
    command->add_flag("--list", options->list, "list them all");
    command->add_flag("--json", options->json, "print the facts as JSON");
    command->footer(
        "Examples:\n"
        "  qelutil status 23 UIDNotFound\n"
        "  qelutil status \"<GET_SERVER_DELTAS>\" 10003\n"
        "  qelutil status --list --json");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
