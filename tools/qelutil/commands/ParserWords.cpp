#include "commands/ParserWords.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "base/Text.h"

namespace qel::cli {

namespace {

// A message of the parser as a pattern: "%" stands for any text. Gives these texts.
std::optional<std::vector<std::string>> matched(std::string_view text, std::string_view pattern) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t mark = std::min(pattern.find('%'), pattern.size());
        if (!text.starts_with(pattern.substr(0, mark))) return std::nullopt;
        text.remove_prefix(mark);
        if (mark == pattern.size()) {
            if (!text.empty()) return std::nullopt;
            return parts;
        }
        pattern.remove_prefix(mark + 1);
        const std::string_view next = pattern.substr(0, pattern.find('%'));
        const std::size_t end = next.empty() ? text.size() : text.find(next);
        if (end == std::string_view::npos) return std::nullopt;
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

const CLI::App& commandOf(const CLI::App& app) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
    return *command;
}

const CLI::Option* optionOf(const CLI::App& app, const std::string& name) {
    const CLI::Option* option = commandOf(app).get_option_no_throw(name);
    return option != nullptr ? option : app.get_option_no_throw(name);
}

// "--next NUMBER", as the help has it.
std::string withValue(const CLI::App& app, const std::string& name) {
    const CLI::Option* option = optionOf(app, name);
    if (option == nullptr) return name;
    std::string value = option->get_option_text();
    if (value.empty()) value = option->get_type_name();
    const bool isPositional = !name.starts_with('-');
    return isPositional || value.empty() ? name : name + " " + value.substr(0, value.find(':'));
}

std::string inQuotes(const std::string& text) {
    return "\"" + printable(text, 100) + "\"";
}

std::string outOfRange(const std::vector<std::string>& part) {
    const auto whole = [](const std::string& number) { return number.substr(0, number.find('.')); };
    constexpr std::size_t kLongest = 15;  // more digits are no bound that a person knows
    const std::string most = whole(part[3]);
    return part[0] + ": " + inQuotes(part[1]) + " is not a number " +
           (most.size() > kLongest ? "of " + whole(part[2]) + " or more"
                                   : "from " + whole(part[2]) + " to " + most);
}

std::string notAMember(const std::vector<std::string>& part) {
    std::string list;
    for (const char c : part[2]) list += c == ',' ? std::string(", ") : std::string(1, c);
    return part[0] + ": " + inQuotes(part[1]) + " is not one of " + list;
}

std::string notConverted(const CLI::App& app, const std::vector<std::string>& part) {
    const CLI::Option* option = optionOf(app, part[0]);
    if (option != nullptr && option->get_items_expected_max() == 0)
        return part[0] + " takes no value; leave " + inQuotes("=" + part[1]) + " out";
    return part[0] + ": " + inQuotes(part[1]) + " is not a whole number";
}

// A word too many is mostly the second one of a text that has no quotes.
std::string unexpected(const CLI::App& app) {
    std::string words;
    for (const std::string& word : app.remaining(true)) words += (words.empty() ? "" : " ") + word;
    std::string text = inQuotes(words) + " is more than this command takes";
    const CLI::Option* last = nullptr;
    for (const CLI::Option* each : commandOf(app).get_options())
        if (each->get_positional() && each->count() == 1) last = each;
    if (last != nullptr && !words.starts_with('-'))
        text += "; put a text with blanks in quotes: " +
                inQuotes(last->results().front() + " " + words);
    return text;
}

std::string timesGiven(const std::vector<std::string>& part) {
    return part[0] + " was given " + part[2] + " times; it takes one value";
}

}  // namespace

std::string parserWords(const CLI::App& app, const CLI::ParseError& problem) {
    std::string text = problem.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&problem) != nullptr) return unexpected(app);
    using Parts = std::vector<std::string>;
    const auto known = [&](std::string_view pattern, const auto& words) {
        const auto parts = matched(text, pattern);
        return parts ? words(*parts) : std::string();
    };
    const std::string own[] = {
        known("%: Value % not in range % to %", outOfRange),
        known("%: % not in {%}", notAMember),
        known("%: Value % could not be converted to UINT",
              [](const Parts& part) {
                  return part[0] + ": " + inQuotes(part[1]) + " is not a whole number";
              }),
        known("Could not convert: % = %",
              [&](const Parts& part) { return notConverted(app, part); }),
        known("%: At Most % required but received %", timesGiven),
        known("%: 1 required % missing",
              [&](const Parts& part) {
                  return part[0] + " needs a value: " + withValue(app, part[0]);
              }),
        known("% is required",
              [&](const Parts& part) { return withValue(app, part[0]) + " is missing"; }),
        known("% excludes %",
              [](const Parts& part) {
                  return part[0] + " and " + part[1] + " do not go together; leave one out";
              }),
        known("% requires %",
              [](const Parts& part) { return part[0] + " goes only with " + part[1]; }),
    };
    for (const std::string& words : own)
        if (!words.empty()) return words;
    return text;
}

}  // namespace qel::cli
