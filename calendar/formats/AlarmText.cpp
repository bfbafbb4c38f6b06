#include "calendar/formats/AlarmText.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "calendar/base/Ascii.h"
#include "calendar/formats/ICalEntry.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

namespace {

using Action = Alarm::Action;

constexpr std::string_view kMailScheme = "mailto:";

std::string keptName(const Alarm& alarm) {
    return std::string(kVCalendarPrefix) + std::string(alarmName(alarm.action));
}

std::vector<Parameter> carriedParameters(const std::vector<Parameter>& parameters) {
    std::vector<Parameter> carried;
    for (const Parameter& each : parameters) {
        const std::string name = each.name.empty() ? "PARAMETER" : each.name;
        carried.push_back(
            {name.starts_with("X-") ? name : std::string(kVCalendarPrefix) + name, each.value});
    }
    return carried;
}

// What vCalendar 1.0 keeps of the address, or of the sound or procedure, in parameters.
void addTargetParameters(std::vector<Parameter>& parameters, const Alarm& alarm) {
    for (const Parameter& each : alarm.targetParameters)
        parameters.push_back({std::string(kICalendarPrefix) + each.name, each.value});
}

bool isBinary(const Alarm& alarm) {
    return std::any_of(
        alarm.parameters.begin(), alarm.parameters.end(),
        [](const Parameter& each) { return equalsIgnoreCase(each.value, "BASE64"); });
}

void addTrigger(std::string& out, const AlarmTrigger& trigger) {
    if (trigger.at)
        return addICalendarLine(out, "TRIGGER", {{"VALUE", "DATE-TIME"}}, MomentText(*trigger.at));
    std::vector<Parameter> parameters;
    if (trigger.fromEnd) parameters.push_back({"RELATED", "END"});
    addICalendarLine(out, PropertyName::Trigger, parameters, formatDuration(trigger.offset));
}

// The lines of a VALARM for what an alarm does.
class ActionLines {
  public:
    ActionLines(std::string& out, const Alarm& alarm, std::string_view summary)
        : out_(out), alarm_(alarm), summary_(summary) {
        written_.action = alarm.action;
    }

    void addRepetition() {
        if (!alarm_.snooze || *alarm_.snooze <= 0 || !alarm_.repeat || *alarm_.repeat <= 0) return;
        addICalendarLine(out_, "DURATION", {}, formatDuration(*alarm_.snooze));
        addICalendarLine(out_, "REPEAT", {}, std::to_string(*alarm_.repeat));
        written_.snooze = alarm_.snooze;
        written_.repeat = alarm_.repeat;
    }

    void addAction() {
        switch (alarm_.action) {
            case Action::Audio:
                out_ += "ACTION:AUDIO\r\n";
                return addSound();
            case Action::Procedure:
                out_ += "ACTION:PROCEDURE\r\n";
                return addSound();
            case Action::Email:
                if (addressFromVCalendar(alarm_.address).uri.starts_with(kMailScheme))
                    return addEmail();
                // There is nobody to write to: the person is reminded here.
                [[fallthrough]];
            case Action::Display:
                out_ += "ACTION:DISPLAY\r\n";
                return addDescription();
            case Action::Other:
                addICalendarLine(out_, "ACTION", {}, alarm_.actionName);
                if (alarm_.hasText) addDescription();
                return;
        }
    }

    // What a reader of these lines gets, as far as vCalendar 1.0 can express it.
    [[nodiscard]] const Alarm& written() const { return written_; }
    // True where these lines have the address, the sound or the procedure.
    [[nodiscard]] bool hasTarget() const { return hasTarget_; }

  private:
    void addDescription() {
        written_.text = alarm_.hasText ? std::string_view(alarm_.text) : summary_;
        addICalendarLine(out_, "DESCRIPTION", {}, written_.text, Value::Escaped);
    }

    void addEmail() {
        out_ += "ACTION:EMAIL\r\n";
        const CalendarAddress address = addressFromVCalendar(alarm_.address);
        std::vector<Parameter> parameters = alarm_.targetParameters;
        const bool hasName = std::any_of(parameters.begin(), parameters.end(),
                                         [](const Parameter& each) { return each.name == "CN"sv; });
        if (!address.name.empty() && !hasName) parameters.push_back({"CN", address.name});
        addICalendarLine(out_, "ATTENDEE", parameters, address.uri);
        hasTarget_ = true;
        addICalendarLine(out_, "SUMMARY", {},
                         alarm_.summary.empty() ? summary_ : std::string_view(alarm_.summary),
                         Value::Escaped);
        written_.address = address.uri.substr(kMailScheme.size());
        addDescription();
    }

    void addSound() {
        if (isBinary(alarm_)) {
            const auto clean = cleanBase64(alarm_.text);
            if (!clean || clean->empty()) return;
            std::vector<Parameter> parameters = alarm_.targetParameters;
            parameters.push_back({"ENCODING", "BASE64"});
            parameters.push_back({"VALUE", "BINARY"});
            addICalendarLine(out_, "ATTACH", parameters, *clean);
        } else if (isUri(alarm_.text)) {
            addICalendarLine(out_, "ATTACH", alarm_.targetParameters, alarm_.text);
            written_.text = alarm_.text;
        } else {
            return;
        }
        hasTarget_ = true;
    }

    std::string& out_;
    const Alarm& alarm_;
    std::string_view summary_;
    Alarm written_;
    bool hasTarget_ = false;
};

}  // namespace

std::optional<AlarmTrigger> iCalendarTrigger(const Entry& entry, const Alarm& alarm) {
    if (!alarm.at) return AlarmTrigger{std::nullopt, alarm.offset, alarm.fromEnd};
    const std::optional<Moment>& anchor = entry.start ? entry.start : entry.due;
    const auto utc = entry.toUtc(*alarm.at);
    if (anchor && alarm.fromVCalendar) {
        const auto anchorUtc = entry.toUtc(*anchor);
        if (utc && anchorUtc)
            return AlarmTrigger{std::nullopt, utc->seconds() - anchorUtc->seconds(), !entry.start};
        Moment local = *alarm.at;
        if (local.clock == Clock::Utc && entry.zone != nullptr) local = entry.zone->toLocal(local);
        if (anchor->clock == Clock::Floating && local.clock != Clock::Utc)
            return AlarmTrigger{std::nullopt, local.seconds() - anchor->seconds(), !entry.start};
    }
    if (!utc) return std::nullopt;
    return AlarmTrigger{utc, 0, false};
}

void addICalendarAlarm(std::string& out, const Entry& entry, const Alarm& alarm,
                       std::string_view summary) {
    out += "BEGIN:VALARM\r\n";
    addTrigger(out, iCalendarTrigger(entry, alarm).value());
    ActionLines action(out, alarm, summary);
    action.addRepetition();
    action.addAction();
    for (const EntryProperty& other : alarm.others)
        addICalendarLine(out, other.name, other.parameters, valueText(other));
    // What these lines cannot say goes beside them.
    std::vector<Parameter> parameters = carriedParameters(alarm.parameters);
    if (!action.hasTarget()) addTargetParameters(parameters, alarm);
    if (alarm.fromVCalendar &&
        (writeAlarmFields(action.written()) != alarm.fields || !parameters.empty()))
        addICalendarLine(out, keptName(alarm), parameters,
                         escapeICalendar(alarm.fields.empty() ? ";" : alarm.fields));
    out += "END:VALARM\r\n";
}

EntryProperty keptAlarm(const Alarm& alarm) {
    std::string value = alarm.at ? formatMoment(*alarm.at) : "";
    if (!alarm.fields.empty()) value += ";" + alarm.fields;
    std::vector<Parameter> parameters = carriedParameters(alarm.parameters);
    if (!alarm.summary.empty()) parameters.push_back({std::string(kMailSummary), alarm.summary});
    addTargetParameters(parameters, alarm);
    return {keptName(alarm),
            std::move(parameters),
            EntryProperty::Type::Raw,
            escapeICalendar(value),
            {},
            alarm.line};
}

std::optional<Moment> vCalendarAlarmTime(const Entry& entry, const Alarm& alarm) {
    if (alarm.at) return alarm.at;
    std::optional<Moment> anchor = entry.start;
    if (alarm.fromEnd || !anchor) {
        const std::optional<Moment>& end = entry.kind == EntryKind::Todo ? entry.due : entry.end;
        if (end) anchor = end;
    }
    if (!anchor) return std::nullopt;
    Moment moment = entry.later(*anchor, alarm.offset);
    moment.isDate = false;
    return moment;
}

void addVCalendarAlarm(std::string& out, const Entry& entry, const Alarm& alarm) {
    std::string value = formatMoment(vCalendarAlarmTime(entry, alarm).value());
    const std::string fields = alarm.fromVCalendar ? alarm.fields : writeAlarmFields(alarm);
    if (!fields.empty()) value += ";" + fields;
    const std::string_view name = alarmName(alarm.action);
    std::vector<Parameter> parameters = alarm.parameters;
    const bool takesUri = alarm.action == Action::Audio || alarm.action == Action::Procedure;
    const auto kind = std::find_if(parameters.begin(), parameters.end(),
                                   [](const Parameter& each) { return each.name == "VALUE"sv; });
    if (takesUri && isUri(alarm.text) && (kind == parameters.end() || kind->value.empty()))
        parameters.push_back({"VALUE", "URL"});
    // iCalendar gets the entry's own again where there is no other one.
    const EntryProperty* const own = entry.find("SUMMARY");
    if (alarm.action == Alarm::Action::Email && !alarm.summary.empty() &&
        alarm.summary != (own == nullptr ? kReminder : std::string_view(own->value())))
        parameters.push_back({std::string(kMailSummary), alarm.summary});
    addTargetParameters(parameters, alarm);
    // In binary the fields before the sound are on the first line.
    if (isBinary(alarm))
        out += vCalendarBase64(name, parameters, value);
    else
        addVCalendarLine(out, name, parameters, value);
}

}  // namespace qel::calendar
