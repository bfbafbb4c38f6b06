#include "commands/FirstWords.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string_view>
#include <system_error>

#include "base/Files.h"
#include "base/Text.h"

namespace qel::cli {

namespace {

// The least number of letters to insert, to delete or to replace.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// The one of `known` that a person most likely meant by `word`; empty when none is near.
std::string nearest(const std::string& word, const std::vector<std::string>& known) {
    constexpr std::size_t kLongest = 40;  // no name is longer
    if (word.size() > kLongest) return {};
    std::string best;
    std::size_t least = 1 + std::max<std::size_t>(1, word.size() / 3);
    for (const std::string& each : known) {
        // Who writes the beginning of a word means that word.
        const std::size_t away =
            word.size() > 2 && each.starts_with(word) ? 1 : distance(lowerCase(word), each);
        if (away >= least) continue;
        least = away;
        best = each;
    }
    return best;
}

std::string didYouMean(const std::string& name) {
    return name.empty() ? "" : " (did you mean " + name + "?)";
}

std::vector<std::string> namesOf(const std::vector<const CLI::App*>& commands) {
    std::vector<std::string> names;
    for (const CLI::App* each : commands) names.push_back(each->get_name());
    return names;
}

std::vector<std::string> longNamesOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* each : command.get_options())
        for (const std::string& name : each->get_lnames()) names.push_back("--" + name);
    return names;
}

bool isThere(const std::string& name) {
    std::error_code unknown;
    return std::filesystem::exists(pathOf(name), unknown);
}

bool looksLikeFile(const std::string& word) {
    return word.find_first_of("./\\", 1) != std::string::npos;
}

// True when the words say themselves where the result goes.
bool sayWhere(const std::vector<std::string>& words) {
    return std::any_of(
        words.begin(), words.end(),
        [](const std::string& word) {
            return isStandardInput(word) || word.starts_with("-o") || word.starts_with("-d") ||
                   word.starts_with("--output") || word == "--beside";
        });
}

}  // namespace

std::vector<std::string> completeWords(const CLI::App& app, std::vector<std::string> words) {
    if (words.empty()) return {"--help"};
    if (words[0] == "help") {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    const auto isCommand = [&](const std::string& word) {
        return std::any_of(commands.begin(), commands.end(),
                           [&](const CLI::App* each) { return each->check_name(word); });
    };
    // Options may come before the file: those of the program stay in front of the command.
    const CLI::App* convert = app.get_subcommand("convert");
    std::vector<std::string> ofProgram;
    std::size_t at = 0;
    while (at < words.size() && words[at].starts_with('-') && !isStandardInput(words[at])) {
        const std::string name = words[at].substr(0, words[at].find('='));
        const CLI::Option* own = app.get_option_no_throw(name);
        const CLI::Option* option = own != nullptr ? own : convert->get_option_no_throw(name);
        if (option == nullptr)
            throw UsageError(name + " is unknown here" +
                             didYouMean(nearest(name, longNamesOf(*convert))));
        const bool takesNext = option->get_items_expected_max() > 0 && name == words[at];
        const std::size_t count = std::min<std::size_t>(takesNext ? 2 : 1, words.size() - at);
        const auto from = words.begin() + static_cast<std::ptrdiff_t>(at);
        if (own == nullptr) {
            at += count;
            continue;
        }
        ofProgram.insert(ofProgram.end(), from, from + static_cast<std::ptrdiff_t>(count));
        words.erase(from, from + static_cast<std::ptrdiff_t>(count));
    }
    std::vector<std::string> whole = std::move(ofProgram);
    const bool isWhole = at == words.size() || isCommand(words[at]);
    if (!isWhole) {
        const std::string& first = words[at];
        if (!isStandardInput(first) && !isThere(first) && !looksLikeFile(first))
            throw UsageError("there is no command or file `" + first + "`" +
                             didYouMean(nearest(first, namesOf(commands))));
        whole.emplace_back("convert");
        if (!sayWhere(words)) whole.emplace_back("--beside");
    }
    whole.insert(whole.end(), words.begin(), words.end());
    return whole;
}

std::string unknownWords(const CLI::App& app, const std::vector<std::string>& words) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
    const auto parts = command->get_subcommands([](const CLI::App*) { return true; });
    std::vector<std::string> known = namesOf(parts);
    std::string unknown;
    for (const std::string& word : words) {
        const bool isPart = !word.starts_with('-') && word != command->get_name();
        if (isPart && !parts.empty()) unknown = word;
        const std::string name = word.substr(0, word.find('='));
        if (parts.empty() && name.starts_with('-') && !command->get_option_no_throw(name))
            unknown = name;
        if (!unknown.empty()) break;
    }
    if (unknown.empty() && !parts.empty()) {
        std::string list;
        for (const std::string& each : known) list += (list.empty() ? "" : ", ") + each;
        return "say what to do: " + list;
    }
    for (std::string& each : longNamesOf(*command)) known.push_back(std::move(each));
    return unknown.empty() ? ""
                           : unknown + " is unknown here" + didYouMean(nearest(unknown, known));
}

}  // namespace qel::cli
