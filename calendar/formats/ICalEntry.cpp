#include "calendar/formats/ICalEntry.h"

#include <set>

#include "calendar/base/Ascii.h"
#include "calendar/formats/AlarmText.h"
#include "calendar/formats/EntryWriter.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

namespace {

LineName lineName(const EntryProperty& property) {
    const PropertyName id = property.id();
    return id == PropertyName::Unknown ? LineName(property.name) : LineName(id);
}

}  // namespace

bool saysNothing(std::string_view text) {
    return trimmed(text).empty() && text.find('\n') == std::string_view::npos;
}

std::string valueText(const EntryProperty& property) {
    switch (property.type) {
        case EntryProperty::Type::Text:
            return escapeICalendar(property.value());
        case EntryProperty::Type::TextList: {
            std::string text;
            for (const std::string& item : property.items)
                text += (text.empty() ? "" : ",") + escapeICalendar(item);
            return text;
        }
        case EntryProperty::Type::Raw:
        case EntryProperty::Type::Base64:
            break;
    }
    return property.value();
}

void ICalEntry::addLines() {
    addDates();
    addRecurrence();
    for (const EntryProperty& property : entry_.properties) addProperty(property);
    const EntryProperty* summary = entry_.find("SUMMARY");
    const bool hasSummary = summary != nullptr && !trimmed(summary->value()).empty();
    for (const Alarm& alarm : entry_.alarms)
        addICalendarAlarm(alarmLines_, entry_, alarm,
                          hasSummary ? std::string_view(summary->value()) : kReminder);
}

const std::vector<Parameter>& ICalEntry::parametersOf(bool isDate, Clock clock) {
    static const std::vector<Parameter> kNone;
    static const std::vector<Parameter> kDate{{"VALUE", "DATE"}};
    if (isDate) return kDate;
    if (clock != Clock::Zoned || entry_.zone == nullptr) return kNone;
    if (zoneName_.empty()) zoneName_.push_back({"TZID", entry_.zone->id()});
    return zoneName_;
}

void ICalEntry::addMoment(PropertyName name, const Moment& moment) {
    addICalendarLine(lines_, name, parametersOf(moment.isDate, moment.clock), MomentText(moment));
}

void ICalEntry::addRecurrenceId() {
    if (!entry_.recurrenceId) return;
    const Moment& moment = *entry_.recurrenceId;
    std::vector<Parameter> parameters = parametersOf(moment.isDate, moment.clock);
    if (entry_.thisAndFuture) parameters.push_back({"RANGE", "THISANDFUTURE"});
    addICalendarLine(lines_, PropertyName::RecurrenceId, parameters, MomentText(moment));
}

void ICalEntry::addUtc(PropertyName name, const std::optional<Moment>& moment) {
    if (!moment) return;
    Moment utc = entry_.toUtc(*moment).value_or(*moment);
    std::vector<Parameter> parameters;
    if (utc.clock != Clock::Utc)
        parameters.push_back({"X-VCAL-FLOATING", utc.isDate ? "DATE" : "TRUE"});
    utc.isDate = false;
    utc.clock = Clock::Utc;
    addICalendarLine(lines_, name, parameters, MomentText(utc));
}

void ICalEntry::addDates() {
    std::optional<Moment> stamp;
    for (const auto* each :
         {&entry_.stamp, &entry_.modified, &entry_.created, &entry_.start, &entry_.due})
        if (!stamp && *each) stamp = *each;
    Moment utc = stamp ? entry_.toUtc(*stamp).value_or(*stamp) : kNoStamp;
    utc.isDate = false;
    utc.clock = Clock::Utc;
    addICalendarLine(lines_, PropertyName::DtStamp, {}, MomentText(utc));
    if (entry_.start) addMoment(PropertyName::DtStart, *entry_.start);
    if (entry_.end) addMoment(PropertyName::DtEnd, *entry_.end);
    if (entry_.due) addMoment(PropertyName::Due, *entry_.due);
    addDuration();
    addUtc(PropertyName::Created, entry_.created);
    addUtc(PropertyName::LastModified, entry_.modified);
    if (entry_.kind == EntryKind::Todo) addUtc(PropertyName::Completed, entry_.completed);
    addRecurrenceId();
}

void ICalEntry::addDuration() {
    if (!entry_.duration) return;
    const bool allowed = !entry_.end && !entry_.due && entry_.start && entry_.duration->total() > 0;
    addICalendarLine(lines_, allowed ? "DURATION" : "X-VCAL-DURATION", {},
                     formatDuration(*entry_.duration));
}

void ICalEntry::addRecurrence() {
    if (!entry_.start) return;
    for (const SettledRule& rule : settled_.rules)
        if (rule.name == "RRULE")
            addICalendarLine(lines_, PropertyName::RRule, {}, rule.text);
        else
            addICalendarLine(lines_, rule.name, {}, rule.text);
    addDateList("RDATE", entry_.dates);
    addDateList("EXDATE", entry_.excluded);
}

std::string ICalEntry::itemsOf(const std::vector<Moment>& dates, bool inUtc, bool isDate,
                               Clock clock) const {
    std::string items;
    std::set<std::string> seen;
    for (const Moment& date : dates) {
        Moment moment = entry_.inClockOf(*entry_.start, date);
        if (inUtc) moment = entry_.toUtc(moment).value_or(moment);
        if (moment.isDate != isDate || (!isDate && moment.clock != clock)) continue;
        std::string item = formatMoment(moment);
        if (seen.contains(item)) continue;
        items += (items.empty() ? "" : ",") + item;
        seen.insert(std::move(item));
    }
    return items;
}

void ICalEntry::addDateList(std::string_view name, const std::vector<Moment>& dates) {
    if (dates.empty()) return;
    struct Form {
        bool isDate;
        Clock clock;
    };
    static constexpr Form kForms[] = {{true, Clock::Floating},
                                      {false, Clock::Floating},
                                      {false, Clock::Utc},
                                      {false, Clock::Zoned}};
    // Some readers ignore the TZID of an RDATE.
    const bool inUtc = name == "RDATE";
    for (const Form& form : kForms) {
        const std::string items = itemsOf(dates, inUtc, form.isDate, form.clock);
        if (items.empty()) continue;
        addICalendarLine(lines_, name, parametersOf(form.isDate, form.clock), items);
    }
}

void ICalEntry::addProperty(const EntryProperty& property) {
    switch (property.type) {
        case EntryProperty::Type::Text:
            // Empty texts say nothing, and some readers take them for a fault.
            if (!saysNothing(property.text))
                addICalendarLine(lines_, lineName(property), property.parameters, property.text,
                                 Value::Escaped);
            break;
        case EntryProperty::Type::TextList:
            addICalendarLine(lines_, lineName(property), property.parameters, valueText(property));
            break;
        case EntryProperty::Type::Raw:
            addICalendarLine(lines_, lineName(property), property.parameters, property.text);
            break;
        case EntryProperty::Type::Base64: {
            std::vector<Parameter> parameters = property.parameters;
            parameters.push_back({"ENCODING", "BASE64"});
            parameters.push_back({"VALUE", "BINARY"});
            addICalendarLine(lines_, lineName(property), parameters, property.text);
            break;
        }
    }
}

}  // namespace qel::calendar
