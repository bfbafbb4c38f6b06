#include "calendar/lines/CalendarReader.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

// Calendars nest two deep; nothing real goes further than this.
constexpr std::size_t kDeepest = 6;
// Room is made at once for the lines of a usual entry and of its first few parts.
constexpr std::size_t kUsualLines = 40;
constexpr std::size_t kUsualParts = 4;
constexpr std::size_t kUsualPartLines = 8;

bool isTopEntry(std::string_view name) {
    static constexpr std::string_view kNames[] = {"VEVENT", "VTODO",     "VJOURNAL",
                                                  "VNOTE",  "VTIMEZONE", "VFREEBUSY"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

std::string componentName(const ContentLine& line) {
    return upper(trimmed(line.value));
}

std::size_t costOf(const ContentLine& line) {
    std::size_t cost = sizeof(ContentLine) + line.name.size() + line.value.size();
    for (const Parameter& each : line.parameters)
        cost += sizeof(Parameter) + each.name.size() + each.value.size();
    return cost;
}

}  // namespace

CalendarReader::CalendarReader(ByteSource source, std::string file, NoteSink sink,
                               Contents contents)
    : lines_(std::move(source)),
      file_(std::move(file)),
      sink_(std::move(sink)),
      contents_(contents) {}

// True for a line that no one asks for: a property of an entry that is no zone. BEGIN and END are
// looked at in every entry.
bool CalendarReader::passesOver(const RawLine& raw) const {
    if (contents_ == Contents::All || !inEntry_ || component_.name == "VTIMEZONE") return false;
    const char first = toUpper(trimmed(raw.text).front());
    return first != 'B' && first != 'E';
}

void CalendarReader::report(Severity severity, std::size_t line, std::string text) {
    Note note(severity, std::move(text), line);
    note.file = file_;
    sink_(std::move(note));
}

// The next property into line_; lines that are none are told and passed over.
bool CalendarReader::readLine() {
    if (std::exchange(pending_, false)) return true;
    while (lines_.next(raw_)) {
        if (passesOver(raw_)) continue;
        const FoldStyle style =
            inCalendar_ && version_ != "2.0" ? FoldStyle::VCalendar10 : FoldStyle::ICalendar;
        const std::size_t number = raw_.number;
        const bool good = parseContentLine(raw_, style, line_);
        if (!inCalendar_ && !good) {
            if (outsideLines_++ == 0) firstOutside_ = number;
            continue;
        }
        if (!good) {
            report(Severity::Error, number, quoted(raw_.text) + " is no property; it is left out");
            continue;
        }
        if (line_.cut)
            report(Severity::Error, number,
                   std::string(line_.name) + " is longer than " +
                       std::to_string(kLongestLine >> 20) +
                       " megabytes; the rest of it is left out");
        if (line_.openEnd)
            report(Severity::Error, number,
                   "the quoted-printable text of " + std::string(line_.name) + " breaks off");
        return true;
    }
    return false;
}

// Tells once of all lines that stood outside.
void CalendarReader::outside() {
    if (outsideLines_ == 0) return;
    report(anyCalendar_ ? Severity::Warning : Severity::Error, firstOutside_,
           outsideLines_ == 1 ? std::string("a line outside any calendar is left out")
                              : std::to_string(outsideLines_) +
                                    " lines outside any calendar are left out, from here on");
    outsideLines_ = 0;
}

CalendarReader::Item CalendarReader::beginCalendar(bool keepLine) {
    outside();
    pending_ = keepLine;
    implicit_ = keepLine;
    inCalendar_ = true;
    anyCalendar_ = true;
    version_.clear();
    return Item::CalendarBegin;
}

CalendarReader::Item CalendarReader::atTopLevel() {
    while (readLine()) {
        if (line_.id == PropertyName::Begin) {
            const std::string name = componentName(line_);
            if (name == "VCALENDAR") return beginCalendar(false);
            if (isTopEntry(name)) {
                if (name != "VNOTE")
                    report(Severity::Warning, line_.number, name + " stands outside any calendar");
                return beginCalendar(true);
            }
        }
        if (outsideLines_++ == 0) firstOutside_ = line_.number;
    }
    outside();
    if (!anyCalendar_)
        report(Severity::Error, 0,
               "there is no calendar in this file; one begins with BEGIN:VCALENDAR");
    return Item::End;
}

CalendarReader::Item CalendarReader::next() {
    for (;;) {
        if (ended_) return Item::End;
        if (!inCalendar_) {
            const Item item = atTopLevel();
            ended_ = item == Item::End;
            return item;
        }
        if (!readLine()) {
            if (!implicit_) report(Severity::Error, 0, "the file ends within a calendar");
            inCalendar_ = false;
            ended_ = true;
            return Item::CalendarEnd;
        }
        if (line_.id == PropertyName::End) {
            const std::string name = componentName(line_);
            if (name == "VCALENDAR" || name.empty()) {
                inCalendar_ = false;
                return Item::CalendarEnd;
            }
            report(Severity::Error, line_.number, "END:" + name + " closes nothing");
            continue;
        }
        if (line_.id == PropertyName::Begin) {
            if (componentName(line_) == "VCALENDAR") {
                if (!implicit_)
                    report(Severity::Error, line_.number,
                           "a calendar begins before the last one has ended");
                pending_ = true;
                inCalendar_ = false;
                return Item::CalendarEnd;
            }
            if (readEntry()) return Item::Entry;
            continue;
        }
        if (line_.id == PropertyName::Version) version_ = std::string(trimmed(line_.value));
        return Item::CalendarProperty;
    }
}

void CalendarReader::addProperty(Component& owner) {
    entrySize_ += costOf(line_);
    if (entrySize_ <= kLargestEntry) {
        line_.moveTo(texts_);
        owner.properties.push_back(std::move(line_));
    } else if (!std::exchange(entryFull_, true)) {
        report(Severity::Error, line_.number,
               "the entry is larger than " + std::to_string(kLargestEntry >> 20) +
                   " megabytes; the rest of it is left out");
    }
}

void CalendarReader::closeAll(std::vector<Component*>& open, const std::string& why) {
    report(Severity::Error, open.back()->number, open.back()->name + " is not closed: " + why);
    open.clear();
}

// Reads the component whose BEGIN is in line_ into component_. False when it is no entry.
bool CalendarReader::readEntry() {
    texts_.clear();
    std::vector<ContentLine> lines = std::move(component_.properties);
    lines.clear();
    if (lines.capacity() > kUsualLines) lines = {};
    lines.reserve(kUsualLines);
    component_ = {componentName(line_), line_.number, std::move(lines), {}};
    entrySize_ = 0;
    entryFull_ = false;
    skippedDepth_ = 0;
    // The names of the components that are open, from component_ inward. Children are not added to
    // while one of them is open, so the pointers hold.
    std::vector<Component*> open{&component_};
    inEntry_ = true;
    while (!open.empty()) {
        if (!readLine()) {
            closeAll(open, "the file ends");
            break;
        }
        if (!takeEntryLine(open)) break;
    }
    inEntry_ = false;
    return true;
}

// False when the line belongs to what comes after the entry.
bool CalendarReader::takeEntryLine(std::vector<Component*>& open) {
    if (line_.id == PropertyName::Begin) {
        const std::string name = componentName(line_);
        if (name == "VCALENDAR" || isTopEntry(name)) {
            closeAll(open, name + " begins");
            pending_ = true;
            return false;
        }
        if (open.size() >= kDeepest || skippedDepth_ > 0 || entryFull_) {
            if (skippedDepth_++ == 0)
                report(Severity::Error, line_.number, name + " is left out: it lies too deep");
            return true;
        }
        entrySize_ += sizeof(Component);
        open.back()->children.emplace_back();
        Component& child = open.back()->children.back();
        child.name = name;
        child.number = line_.number;
        if (open.back()->children.size() <= kUsualParts) child.properties.reserve(kUsualPartLines);
        open.push_back(&child);
        return true;
    }
    if (line_.id != PropertyName::End) {
        if (skippedDepth_ == 0) addProperty(*open.back());
        return true;
    }
    const std::string name = componentName(line_);
    if (skippedDepth_ > 0 && name != "VCALENDAR") {
        --skippedDepth_;
        return true;
    }
    const auto match = std::find_if(open.rbegin(), open.rend(),
                                    [&](const Component* each) { return each->name == name; });
    if (match != open.rend()) {
        if (match != open.rbegin())
            report(Severity::Error, open.back()->number, open.back()->name + " is not closed");
        open.erase(match.base() - 1, open.end());
        return true;
    }
    if (name == "VCALENDAR") {
        closeAll(open, "the calendar ends");
        pending_ = true;
        return false;
    }
    report(Severity::Error, line_.number, "END:" + name + " closes nothing");
    return true;
}

}  // namespace qel::calendar
