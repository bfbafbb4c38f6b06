#include "commands/Settings.h"

#include <algorithm>
#include <istream>
#include <iterator>

namespace qel::cli {

namespace {

// The parser's own items for where a section begins and ends.
bool isMark(const CLI::ConfigItem& item) {
    return item.name == "++" || item.name == "--";
}

const CLI::Option* optionOf(const CLI::App& command, const std::string& name) {
    return command.get_option_no_throw((name.size() == 1 ? "-" : "--") + name);
}

const CLI::App* partOf(const CLI::App& command, const std::string& name) {
    const auto parts =
        command.get_subcommands([&](const CLI::App* each) { return each->get_name() == name; });
    return parts.empty() ? nullptr : parts.front();
}

// Options that go with one of several others, which the parser cannot know.
constexpr struct {
    const char* name;
    const char* with[2];
} kCompanions[] = {{"open", {"--report", "--beside"}}, {"overwrite", {"--output-dir", "--output"}}};

// "" when the option takes the value.
std::string refusalOf(const CLI::Option& option, std::string value) {
    // A check changes no option; the parser offers it of changeable ones alone.
    auto& checks = const_cast<CLI::Option&>(option);
    for (int i = 0;; ++i) {
        try {
            std::string refusal = (*checks.get_validator(i))(value);
            if (!refusal.empty()) return refusal;
        } catch (const CLI::OptionNotFound&) {
            return {};
        }
    }
}

}  // namespace

bool Settings::concerns(const CLI::ConfigItem& item) const {
    if (isMark(item)) return false;
    if (item.parents.empty()) {
        if (optionOf(app_, item.name) != nullptr) return true;
        remarks_.push_back("\"" + item.name +
                           "\" is neither an option of the program nor a section; it is ignored");
        return false;
    }
    const std::string& section = item.parents.front();
    if (partOf(app_, section) == nullptr) {
        remarks_.push_back("there is no command for the section [" + section + "]; it is ignored");
        return false;
    }
    const auto chosen = app_.get_subcommands();
    return !chosen.empty() && chosen.front()->get_name() == section;
}

bool Settings::fits(const CLI::App& command, const CLI::ConfigItem& item,
                    const std::vector<CLI::ConfigItem>& all) const {
    const CLI::Option* option = optionOf(command, item.name);
    const auto isGiven = [](const CLI::Option* each) { return each->count() > 0; };
    const auto isThere = [&](const CLI::Option* each) {
        return isGiven(each) ||
               std::any_of(all.begin(), all.end(), [&](const CLI::ConfigItem& other) {
                   return other.parents == item.parents && optionOf(command, other.name) == each;
               });
    };
    for (const auto& [name, with] : kCompanions)
        if (item.name == name && command.get_name() == "convert" &&
            std::none_of(std::begin(with), std::end(with), [&](const char* each) {
                return isThere(command.get_option_no_throw(each));
            }))
            return false;
    const auto needs = option->get_needs();
    const auto excludes = option->get_excludes();
    return std::all_of(needs.begin(), needs.end(), isThere) &&
           std::none_of(excludes.begin(), excludes.end(), isGiven);
}

std::vector<CLI::ConfigItem> Settings::from_config(std::istream& input) const {
    const std::vector<CLI::ConfigItem> all = CLI::ConfigTOML::from_config(input);
    std::vector<CLI::ConfigItem> mine;
    for (CLI::ConfigItem item : all) {
        if (!concerns(item)) continue;
        const CLI::App* command = &app_;
        for (const std::string& part : item.parents)
            if (command != nullptr) command = partOf(*command, part);
        const CLI::Option* option = command == nullptr ? nullptr : optionOf(*command, item.name);
        if (option == nullptr) {
            problem_ = "\"" + item.fullname() + "\" is no option of this command";
            return {};
        }
        // An array for an option that takes a list in one word.
        if (option->get_items_expected_max() == 1 && item.inputs.size() > 1)
            item.inputs = {CLI::detail::join(item.inputs, ",")};
        for (const std::string& value : item.inputs) {
            const std::string refusal = refusalOf(*option, value);
            if (refusal.empty()) continue;
            problem_ = item.name + ": " + refusal;
            return {};
        }
        if (fits(*command, item, all)) mine.push_back(std::move(item));
    }
    return mine;
}

void Settings::check() const {
    const std::string file = app_.get_config_ptr()->as<std::string>();
    if (!problem_.empty()) throw UsageError(file + ": " + problem_);
    std::string last;
    for (const std::string& each : remarks_)
        if (each != last) context_.warning(file, 0, last = each);
}

}  // namespace qel::cli
