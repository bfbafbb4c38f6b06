#include "calendar/report/ReportFeed.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qel::calendar {

namespace {

// Bytes of an entry's text that are shown, on each side.
constexpr std::size_t kMostText = 4000;
constexpr std::size_t kMostNames = 50;

bool beginsLine(std::string_view text, std::size_t at) {
    return at == 0 || text[at - 1] == '\n';
}

// The entry alone, without the calendar and the zone in front of it.
std::string_view entryIn(std::string_view text) {
    std::size_t first = std::string_view::npos;
    for (const char* begin : {"BEGIN:VEVENT", "BEGIN:VTODO", "BEGIN:VJOURNAL", "BEGIN:VNOTE"}) {
        std::size_t at = text.find(begin);
        while (at != std::string_view::npos && !beginsLine(text, at)) at = text.find(begin, at + 1);
        first = std::min(first, at);
    }
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
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

std::string ReportFeed::written(const Entry& entry, CalendarFormat target) {
    if (writer_ == nullptr || writes_ != target) {
        writes_ = target;
        const NoteSink silent = [](const Note&) {};
        if (target == CalendarFormat::ICalendar)
            writer_ = std::make_unique<ICalWriter>(text_, silent);
        else
            writer_ = std::make_unique<VCalWriter>(text_, silent);
    }
    text_.str({});
    Entry copy = entry;
    writer_->write(copy);
    writer_->flush();
    return text_.str();
}

void ReportFeed::entryRead(const Entry& entry, CalendarFormat target) {
    ReportMessages all = std::exchange(pending_, {});
    for (const Note& each : all.shown) (each.line < entry.line ? ofFile_ : pending_).add(each);
    pending_.more = all.more;
    entry_ = {};
    entry_.facts = entryFacts(entry);
    entry_.line = entry.line;
    const std::string before = lines_.entry(entry.line, entry.component, kMostText + 1);
    const std::string text = written(entry, target);
    const std::string_view after = entryIn(text);
    entry_.kept = keptNames(after, before);
    entry_.before = head(before, entry_.cut);
    entry_.after = head(after, entry_.cut);
}

void ReportFeed::entryWritten() {
    entry_.messages = std::exchange(pending_, {});
    report_.entry(entry_);
}

void ReportFeed::endFile() {
    for (const Note& each : pending_.shown) ofFile_.add(each);
    ofFile_.more += pending_.more;
    report_.endFile(ofFile_);
}

}  // namespace qel::calendar
