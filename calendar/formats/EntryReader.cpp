#include "calendar/formats/EntryReader.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/base/Strays.h"
#include "calendar/base/Text.h"
#include "calendar/entries/EntryDates.h"
#include "calendar/formats/AlarmReader.h"
#include "calendar/formats/OccurrenceMeant.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

namespace {

// Rules that one entry may have; each one is expanded. A text that passes it is read to its end.
constexpr std::size_t kMostRules = 100;
// Names of zones that are remembered as reported.
constexpr std::size_t kMostUnknownZones = 1000;
constexpr std::size_t kLongestZone = 1000;
// Series whose starts are remembered.
constexpr std::size_t kMostSeries = 5000;
// Properties that an entry usually has at most: their memory is kept for the next one.
constexpr std::size_t kUsualProperties = 32;

// The day whose midnight, in whatever zone, is a moment in UTC: half a day later it is that day in
// UTC too.
Moment dayOfUtc(const Moment& moment) {
    const Moment noon = momentAt(moment, moment.seconds() + kDaySeconds / 2);
    return {noon.day, 0, true, Clock::Floating};
}

// "09:00"; nothing for a date.
std::string timeOfDay(const Moment& moment) {
    const std::string time = formatMoment(moment);
    return moment.isDate ? "" : time.substr(9, 2) + ":" + time.substr(11, 2);
}

// True where an entry keeps what the parameter says, or its value was read by it.
bool isUsed(const Parameter& parameter, const ContentLine& line) {
    const std::string_view name = parameter.name;
    if (name.empty()) return isEncodingWord(parameter.value);
    if (name == "VALUE"sv || name == "ENCODING"sv || name == "CHARSET"sv) return true;
    const bool isTrigger = line.id == PropertyName::Trigger;
    if (name == "TZID"sv) return isTrigger || propertyOf(line.id).held == HeldAs::Date;
    if (name == "RANGE"sv && equalsIgnoreCase(parameter.value, "THISANDFUTURE"))
        return line.id == PropertyName::RecurrenceId || line.id == PropertyName::XRecurrenceId;
    return name == "X-VCAL-FLOATING"sv || (isTrigger && name == "RELATED"sv);
}

// About the rules of exceptions that take nothing out.
std::vector<Note> idleExceptions(const Entry& entry) {
    std::vector<Note> notes;
    for (const EntryRule& each : entry.rules) {
        if (!each.exclude) continue;
        const auto isIdle = [&](const Rule& rule) { return isAtOtherTimes(entry, rule); };
        const auto idle = std::find_if(each.rules.begin(), each.rules.end(), isIdle);
        if (idle != each.rules.end())
            notes.push_back(Note(NoteCode::ExceptionMatchesNothing, each.line,
                                 {iCalendarText(*idle), "0", "EXRULE", timeOfDay(*entry.start)}));
    }
    return notes;
}

// A decimal number from -most to most.
bool isDegrees(std::string_view text, int most) {
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    const std::string_view whole = nextField(text, '.');
    if (whole.empty() ? !allDigits(text) : !allDigits(whole)) return false;
    if (!text.empty() && !allDigits(text)) return false;
    const int number = whole.empty() ? 0 : parseInt(whole).value_or(most + 1);
    return number < most || (number == most && text.find_first_not_of('0') == text.npos);
}

// iCalendar demands digits on both sides of a point.
std::string withDigits(std::string_view degrees) {
    std::string text(degrees);
    const std::size_t point = text.find('.');
    if (point == std::string::npos) return text;
    if (point + 1 == text.size()) text.pop_back();
    if (point == 0 || !isDigit(text[point - 1])) text.insert(point, 1, '0');
    return text;
}

}  // namespace

void dropBlankItems(std::vector<std::string>& items) {
    for (std::string& each : items)
        if (const std::string_view inside = trimmed(each); inside.size() != each.size())
            each = std::string(inside);
    std::erase_if(items, [](const std::string& each) { return each.empty(); });
}

bool isEncodingWord(std::string_view value) {
    static constexpr std::string_view kWords[] = {
        "QUOTED-PRINTABLE", "BASE64", "B", "8BIT", "8-BIT", "7BIT"};
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&](std::string_view word) { return equalsIgnoreCase(word, value); });
}

EntryReader::EntryReader(KnownZones& zones, const Choices& choices, NoteSink sink)
    : zones_(zones), choices_(choices), sink_(std::move(sink)) {
    if (const auto chosen = findWorldZone(choices_.zone)) chosenZone_ = zones_.world.zone(*chosen);
}

Entry* EntryReader::read(const Component& component, const ZonePtr& zone) {
    if (!beginEntry(component, zone)) return nullptr;
    for (const ContentLine& line : component.properties) takeLine(line);
    settleWholeDays();
    dueAtEnd();
    startSeriesAtDue();
    settleRecurrenceId();
    settleTimes();
    takeRecurrence();
    if (daysOfUtc_) settleDaysOfUtc();
    for (const Component& child : component.children)
        if (child.name == "VALARM"sv)
            AlarmReader(*this).takeComponent(child);
        else
            report(Note(NoteCode::EntryPartUnknown, child.number, {child.name}));
    return &entry_;
}

bool EntryReader::beginEntry(const Component& component, const ZonePtr& zone) {
    if (entry_.properties.capacity() > kUsualProperties) entry_.properties = {};
    entry_.clear();
    entry_.properties.reserve(kUsualProperties);
    ruleLines_.clear();
    dateLines_.clear();
    texts_.clear();
    dependsOnOthers_ = false;
    series_.reset();
    entry_.component = component.name;
    entry_.line = component.number;
    entry_.zone = zone;
    if (zone == nullptr && ruleForm() == RuleForm::VCalendar10) entry_.zone = chosenZone_;
    if (component.name == "VEVENT"sv) {
        entry_.kind = EntryKind::Event;
    } else if (component.name == "VTODO"sv) {
        entry_.kind = EntryKind::Todo;
    } else if (component.name == "VJOURNAL"sv || component.name == "VNOTE"sv) {
        entry_.kind = EntryKind::Journal;
    } else {
        report(Note(NoteCode::EntryComponentUnknown, component.number, {component.name}));
        return false;
    }
    return true;
}

Moment EntryReader::onLocalClock(const Moment& moment) const {
    if (moment.clock != Clock::Utc || entry_.zone == nullptr) return moment;
    return entry_.zone->toLocal(moment);
}

// True from 00:00 to 24:00 or the last minute or second before it.
bool EntryReader::lastsWholeDays() const {
    constexpr int kLastMinute = 86340;
    constexpr int kLastSecond = 86399;
    const Moment start = onLocalClock(*entry_.start);
    if (start.second != 0 || start.clock == Clock::Utc || !entry_.end || entry_.end->isDate)
        return false;
    const Moment end = onLocalClock(*entry_.end);
    if (end.clock != start.clock) return false;
    return end.second == 0
               ? end.day > start.day
               : end.day >= start.day && (end.second == kLastMinute || end.second == kLastSecond);
}

void EntryReader::settleWholeDays() {
    using Said = Entry::WholeDays;
    daysOfUtc_ = false;
    if (entry_.kind != EntryKind::Event || !entry_.start || entry_.start->isDate) return;
    const Entry::WholeDaysSaid said = entry_.wholeDaysSaid();
    const Moment start = onLocalClock(*entry_.start);
    if (said.what == Said::Unsaid && daysAreTimes() && lastsWholeDays()) {
        report(Note(NoteCode::AllDayByTimes, entry_.line));
        return makeAllDay();
    }
    if (said.what != Said::Yes && (said.what != Said::AtMidnight || start.second != 0)) return;
    if (start.clock == Clock::Utc && start.second != 0) {
        daysOfUtc_ = true;
        report(Note(NoteCode::AllDayInUtc, said.by->line, {said.by->name}));
    } else if (start.second != 0) {
        report(Note(NoteCode::AllDayWithoutTimes, said.by->line,
                    {said.by->name, formatMoment(start)}));
    } else {
        report(Note(NoteCode::AllDayBySign, said.by->line, {said.by->name}));
    }
    makeAllDay();
}

void EntryReader::makeAllDay() {
    const Moment start = *entry_.start;
    if (entry_.duration && !entry_.end) {
        entry_.end = momentAt(start, start.seconds() + entry_.duration->total());
        entry_.duration.reset();
    }
    entry_.start =
        daysOfUtc_ ? dayOfUtc(start) : entry_.inClockOf(Moment{0, 0, true, Clock::Floating}, start);
    for (std::optional<Moment>* each : {&entry_.end, &entry_.due}) {
        if (!*each || (*each)->isDate) continue;
        const Moment local = onLocalClock(**each);
        const bool endsWithin = each == &entry_.end && local.second != 0;
        constexpr int kLastMinute = 86340;
        if (start.isDate && local.second != 0 && local.second < kLastMinute)
            report(Note(NoteCode::TimeWithoutStart, entry_.line,
                        {each == &entry_.end ? "DTEND" : "DUE", formatMoment(local)}));
        int day = local.day + (endsWithin ? 1 : 0);
        if (daysOfUtc_ && (*each)->clock == Clock::Utc) {
            const std::int64_t length = (*each)->seconds() - start.seconds();
            day = entry_.start->day + static_cast<int>((length + kDaySeconds - 1) / kDaySeconds);
        }
        *each = Moment{day, 0, true, Clock::Floating};
    }
    if (entry_.recurrenceId)
        entry_.recurrenceId = daysOfUtc_ && entry_.recurrenceId->clock == Clock::Utc
                                  ? dayOfUtc(*entry_.recurrenceId)
                                  : entry_.inClockOf(*entry_.start, *entry_.recurrenceId);
}

// The lists and the ends of rules are days as the start is.
void EntryReader::settleDaysOfUtc() {
    for (std::vector<Moment>* list : {&entry_.dates, &entry_.excluded})
        for (Moment& each : *list)
            if (!each.isDate && each.clock == Clock::Utc) each = dayOfUtc(each);
    for (EntryRule& each : entry_.rules)
        for (Rule& rule : each.rules)
            if (const auto until = parseMoment(rule.until);
                until && !until->isDate && until->clock == Clock::Utc)
                rule.until = formatMoment(dayOfUtc(*until));
}

void EntryReader::dueAtEnd() {
    if (entry_.kind != EntryKind::Todo || entry_.due || !entry_.end) return;
    entry_.due = std::exchange(entry_.end, std::nullopt);
    report(Note(NoteCode::TodoDueAtEnd, entry_.line));
}

void EntryReader::startSeriesAtDue() {
    if (entry_.kind != EntryKind::Todo || !hasRecurrence() || entry_.start || !entry_.due) return;
    entry_.start = entry_.due;
    report(Note(NoteCode::TodoSeriesAtDue, entry_.line));
}

void EntryReader::settleRecurrenceId() {
    if (!entry_.recurrenceId) return;
    dependsOnOthers_ = true;
    const auto series = seriesStarts_.find(entry_.uid);
    if (series == seriesStarts_.end()) return reportUnknownSeries();
    const auto& [start, zone, oneTime] = series->second;
    if (start.clock == Clock::Zoned && zone != entry_.zone) return;
    const Moment own = entry_.inClockOf(start, *entry_.recurrenceId);
    const Moment meant = occurrenceMeant(entry_, start, *entry_.recurrenceId);
    if (meant == own && !entry_.recurrenceId->isDate) {
        if (oneTime && own.clock == start.clock && own.second != start.second)
            report(
                Note(NoteCode::ExceptionMatchesNothing, entry_.line,
                     {formatMoment(*entry_.recurrenceId), "0", "RECURRENCE-ID", timeOfDay(start)}));
        return;
    }
    report(Note(NoteCode::ExceptionMeansDay, entry_.line,
                {formatMoment(*entry_.recurrenceId), "0", "RECURRENCE-ID"}));
    entry_.recurrenceId = meant;
}

// The series may come later in the file, or not at all.
void EntryReader::reportUnknownSeries() {
    const Moment& date = *entry_.recurrenceId;
    if (!entry_.start || entry_.start->isDate || entry_.start->second == 0) return;
    if (date.isDate || date.second == 0)
        report(Note(NoteCode::ReplacedDateUncertain, entry_.line, {formatMoment(date)}));
}

void EntryReader::noteSeries() {
    if (!entry_.recurs() || entry_.uid.empty() || entry_.recurrenceId ||
        entry_.uid.size() > kLongestZone || seriesStarts_.size() >= kMostSeries)
        return;
    bool oneTime = entry_.dates.empty();
    for (const EntryRule& each : entry_.rules)
        for (const Rule& rule : each.rules) oneTime = oneTime && !rule.hasTimes();
    series_ = {*entry_.start, entry_.zone, oneTime};
}

void EntryReader::remember(const std::string& uid, SeriesStart&& series) {
    if (seriesStarts_.size() < kMostSeries) seriesStarts_[uid] = std::move(series);
}

std::set<int> EntryReader::daysOfSeries() const {
    Entry series;
    series.start = entry_.start;
    series.zone = entry_.zone;
    series.dates = entry_.dates;
    for (const EntryRule& each : entry_.rules)
        if (!each.exclude) series.rules.push_back(each);
    const auto last =
        std::max_element(entry_.excluded.begin(), entry_.excluded.end(),
                         [](const Moment& a, const Moment& b) { return a.day < b.day; });
    const Moment through{last->day + 1, 0, true, Clock::Floating};
    std::set<int> days;
    for (const Moment& each : occurrences(series, {std::nullopt, through, 0}))
        days.insert(each.day);
    return days;
}

// The occurrence on a day of UTC of a series that moved from UTC to a zone.
std::optional<Moment> EntryReader::ofUtcDay(const Moment& day) const {
    const Moment& start = *entry_.start;
    if (start.isDate || start.clock != Clock::Zoned || entry_.zone == nullptr) return std::nullopt;
    Moment local = start;
    for (const int days : {1, -1}) {
        local.day = day.day + days;
        if (entry_.zone->toUtc(local).day == day.day) return local;
    }
    return std::nullopt;
}

Moment EntryReader::onDayOfSeries(const Moment& date, const Moment& meant,
                                  const std::set<int>& days) const {
    if (!date.isDate || days.contains(meant.day)) return meant;
    const auto utc = ofUtcDay(date);
    return utc && days.contains(utc->day) ? *utc : meant;
}

bool EntryReader::rulesKeepTime() const {
    if (entry_.rules.size() < ruleLines_.size()) return false;
    return std::none_of(entry_.rules.begin(), entry_.rules.end(), [](const EntryRule& each) {
        return std::any_of(each.rules.begin(), each.rules.end(),
                           [](const Rule& rule) { return rule.hasTimes(); });
    });
}

void EntryReader::settleExcluded() {
    // Days in UTC are settled with the start's.
    if (entry_.excluded.empty() || daysOfUtc_ || !rulesKeepTime()) return;
    const Moment& start = *entry_.start;
    std::optional<std::set<int>> days;
    std::set<std::int64_t> added;
    for (const Moment& date : entry_.dates) added.insert(entry_.inClockOf(start, date).seconds());
    Strays moved;
    Strays useless;
    Strays outside;
    for (Moment& date : entry_.excluded) {
        const Moment own = entry_.inClockOf(start, date);
        if (added.contains(own.seconds())) continue;
        Moment meant = occurrenceMeant(entry_, start, date);
        if (meant != own || date.isDate != start.isDate) {
            if (!days) days = daysOfSeries();
            meant = onDayOfSeries(date, meant, *days);
            // Midnight of an all-day series is its day in other words.
            if (!days->contains(meant.day))
                outside.add(formatMoment(date));
            else if (!start.isDate || date.second != 0)
                moved.add(formatMoment(date));
            date = meant;
        } else if (meant.second != start.second) {
            useless.add(formatMoment(date));
        }
    }
    std::vector<Note> notes;
    moved.report(notes, NoteCode::ExceptionMeansDay, {"EXDATE"});
    outside.report(notes, NoteCode::ExceptionOutsideSeries, {"EXDATE"});
    useless.report(notes, NoteCode::ExceptionMatchesNothing, {"EXDATE", timeOfDay(start)});
    for (Note& note : notes) {
        note.line = entry_.line;
        report(std::move(note));
    }
}

void EntryReader::reportAdditional() {
    if (entry_.dates.empty() || entry_.zone != nullptr || entry_.start->isDate) return;
    Strays other;
    for (const Moment& date : entry_.dates)
        if (!date.isDate && date.clock != entry_.start->clock) other.add(formatMoment(date));
    std::vector<Note> notes;
    other.report(notes, NoteCode::AdditionalDateOtherClock, {"RDATE"});
    for (Note& note : notes) {
        note.line = entry_.line;
        report(std::move(note));
    }
}

void EntryReader::takeRecurrence() {
    if (!entry_.start) {
        for (const auto* lines : {&ruleLines_, &dateLines_})
            for (const ContentLine& line : *lines)
                if (!trimmed(line.value).empty()) carry(line, NoteCode::EntryRuleWithoutStart);
        return;
    }
    readRuleLines();
    for (const ContentLine& line : dateLines_) takeDateList(line);
    // A series has its start anyway.
    if (!entry_.rules.empty())
        std::erase_if(entry_.dates, [this](const Moment& date) {
            return entry_.inClockOf(*entry_.start, date) == *entry_.start;
        });
    settleExcluded();
    for (Note& note : idleExceptions(entry_)) report(std::move(note));
    reportAdditional();
    noteSeries();
}

void EntryReader::takeLine(const ContentLine& line) {
    using Name = PropertyName;
    switch (line.id) {
        case Name::DtStart:
            return takeDate(line, entry_.start);
        case Name::DtEnd:
            return takeDate(line, entry_.end);
        case Name::Due:
            return takeDate(line, entry_.due);
        case Name::Completed:
            return takeDate(line, entry_.completed);
        case Name::Created:
        case Name::DCreated:
            return takeDate(line, entry_.created);
        case Name::LastModified:
            return takeDate(line, entry_.modified);
        case Name::DtStamp:
        case Name::XICalDtStamp:
            return takeDate(line, entry_.stamp);
        case Name::RecurrenceId:
        case Name::XRecurrenceId:
            return takeDate(line, entry_.recurrenceId);
        case Name::Duration:
            return takeDuration(line);
        case Name::RRule:
        case Name::ExRule:
        case Name::XICalRRule:
        case Name::XICalExRule:
            return keepDecoded(line, ruleLines_);
        case Name::RDate:
        case Name::ExDate:
            return keepDecoded(line, dateLines_);
        case Name::Uid:
            return takeUid(line);
        case Name::AAlarm:
        case Name::DAlarm:
        case Name::MAlarm:
        case Name::PAlarm:
            return AlarmReader(*this).takeLine(line);
        default:
            if (!line.parameters.empty() && line.id != Name::Attach &&
                isBinary(line, choices_.characterSet))
                return takeBytes(line);
            return takeProperty(line);
    }
}

// Bytes in a property of text have no place there; elsewhere they stay what they are.
void EntryReader::takeBytes(const ContentLine& line) {
    const bool isText =
        propertyOf(line.id).held == HeldAs::Property && line.id != PropertyName::Image;
    const bool keepsName =
        !isText && (ruleForm() == RuleForm::ICalendar || line.name.starts_with("X-"));
    const std::string name = keepsName ? std::string(line.name) : carriedName(line);
    if (isText) report(Note(NoteCode::TextIsBinary, line.number, {line.name, name}));
    std::vector<Parameter> parameters = carriedParameters(line);
    std::erase_if(parameters, [](const Parameter& each) { return each.name.ends_with("-VALUE"); });
    add(line, name, EntryProperty::Type::Base64, cleanBase64(line.value).value_or(""),
        std::move(parameters));
}

void EntryReader::takeUid(const ContentLine& line) {
    const std::string_view uid = text(line);
    if (trimmed(uid).empty()) return;
    if (!entry_.uid.empty()) return carry(line, NoteCode::EntryUidTwice, uid);
    reportParameters(line);
    entry_.uid = trimmed(ruleForm() == RuleForm::ICalendar ? unescapeICalendar(uid)
                                                           : unescapeVCalendar(uid));
}

std::string_view EntryReader::text(const ContentLine& line) {
    if (isPlainText(line)) return line.value;
    std::vector<Note> notes;
    const std::string value = decodedValue(line, choices_.characterSet, notes);
    for (Note& note : notes) report(std::move(note));
    return texts_.keep(value);
}

std::optional<Moment> EntryReader::moment(const ContentLine& line, std::string_view value) {
    auto result = parseMoment(value);
    if (!result || result->isDate || result->clock == Clock::Utc) return result;
    const std::string_view id = line.parameter("TZID");
    // Not a copy: threads that count the users of one zone wait for each other.
    const ZonePtr& zone = !id.empty()              ? zoneNamed(line, id)
                          : entry_.zone == nullptr ? chosenZone_
                                                   : entry_.zone;
    if (zone == nullptr) return result;
    if (isUtc(*zone)) {
        result->clock = Clock::Utc;
        return result;
    }
    result->clock = Clock::Zoned;
    if (entry_.zone == nullptr) {
        entry_.zone = zone;
    } else if (entry_.zone != zone) {
        // One entry, one zone: the same instant on the clock of the entry's own.
        return entry_.zone->toLocal(zone->toUtc(*result));
    }
    return result;
}

const ZonePtr& EntryReader::zoneNamed(const ContentLine& line, std::string_view id) {
    const auto described = zones_.described->find(id);
    if (described != zones_.described->end()) return described->second;
    const ZonesById& undescribed = *reported_->undescribed;
    const auto known = undescribed.find(id);
    if (known != undescribed.end()) return known->second;
    named_ = undescribedZone(line, id);
    return named_;
}

ZonePtr EntryReader::undescribedZone(const ContentLine& line, std::string_view id) {
    dependsOnOthers_ = true;
    if (ahead_) return nullptr;
    ZonePtr zone;
    const std::string_view shown = id.substr(0, kLongestExcerpt);
    if (const auto meant = worldZoneMeant(id)) {
        zone = zones_.world.zone(*meant);
        report(Note(NoteCode::ZoneOfDatabase, line.number, {line.name, shown, zone->id()}));
    } else {
        report(Note(NoteCode::EntryZoneUnknown, line.number, {line.name, shown}));
    }
    // A file with more of them is not a calendar but an attack on this memory.
    if (own_.undescribed->size() >= kMostUnknownZones || id.size() > kLongestZone) return zone;
    if (own_.undescribed.use_count() > 1)
        own_.undescribed = std::make_shared<ZonesById>(*own_.undescribed);
    own_.undescribed->emplace(id, zone);
    return zone;
}

void EntryReader::moveSeriesToZone() {
    if (isUtc(*entry_.zone)) return;
    for (std::optional<Moment>* each :
         {&entry_.start, &entry_.end, &entry_.due, &entry_.recurrenceId})
        if (*each && !(*each)->isDate && (*each)->clock == Clock::Utc)
            *each = entry_.zone->toLocal(**each);
}

std::optional<Duration> EntryReader::duration(const ContentLine& line, std::string_view text) {
    bool withoutT = false;
    const auto result = parseUntidyDuration(text, withoutT);
    if (withoutT)
        report(Note(NoteCode::DurationWithoutT, line.number, {text.substr(0, kLongestExcerpt)}));
    return result;
}

void EntryReader::reportParameters(const ContentLine& line) {
    std::string unused;
    for (const Parameter& each : line.parameters)
        if (!isUsed(each, line))
            unused += (unused.empty() ? "" : ", ") + (each.name.empty() ? each.value : each.name);
    if (!unused.empty())
        report(Note(NoteCode::ParametersLeftOut, line.number,
                    {line.name, std::string_view(unused).substr(0, kLongestExcerpt)}));
}

void EntryReader::takeDuration(const ContentLine& line) {
    entry_.duration = duration(line, line.value);
    if (!entry_.duration) return carry(line, NoteCode::EntryDurationInvalid, line.value);
    reportParameters(line);
}

void EntryReader::takeDate(const ContentLine& line, std::optional<Moment>& slot) {
    const std::string_view value = text(line);
    auto read = moment(line, value);
    // Written in UTC because iCalendar allows nothing else there.
    if (const std::string_view mark = line.parameter("X-VCAL-FLOATING"); read && !mark.empty()) {
        read->clock = Clock::Floating;
        read->isDate = mark == "DATE";
    }
    if (!read) {
        if (!trimmed(value).empty()) carry(line, NoteCode::EntryDateInvalid, value);
    } else if (slot) {
        carry(line, NoteCode::EntryDateTwice);
    } else {
        slot = read;
        reportParameters(line);
        if (&slot == &entry_.recurrenceId)
            entry_.thisAndFuture = equalsIgnoreCase(line.parameter("RANGE"), "THISANDFUTURE");
    }
}

void EntryReader::keepDecoded(const ContentLine& line, std::vector<ContentLine>& lines) {
    lines.push_back(line);
    lines.back().value = text(line);
    // A rule that iCalendar keeps under another name is a text there.
    const bool kept = line.id == PropertyName::XICalRRule || line.id == PropertyName::XICalExRule;
    if (kept && ruleForm() == RuleForm::ICalendar)
        lines.back().value = texts_.keep(unescapeICalendar(lines.back().value));
}

void EntryReader::readRuleLines() {
    const std::optional<RuleStart> start = entry_.ruleStart();
    std::size_t count = 0;
    bool reported = false;
    for (const ContentLine& line : ruleLines_) {
        if (count >= kMostRules) {
            if (std::exchange(reported, true))
                carry(line);
            else
                carry(line, NoteCode::EntryRulesTooMany);
            continue;
        }
        RuleReading reading = readRules(line.value, ruleForm(), start, choices_.countMeans);
        count += std::max<std::size_t>(reading.rules.size(), 1);
        const bool otherForm =
            std::any_of(reading.notes.begin(), reading.notes.end(), [](const Note& note) {
                return note.code == NoteCode::RuleIsICalendar ||
                       note.code == NoteCode::RuleIsVCalendar;
            });
        const bool isVCalendar = (ruleForm() == RuleForm::VCalendar10) != otherForm;
        for (Note& note : reading.notes) {
            note.line = line.number;
            note.property = line.name;
            note.excerpt = trimmed(line.value).substr(0, kLongestExcerpt);
            report(std::move(note));
        }
        if (reading.rules.empty()) {
            if (!trimmed(line.value).empty()) carry(line);
            continue;
        }
        reportParameters(line);
        if (isVCalendar && !start->isDate)
            for (Rule& rule : reading.rules) settleUntil(rule, line);
        entry_.rules.push_back(
            {line.name.ends_with("EXRULE"), std::move(reading.rules), line.number});
    }
}

void EntryReader::settleUntil(Rule& rule, const ContentLine& line) {
    if (rule.until.empty()) return;
    const Moment& start = *entry_.start;
    const auto until = parseMoment(rule.until);
    if (!until || until->isDate || (entry_.zone == nullptr && until->clock != start.clock)) return;
    Moment last = entry_.inClockOf(start, *until);
    if (last.second >= start.second) return;
    const bool midnight = last.second == 0;
    last.second = kDaySeconds - 1;
    Rule whole = rule;
    whole.until = formatMoment(last);
    RuleLimits limits;
    limits.most = std::numeric_limits<std::size_t>::max();
    limits.lastYear = civilOf(last.day).year;
    const std::vector<int> days = expandRule(whole, entry_.ruleStart(), limits);
    if (days.empty() || days.back() != last.day) return;
    Note note(midnight ? NoteCode::RuleEndWholeDay : NoteCode::RuleEndBeforeTime, line.number,
              {whole.until.substr(0, 8)});
    note.property = line.name;
    note.excerpt = trimmed(line.value).substr(0, kLongestExcerpt);
    report(std::move(note));
    if (midnight) rule = std::move(whole);
}

bool EntryReader::rulesYield(const Moment& start) const {
    const Civil civil = civilOf(start.day);
    const RuleStart ruleStart{civil.year, civil.month, civil.day, start.second};
    return std::all_of(ruleLines_.begin(), ruleLines_.end(), [&](const ContentLine& line) {
        const RuleReading reading = readRules(line.value, ruleForm(), ruleStart);
        return line.name.ends_with("EXRULE") ||
               std::all_of(reading.rules.begin(), reading.rules.end(),
                           [&](const Rule& rule) { return yieldsStart(rule, ruleStart); });
    });
}

void EntryReader::takeDateList(const ContentLine& line) {
    reportParameters(line);
    const bool excluded = line.id == PropertyName::ExDate;
    bool period = false;
    std::size_t invalid = 0;
    std::string firstInvalid;
    for (const std::string& item : listItems(line.value)) {
        if (trimmed(item).empty()) continue;
        std::string_view rest = item;
        const auto read = moment(line, nextField(rest, '/'));
        if (!read) {
            if (invalid++ == 0) firstInvalid = item.substr(0, kLongestExcerpt);
            continue;
        }
        period = period || !rest.empty();
        (excluded ? entry_.excluded : entry_.dates).push_back(*read);
    }
    if (invalid != 0)
        report(Note(NoteCode::EntryDatesInvalid, line.number,
                    {line.name, firstInvalid, std::to_string(invalid)}));
    if (period) report(Note(NoteCode::EntryPeriodLengths, line.number, {line.name}));
}

void EntryReader::takePosition(const ContentLine& line, std::vector<Parameter> parameters) {
    constexpr int kMostLatitude = 90;
    constexpr int kMostLongitude = 180;
    const std::string_view value = text(line);
    if (trimmed(value).empty()) return;
    const std::size_t middle = std::min(value.find_first_of(",;"), value.size());
    const std::string_view first = trimmed(value.substr(0, middle));
    const std::string_view second = trimmed(value.substr(std::min(middle + 1, value.size())));
    const bool asICalendar = isDegrees(first, kMostLatitude) && isDegrees(second, kMostLongitude);
    if (!asICalendar && !(isDegrees(first, kMostLongitude) && isDegrees(second, kMostLatitude)))
        return carry(line, NoteCode::EntryPositionInvalid, value);
    const std::string position =
        withDigits(asICalendar ? first : second) + ';' + withDigits(asICalendar ? second : first);
    const bool changed = ruleForm() == RuleForm::VCalendar10 || !asICalendar;
    if (changed && !reported_->positionOrder) {
        dependsOnOthers_ = true;
        own_.positionOrder = true;
        report(
            Note(asICalendar ? NoteCode::PositionLatitudeFirst : NoteCode::PositionLongitudeFirst,
                 line.number, {value.substr(0, kLongestExcerpt)}));
    }
    add(line, line.name, EntryProperty::Type::Raw, position, std::move(parameters));
}

void EntryReader::addPerson(const ContentLine& line, std::string_view value,
                            std::vector<Parameter> parameters) {
    constexpr std::string_view kScheme = "mailto:";
    const auto withoutScheme = [&](std::string_view text) {
        text = trimmed(text);
        if (startsWithIgnoreCase(text, kScheme)) text.remove_prefix(kScheme.size());
        return trimmed(text);
    };
    std::string address(trimmed(value));
    const auto name = std::find_if(parameters.begin(), parameters.end(),
                                   [](const Parameter& each) { return each.name == "CN"sv; });
    if (name != parameters.end() && startsWithIgnoreCase(trimmed(name->value), kScheme)) {
        const std::string_view mail = withoutScheme(name->value);
        if (withoutScheme(address).empty()) address = std::string(kScheme) + std::string(mail);
        if (equalsIgnoreCase(withoutScheme(address), mail))
            parameters.erase(name);
        else
            name->name = "X-VCAL-CN";
    } else if (withoutScheme(address).empty() && name != parameters.end() &&
               !trimmed(name->value).empty()) {
        address = kNoMail;
    }
    const auto isName = [](const Parameter& each) {
        return each.name == "CN"sv && !trimmed(each.value).empty();
    };
    // Nobody.
    if (withoutScheme(address).empty() ||
        (address == kNoMail && std::none_of(parameters.begin(), parameters.end(), isName)))
        return;
    add(line, line.name, EntryProperty::Type::Raw, address, std::move(parameters));
}

// What has been carried once keeps its name.
std::string EntryReader::carriedName(const ContentLine& line) const {
    const bool carried =
        line.name.starts_with(kVCalendarPrefix) || line.name.starts_with(kICalendarPrefix);
    std::string name(carried ? std::string_view() : carryPrefix());
    name += line.name;
    return name;
}

void EntryReader::carry(const ContentLine& line, NoteCode why, std::string_view value) {
    report(
        Note(why, line.number, {line.name, carriedName(line), value.substr(0, kLongestExcerpt)}));
    carry(line);
}

void EntryReader::carryRaw(const ContentLine& line, NoteCode why) {
    report(Note(why, line.number, {line.name, carriedName(line)}));
    add(line, carriedName(line), EntryProperty::Type::Text, line.value, carriedParameters(line));
}

std::vector<Parameter> EntryReader::carriedParameters(const ContentLine& line) const {
    std::vector<Parameter> parameters;
    for (const Parameter& each : line.parameters) {
        if (each.name == "ENCODING"sv || each.name == "CHARSET"sv) continue;
        if (each.name.empty() && (equalsIgnoreCase(each.value, "QUOTED-PRINTABLE") ||
                                  equalsIgnoreCase(each.value, "BASE64")))
            continue;
        const std::string own = each.name.empty() ? "PARAMETER" : each.name;
        parameters.push_back(
            {own.starts_with("X-") ? own : std::string(carryPrefix()) + own, each.value});
    }
    return parameters;
}

void EntryReader::carry(const ContentLine& line) {
    add(line, carriedName(line), EntryProperty::Type::Text, text(line), carriedParameters(line));
}

void EntryReader::add(const ContentLine& line, std::string_view name, EntryProperty::Type type,
                      std::string_view value, std::vector<Parameter> parameters) {
    EntryProperty& property = entry_.properties.emplace_back();
    // To append to a new text takes half as long as to assign to it.
    property.name.append(name);
    if (name.data() == line.name.data()) property.known = line.id;
    property.parameters = std::move(parameters);
    property.type = type;
    property.text.append(value);
    property.line = line.number;
}

void EntryReader::addList(const ContentLine& line, std::vector<std::string> items,
                          std::vector<Parameter> parameters) {
    if (items.empty()) return;
    EntryProperty& property = entry_.properties.emplace_back();
    property.name.append(line.name);
    property.known = line.id;
    property.parameters = std::move(parameters);
    property.type = EntryProperty::Type::TextList;
    property.items = std::move(items);
    property.line = line.number;
}

}  // namespace qel::calendar
