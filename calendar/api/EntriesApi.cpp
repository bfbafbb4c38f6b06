// The entries of a calendar as values.
#include <algorithm>
#include <optional>
#include <utility>

#include "calendar/api/Calls.h"
#include "calendar/api/EntryHandle.h"
#include "calendar/api/TimeValue.h"
#include "calendar/entries/EntryDates.h"

using qel::calendar::Alarm;
using qel::calendar::Entry;
using qel::calendar::EntryKind;
using qel::calendar::EntryProperty;
using qel::calendar::Moment;
namespace api = qel::calendar::api;

namespace {

int absent() {
    return api::fail(QELCAL_ABSENT, "the entry does not have that");
}

int refuse() {
    return api::fail(QELCAL_INVALID_ARGUMENT,
                     "the entry or the result is null, or the index is out of range");
}

const EntryProperty* propertyAt(const qelcal_entry* entry, size_t index) {
    return index < qelcal_entry_property_count(entry) ? &entry->entry.properties[index] : nullptr;
}

const qel::calendar::Parameter* parameterAt(const qelcal_entry* entry, size_t property,
                                            size_t index) {
    return index < qelcal_entry_parameter_count(entry, property)
               ? &entry->entry.properties[property].parameters[index]
               : nullptr;
}

bool isZoned(const Moment& moment) {
    return !moment.isDate && moment.clock == qel::calendar::Clock::Zoned;
}

// A file's zone is that of all its entries, also of those whose times are in UTC or days.
bool hasZonedTime(const Entry& entry) {
    for (const auto& each :
         {entry.start, entry.end, entry.due, entry.completed, entry.recurrenceId})
        if (each && isZoned(*each)) return true;
    return std::any_of(entry.dates.begin(), entry.dates.end(), isZoned) ||
           std::any_of(entry.excluded.begin(), entry.excluded.end(), isZoned) ||
           std::any_of(entry.alarms.begin(), entry.alarms.end(),
                       [](const Alarm& alarm) { return alarm.at && isZoned(*alarm.at); });
}

const std::optional<Moment>* timeSlot(const Entry& entry, int which) {
    switch (which) {
        case QELCAL_START:
            return &entry.start;
        case QELCAL_END_TIME:
            return &entry.end;
        case QELCAL_DUE:
            return &entry.due;
        case QELCAL_COMPLETED:
            return &entry.completed;
        case QELCAL_CREATED:
            return &entry.created;
        case QELCAL_MODIFIED:
            return &entry.modified;
        case QELCAL_STAMP:
            return &entry.stamp;
        case QELCAL_RECURRENCE_ID:
            return &entry.recurrenceId;
        default:
            return nullptr;
    }
}

const char* actionName(const Alarm& alarm) {
    switch (alarm.action) {
        case Alarm::Action::Audio:
            return "AUDIO";
        case Alarm::Action::Display:
            return "DISPLAY";
        case Alarm::Action::Email:
            return "EMAIL";
        case Alarm::Action::Procedure:
            return "PROCEDURE";
        case Alarm::Action::Other:
            return alarm.actionName.c_str();
    }
    return "";
}

// The rules of an entry, by rule text.
const std::vector<std::unique_ptr<qelcal_rules>>& rulesOf(const qelcal_entry& handle) {
    const Entry& entry = handle.entry;
    if (handle.rules.empty() && !entry.rules.empty() && entry.start) {
        std::vector<std::unique_ptr<qelcal_rules>> made;
        for (const qel::calendar::EntryRule& each : entry.rules)
            made.push_back(
                std::make_unique<qelcal_rules>(each.rules, entry.start, entry.ruleStart()));
        handle.rules = std::move(made);
    }
    return handle.rules;
}

}  // namespace

int qelcal_entry_kind_of(const qelcal_entry* entry) {
    if (entry == nullptr) return 0;
    switch (entry->entry.kind) {
        case EntryKind::Event:
            return QELCAL_EVENT;
        case EntryKind::Todo:
            return QELCAL_TODO;
        case EntryKind::Journal:
            return QELCAL_JOURNAL;
    }
    return 0;
}

size_t qelcal_entry_line(const qelcal_entry* entry) {
    return entry == nullptr ? 0 : entry->entry.line;
}

const char* qelcal_entry_uid(const qelcal_entry* entry) {
    return entry == nullptr ? "" : entry->entry.uid.c_str();
}

const char* qelcal_entry_text(const qelcal_entry* entry, const char* name) {
    if (entry == nullptr || name == nullptr) return nullptr;
    const EntryProperty* property = entry->entry.find(name);
    return property == nullptr ? nullptr : property->value().c_str();
}

size_t qelcal_entry_property_count(const qelcal_entry* entry) {
    return entry == nullptr ? 0 : entry->entry.properties.size();
}

const char* qelcal_entry_property_name(const qelcal_entry* entry, size_t property) {
    const EntryProperty* found = propertyAt(entry, property);
    return found == nullptr ? "" : found->name.c_str();
}

size_t qelcal_entry_value_count(const qelcal_entry* entry, size_t property) {
    const EntryProperty* found = propertyAt(entry, property);
    if (found == nullptr) return 0;
    return found->type == EntryProperty::Type::TextList ? found->items.size() : 1;
}

const char* qelcal_entry_value(const qelcal_entry* entry, size_t property, size_t index) {
    if (index >= qelcal_entry_value_count(entry, property)) return "";
    const EntryProperty& found = entry->entry.properties[property];
    return found.type == EntryProperty::Type::TextList ? found.items[index].c_str()
                                                       : found.text.c_str();
}

size_t qelcal_entry_parameter_count(const qelcal_entry* entry, size_t property) {
    const EntryProperty* found = propertyAt(entry, property);
    return found == nullptr ? 0 : found->parameters.size();
}

const char* qelcal_entry_parameter_name(const qelcal_entry* entry, size_t property, size_t index) {
    const auto* found = parameterAt(entry, property, index);
    return found == nullptr ? "" : found->name.c_str();
}

const char* qelcal_entry_parameter_value(const qelcal_entry* entry, size_t property, size_t index) {
    const auto* found = parameterAt(entry, property, index);
    return found == nullptr ? "" : found->value.c_str();
}

int qelcal_entry_time(const qelcal_entry* entry, int which, qelcal_time* time) {
    if (entry == nullptr || time == nullptr) return refuse();
    const std::optional<Moment>* slot = timeSlot(entry->entry, which);
    if (slot == nullptr) return refuse();
    if (!*slot) return absent();
    *time = api::timeOf(**slot);
    return QELCAL_OK;
}

int qelcal_entry_duration(const qelcal_entry* entry, int64_t* seconds) {
    if (entry == nullptr || seconds == nullptr) return refuse();
    if (!entry->entry.duration) return absent();
    *seconds = entry->entry.duration->total();
    return QELCAL_OK;
}

int qelcal_entry_all_day(const qelcal_entry* entry) {
    if (entry == nullptr) return 0;
    const Entry& viewed = entry->entry;
    return (viewed.start && viewed.start->isDate) || viewed.saysAllDay() ? 1 : 0;
}

const char* qelcal_entry_zone(const qelcal_entry* entry) {
    if (entry == nullptr || entry->entry.zone == nullptr || !hasZonedTime(entry->entry))
        return nullptr;
    return entry->entry.zone->id().c_str();
}

int qelcal_entry_to_utc(const qelcal_entry* entry, const qelcal_time* time, qelcal_time* utc) {
    if (entry == nullptr || time == nullptr || utc == nullptr) return refuse();
    return api::guarded([=] {
        const auto moment = api::momentOf(*time);
        if (!moment) return refuse();
        const auto moved = entry->entry.toUtc(*moment);
        if (!moved) return absent();
        *utc = api::timeOf(*moved);
        return int{QELCAL_OK};
    });
}

size_t qelcal_entry_rule_count(const qelcal_entry* entry) {
    return entry == nullptr ? 0 : entry->entry.rules.size();
}

const qelcal_rules* qelcal_entry_rules(const qelcal_entry* entry, size_t index) {
    if (index >= qelcal_entry_rule_count(entry)) return nullptr;
    return api::guardedValue(static_cast<const qelcal_rules*>(nullptr), [=] {
        const auto& rules = rulesOf(*entry);
        return index < rules.size() ? static_cast<const qelcal_rules*>(rules[index].get())
                                    : nullptr;
    });
}

int qelcal_entry_rule_excludes(const qelcal_entry* entry, size_t index) {
    return index < qelcal_entry_rule_count(entry) && entry->entry.rules[index].exclude ? 1 : 0;
}

size_t qelcal_entry_date_count(const qelcal_entry* entry, int excluded) {
    if (entry == nullptr) return 0;
    return excluded != 0 ? entry->entry.excluded.size() : entry->entry.dates.size();
}

int qelcal_entry_date(const qelcal_entry* entry, int excluded, size_t index, qelcal_time* time) {
    if (time == nullptr || index >= qelcal_entry_date_count(entry, excluded)) return refuse();
    *time = api::timeOf(excluded != 0 ? entry->entry.excluded[index] : entry->entry.dates[index]);
    return QELCAL_OK;
}

int qelcal_entry_occurrences(const qelcal_entry* entry, const qelcal_time* since,
                             const qelcal_time* through, size_t most, qelcal_time_fn date,
                             void* context) {
    if (entry == nullptr || date == nullptr) return refuse();
    return api::guarded([=] {
        qel::calendar::OccurrenceRange range;
        if (since != nullptr) range.since = api::momentOf(*since);
        if (through != nullptr) range.through = api::momentOf(*through);
        range.most = most;
        if ((since != nullptr && !range.since) || (through != nullptr && !range.through))
            return refuse();
        for (const Moment& moment : qel::calendar::occurrences(entry->entry, range)) {
            const qelcal_time time = api::timeOf(moment);
            api::goOn(date(context, &time));
        }
        return int{QELCAL_OK};
    });
}

size_t qelcal_entry_alarm_count(const qelcal_entry* entry) {
    return entry == nullptr ? 0 : entry->entry.alarms.size();
}

int qelcal_entry_alarm(const qelcal_entry* entry, size_t index, qelcal_alarm* alarm) {
    if (alarm == nullptr || index >= qelcal_entry_alarm_count(entry)) return refuse();
    const Alarm& found = entry->entry.alarms[index];
    *alarm = {actionName(found),
              found.at ? 1 : 0,
              found.at ? api::timeOf(*found.at) : qelcal_time{},
              found.offset,
              found.fromEnd ? 1 : 0,
              found.snooze.value_or(0),
              found.repeat.value_or(0),
              found.text.c_str()};
    return QELCAL_OK;
}

size_t qelcal_entry_note_count(const qelcal_entry* entry) {
    return entry == nullptr ? 0 : entry->notes.size();
}

const qelcal_note* qelcal_entry_note(const qelcal_entry* entry, size_t index) {
    return entry == nullptr ? nullptr : api::noteAt(entry->notes, index);
}
