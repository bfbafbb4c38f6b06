#include "calendar/report/ReportFeed.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qel::calendar {

namespace {

// Bytes of an entry's text that are shown, on each side.
constexpr std::size_t kMostText = 4000;
constexpr std::size_t kMostNames = 50;

// The first lines of an entry's bytes, each ended by "\n" alone.
std::string plainLines(std::string_view bytes) {
    std::string text;
    while (!bytes.empty() && text.size() <= kMostText) {
        std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
        text.append(bytes.substr(0, end)).append("\n");
        while (end < bytes.size() && bytes[end] == '\r') ++end;
        if (end < bytes.size() && bytes[end] == '\n') ++end;
        bytes.remove_prefix(end);
    }
    return text;
}

// The first lines of a text.
std::string head(std::string_view text, bool& cut) {
    if (text.size() <= kMostText) return std::string(text);
    cut = true;
    return std::string(text.substr(0, text.find('\n', kMostText) + 1));
}

// The names of lines of `after` that hold what its format lacks, and that `before` has not.
std::vector<std::string> keptNames(std::string_view after, std::string_view before) {
    std::vector<std::string> names;
    while (!after.empty() && names.size() < kMostNames) {
        const std::size_t end = after.find('\n');
        const std::string_view line = after.substr(0, end);
        after.remove_prefix(end == std::string_view::npos ? after.size() : end + 1);
        if (!line.starts_with(kVCalendarPrefix) && !line.starts_with(kICalendarPrefix)) continue;
        std::string name(line.substr(0, line.find_first_of(";:")));
        if (before.find("\n" + name) == std::string_view::npos &&
            std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

}  // namespace

void ReportFeed::beginFile(const std::string& name) {
    pending_ = {};
    ofFile_ = {};
    report_.beginFile(name);
}

void ReportFeed::hear(const Note& message) {
    pending_.add(message);
}

void ReportFeed::entryConverted(const ConvertedEntry& converted) {
    const std::size_t line = converted.entry.line;
    ReportEntry entry;
    const ReportMessages all = std::exchange(pending_, {});
    for (const Note& each : all.shown) (each.line < line ? ofFile_ : entry.messages).add(each);
    entry.messages.more = all.more;
    entry.facts = entryFacts(converted.entry);
    entry.line = line;
    const std::string before = plainLines(converted.source);
    entry.kept = keptNames(converted.written, before);
    entry.before = head(before, entry.cut);
    entry.after = head(converted.written, entry.cut);
    report_.entry(entry);
}

void ReportFeed::endFile() {
    for (const Note& each : pending_.shown) ofFile_.add(each);
    ofFile_.more += pending_.more;
    report_.endFile(ofFile_);
}

}  // namespace qel::calendar
