#include "calendar/lines/CalendarReader.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"

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

// What a note mentions of a text: notes are kept, and lines may be very long.
constexpr std::size_t kLongestMention = 200;
std::string_view head(std::string_view text) {
    return text.substr(0, kLongestMention);
}

// The name of the property that a soft line break leads to.
std::string swallowedName(const RawLine& raw) {
    const std::string_view line = head(raw.text.view().substr(raw.swallowed));
    return std::string(line.substr(0, line.find_first_of(":;")));
}

// What an entry takes, in bytes: the same on every system, so that all cut it at the same place.
constexpr std::size_t kLineCost = 80;
constexpr std::size_t kParameterCost = 64;
constexpr std::size_t kComponentCost = 88;

std::size_t costOf(const ContentLine& line) {
    std::size_t cost = kLineCost + line.name.size() + line.value.size();
    for (const Parameter& each : line.parameters)
        cost += kParameterCost + each.name.size() + each.value.size();
    return cost;
}

}  // namespace

// True for a line that nobody asks for: a property of an entry that is not a zone. BEGIN and END
// are looked at in every entry.
bool CalendarReader::passesOver(const RawLine& raw) const {
    if (contents_ == Contents::All || !inEntry() || inZone_) return false;
    if (raw.id != PropertyName::Unknown)
        return raw.id != PropertyName::Begin && raw.id != PropertyName::End;
    const char first = toUpper(trimmed(raw.text.view()).front());
    return first != 'B' && first != 'E';
}

std::optional<CalendarReader::Place> CalendarReader::place() const {
    if (!inCalendar_ || inEntry() || pending_ || !lines_.isBetween()) return std::nullopt;
    return Place{version_, lines_.isIndented()};
}

void CalendarReader::goOn(const Place& place, std::size_t lines) {
    lines_.goOn(lines, place.indented);
    open_.clear();
    version_ = place.version;
    isICalendar_ = version_ == "2.0";
    inCalendar_ = true;
    pending_ = false;
    ended_ = false;
}

void CalendarReader::report(NoteCode code, std::size_t line,
                            std::initializer_list<std::string_view> values) {
    sink_(Note(code, line, values));
}

// The next property into line_. Lines that are not one are reported and skipped.
LineReader::Result CalendarReader::readLine() {
    using Result = LineReader::Result;
    if (std::exchange(pending_, false)) return Result::Line;
    for (;;) {
        if (contents_ == Contents::OfZones && inEntry() && !inZone_) passOver();
        const Result result = lines_.next();
        if (result != Result::Line) return result;
        if (passesOver(lines_.line()))
            showText();
        else if (!addUsual(lines_.line()) && parseLine())
            return Result::Line;
    }
}

void CalendarReader::passOver() {
    const bool isBare = open_.size() == 1 && skippedDepth_ == 0 && component_.properties.empty() &&
                        component_.children.empty() && isTopEntry(component_.name);
    lines_.passOver(isBare ? std::string_view(component_.name) : std::string_view());
}

FoldStyle CalendarReader::foldStyle() const {
    return inCalendar_ && !isICalendar_ ? FoldStyle::VCalendar10 : FoldStyle::ICalendar;
}

void CalendarReader::showText() {
    if (textSink_ == nullptr) return;
    const RawLine& raw = lines_.line();
    if (!lines_.isQuotedPrintable() && isAscii(raw.text.view())) return;
    // The usual label, seen without taking the line apart; in quoted-printable it is believed.
    if (raw.text.view().find("CHARSET=UTF-8") < raw.colon &&
        (lines_.isQuotedPrintable() || isUtf8(raw.text.view())))
        return;
    if (parseContentLine(lines_.line(), foldStyle(), line_)) textSink_(line_);
}

bool CalendarReader::parseLine() {
    RawLine& raw = lines_.line();
    // Folds are undone, so its place changes.
    if (raw.swallowed != 0) swallowed_ = swallowedName(raw);
    if (!parseContentLine(raw, foldStyle(), line_)) {
        if (inCalendar_)
            report(NoteCode::LineNotProperty, raw.number, {head(raw.text.view())});
        else if (contactDepth_ == 0 && outsideLines_++ == 0)
            firstOutside_ = raw.number;
        return false;
    }
    if (line_.cut)
        report(NoteCode::LineTooLong, raw.number,
               {head(line_.name), std::to_string(kLongestLine >> 20)});
    if (line_.openEnd) report(NoteCode::QuotedPrintableBreaksOff, raw.number, {head(line_.name)});
    const bool marks = line_.id == PropertyName::Begin || line_.id == PropertyName::End;
    if (raw.swallowed != 0 && !swallowed_.empty())
        report(NoteCode::TextSwallowsProperty, raw.number, {head(line_.name), swallowed_});
    if (line_.wrapped || line_.untidy || raw.bare != 0 || raw.indented || raw.group != 0 ||
        (marks && !line_.value.empty() && !isAlpha(line_.value.back())))
        reportUntidy(raw);
    return true;
}

void CalendarReader::reportUntidy(const RawLine& raw) {
    if (line_.wrapped) report(NoteCode::TextWrappedByWords, raw.number, {head(line_.name)});
    if (raw.bare != 0)
        report(NoteCode::LinesNotFolded, raw.number, {head(line_.name), std::to_string(raw.bare)});
    if (raw.group != 0)
        report(NoteCode::GroupLeftOut, raw.number,
               {head(line_.name), head(trimmed(raw.text.view().substr(0, raw.group)))});
    if (raw.indented) report(NoteCode::CalendarIndented, raw.number);
    if (line_.untidy) report(NoteCode::BlanksAroundName, raw.number, {head(line_.name)});
    if (line_.id != PropertyName::Begin && line_.id != PropertyName::End) return;
    const std::string_view name = line_.value.substr(0, line_.value.find_last_not_of(" \t:;") + 1);
    if (trimmed(name).size() == trimmed(line_.value).size()) return;
    report(NoteCode::ComponentNameUntidy, raw.number, {head(line_.name), head(trimmed(name))});
    line_.value = name;
}

// Once for all lines outside calendars since the last one.
void CalendarReader::reportOutside() {
    if (outsideLines_ == 0) return;
    report(anyCalendar_ ? NoteCode::TextAfterCalendar : NoteCode::TextBeforeCalendar, firstOutside_,
           {std::to_string(outsideLines_)});
    outsideLines_ = 0;
}

CalendarReader::Item CalendarReader::next() {
    using Result = LineReader::Result;
    for (;;) {
        if (ended_) return Item::End;
        const Result result = readLine();
        if (result == Result::NeedMore) return Item::NeedMore;
        const std::optional<Item> item = result == Result::End ? endFile() : takeLine();
        if (item) return *item;
    }
}

std::optional<CalendarReader::Item> CalendarReader::takeLine() {
    if (inEntry()) return takeInEntry();
    return inCalendar_ ? takeInCalendar() : takeOutside();
}

// What the end of the file ends, from inside out, an item a call.
CalendarReader::Item CalendarReader::endFile() {
    if (inEntry()) {
        reportUnclosed(NoteCode::ComponentNotClosedInFile);
        return endEntry();
    }
    ended_ = true;
    if (contacts_ != 0)
        report(NoteCode::ContactsLeftOut, firstContact_, {std::to_string(contacts_)});
    if (inCalendar_) {
        if (!implicit_) report(NoteCode::CalendarNotClosed, 0);
        return endCalendar();
    }
    reportOutside();
    if (!anyCalendar_) report(NoteCode::NoCalendar, 0);
    return Item::End;
}

std::optional<CalendarReader::Item> CalendarReader::takeOutside() {
    if (line_.id == PropertyName::Begin) {
        const std::string name = componentName(line_);
        if (name == "VCALENDAR"sv) return beginCalendar(false);
        if (isTopEntry(name)) {
            if (name != "VNOTE"sv) report(NoteCode::EntryOutsideCalendar, line_.number, {name});
            return beginCalendar(true);
        }
    }
    if (!takesContact() && outsideLines_++ == 0) firstOutside_ = line_.number;
    return std::nullopt;
}

// True for a line of a contact outside calendars.
bool CalendarReader::takesContact() {
    const bool isMark = (line_.id == PropertyName::Begin || line_.id == PropertyName::End) &&
                        equalsIgnoreCase(trimmed(line_.value), "VCARD");
    if (!isMark || (contactDepth_ == 0 && line_.id == PropertyName::End)) return contactDepth_ != 0;
    if (line_.id == PropertyName::End)
        --contactDepth_;
    else if (contactDepth_++ == 0 && contacts_++ == 0)
        firstContact_ = line_.number;
    return true;
}

CalendarReader::Item CalendarReader::beginCalendar(bool keepLine) {
    reportOutside();
    contactDepth_ = 0;
    pending_ = keepLine;
    implicit_ = keepLine;
    inCalendar_ = true;
    anyCalendar_ = true;
    version_.clear();
    isICalendar_ = false;
    return Item::CalendarBegin;
}

CalendarReader::Item CalendarReader::endCalendar() {
    inCalendar_ = false;
    return Item::CalendarEnd;
}

std::optional<CalendarReader::Item> CalendarReader::takeInCalendar() {
    if (line_.id == PropertyName::End) {
        const std::string name = componentName(line_);
        if (name == "VCALENDAR"sv || name.empty()) return endCalendar();
        report(NoteCode::EndWithoutBegin, line_.number, {head(name)});
        return std::nullopt;
    }
    if (line_.id == PropertyName::Begin) {
        std::string name = componentName(line_);
        if (name != "VCALENDAR"sv) {
            beginEntry(std::move(name));
            return std::nullopt;
        }
        if (!implicit_) report(NoteCode::CalendarInCalendar, line_.number);
        pending_ = true;
        return endCalendar();
    }
    if (line_.id == PropertyName::Version) {
        version_ = std::string(trimmed(line_.value));
        isICalendar_ = version_ == "2.0";
    }
    return Item::CalendarProperty;
}

// The component whose BEGIN is in line_.
void CalendarReader::beginEntry(std::string name) {
    texts_.clear();
    std::vector<ContentLine>& lines = component_.properties;
    lines.clear();
    if (lines.capacity() > kUsualLines) lines = {};
    lines.reserve(kUsualLines);
    component_.children.clear();
    component_.name = std::move(name);
    component_.number = line_.number;
    inZone_ = component_.name == "VTIMEZONE"sv;
    entrySize_ = 0;
    entryFull_ = false;
    skippedDepth_ = 0;
    open_.push_back(&component_);
}

CalendarReader::Item CalendarReader::endEntry() {
    open_.clear();
    return Item::Entry;
}

std::optional<CalendarReader::Item> CalendarReader::takeInEntry() {
    if (line_.id != PropertyName::Begin && line_.id != PropertyName::End) {
        if (skippedDepth_ == 0) addProperty(*open_.back());
        return std::nullopt;
    }
    if (line_.id == PropertyName::End && skippedDepth_ == 0 && line_.value == open_.back()->name) {
        open_.pop_back();
        if (open_.empty()) return Item::Entry;
        return std::nullopt;
    }
    const std::string name = componentName(line_);
    if (line_.id == PropertyName::End) return takeEnd(name);
    if (name == "VCALENDAR"sv || isTopEntry(name)) {
        reportUnclosed(NoteCode::ComponentNotClosedBeforeNext, name);
        pending_ = true;
        return endEntry();
    }
    beginChild(name);
    return std::nullopt;
}

void CalendarReader::beginChild(const std::string& name) {
    if (open_.size() >= kDeepest || skippedDepth_ > 0 || entryFull_) {
        if (skippedDepth_++ == 0) report(NoteCode::ComponentTooDeep, line_.number, {head(name)});
        return;
    }
    entrySize_ += kComponentCost;
    std::vector<Component>& children = open_.back()->children;
    Component& child = children.emplace_back();
    child.name = name;
    child.number = line_.number;
    if (children.size() <= kUsualParts) child.properties.reserve(kUsualPartLines);
    open_.push_back(&child);
}

std::optional<CalendarReader::Item> CalendarReader::takeEnd(const std::string& name) {
    if (skippedDepth_ > 0 && name != "VCALENDAR"sv) {
        --skippedDepth_;
        return std::nullopt;
    }
    const auto match = std::find_if(open_.rbegin(), open_.rend(),
                                    [&](const Component* each) { return each->name == name; });
    if (match != open_.rend()) {
        if (match != open_.rbegin())
            report(NoteCode::ComponentNotClosed, open_.back()->number, {head(open_.back()->name)});
        open_.erase(match.base() - 1, open_.end());
        if (open_.empty()) return Item::Entry;
        return std::nullopt;
    }
    if (name == "VCALENDAR"sv) {
        reportUnclosed(NoteCode::ComponentNotClosedInCalendar);
        pending_ = true;
        return endEntry();
    }
    report(NoteCode::EndWithoutBegin, line_.number, {head(name)});
    return std::nullopt;
}

void CalendarReader::reportUnclosed(NoteCode code, std::string_view next) {
    report(code, open_.back()->number, {head(open_.back()->name), head(next)});
}

// Adds a property of an entry as nearly all are. False for any other line.
bool CalendarReader::addUsual(const RawLine& raw) {
    if (!raw.usual || !inEntry() || skippedDepth_ != 0) return false;
    if (raw.id == PropertyName::Begin || raw.id == PropertyName::End) return false;
    std::vector<ContentLine>& lines = open_.back()->properties;
    parseUsualLine(raw, lines.emplace_back());
    keepLast(lines);
    return true;
}

void CalendarReader::addProperty(Component& owner) {
    owner.properties.push_back(std::move(line_));
    keepLast(owner.properties);
}

// Keeps the text of the last line, unless the entry is full.
void CalendarReader::keepLast(std::vector<ContentLine>& lines) {
    ContentLine& line = lines.back();
    entrySize_ += costOf(line);
    if (entrySize_ <= kLargestEntry) return line.moveTo(texts_);
    if (!std::exchange(entryFull_, true))
        report(NoteCode::EntryTooLarge, line.number, {std::to_string(kLargestEntry >> 20)});
    lines.pop_back();
}

}  // namespace qel::calendar
