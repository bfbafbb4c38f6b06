// Alarms of both formats: VALARM, and the alarm lines of vCalendar 1.0.
#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/formats/EntryReader.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

void EntryReader::takeAlarmComponent(const Component& component) {
    Alarm alarm;
    alarm.line = component.number;
    alarm.hasText = false;
    bool hasTrigger = false;
    bool usable = true;
    for (const ContentLine& line : component.properties) {
        if (line.name == "ACTION") {
            const std::string_view action = trimmed(line.value);
            using Action = Alarm::Action;
            alarm.action = equalsIgnoreCase(action, "AUDIO")       ? Action::Audio
                           : equalsIgnoreCase(action, "DISPLAY")   ? Action::Display
                           : equalsIgnoreCase(action, "EMAIL")     ? Action::Email
                           : equalsIgnoreCase(action, "PROCEDURE") ? Action::Procedure
                                                                   : Action::Other;
            alarm.actionName = upper(action);
        } else if (line.name == "TRIGGER" && !hasTrigger) {
            hasTrigger = true;
            const auto duration = parseDuration(line.value);
            if (duration) {
                alarm.offset = duration->total();
                alarm.fromEnd = equalsIgnoreCase(line.parameter("RELATED"), "END");
            } else if (const auto at = moment(line, line.value)) {
                alarm.at = *at;
            } else {
                tell(Severity::Error, line.number,
                     "TRIGGER " + quoted(line.value) +
                         " is neither a duration nor a date; the alarm is left out");
                usable = false;
            }
        } else if (line.name == "DURATION") {
            const auto duration = parseDuration(line.value);
            if (duration) alarm.snooze = duration->total();
        } else if (line.name == "REPEAT") {
            alarm.repeat = parseInt(trimmed(line.value));
        } else if (line.name == "DESCRIPTION") {
            alarm.text = unescapeICalendar(text(line));
            alarm.hasText = true;
        } else if (line.name == "SUMMARY") {
            alarm.summary = unescapeICalendar(text(line));
        } else if (line.name == "ATTENDEE" && alarm.address.empty()) {
            alarm.address = std::string(trimmed(text(line)));
            if (startsWithIgnoreCase(alarm.address, "mailto:")) alarm.address.erase(0, 7);
        } else {
            const bool raw = line.name == "ATTACH" || line.name == "ATTENDEE";
            alarm.others.push_back({std::string(line.name),
                                    line.parameters,
                                    raw ? EntryProperty::Type::Raw : EntryProperty::Type::Text,
                                    raw ? std::string(text(line)) : unescapeICalendar(text(line)),
                                    {},
                                    line.number});
        }
    }
    if (!hasTrigger) {
        tell(Severity::Error, component.number, "an alarm without TRIGGER is left out");
        usable = false;
    }
    if (usable) {
        settleAlarm(alarm);
        entry_.alarms.push_back(std::move(alarm));
    }
}

// The sound or procedure is the alarm's text; an alarm that came from vCalendar 1.0 is that alarm
// again.
void EntryReader::settleAlarm(Alarm& alarm) {
    using Action = Alarm::Action;
    const auto attachment =
        std::find_if(alarm.others.begin(), alarm.others.end(),
                     [](const EntryProperty& each) { return each.name == "ATTACH"; });
    const bool takesOne = alarm.action == Action::Audio || alarm.action == Action::Procedure;
    if (takesOne && attachment != alarm.others.end()) {
        const bool binary = std::any_of(attachment->parameters.begin(),
                                        attachment->parameters.end(), [](const Parameter& each) {
                                            return each.name == "ENCODING" &&
                                                   equalsIgnoreCase(each.value, "BASE64");
                                        });
        alarm.text = attachment->value();
        if (binary) alarm.parameters = {{"VALUE", "INLINE"}, {"ENCODING", "BASE64"}};
        alarm.others.erase(attachment);
    }
    for (const Action action : {Action::Audio, Action::Display, Action::Email, Action::Procedure}) {
        const std::string name = std::string(kVCalendarPrefix) + std::string(alarmName(action));
        const auto own = std::find_if(alarm.others.begin(), alarm.others.end(),
                                      [&](const EntryProperty& each) { return each.name == name; });
        if (own == alarm.others.end()) continue;
        Alarm restored;
        restored.action = action;
        restored.at = alarm.at;
        restored.offset = alarm.offset;
        restored.fromEnd = alarm.fromEnd;
        restored.line = alarm.line;
        restored.fields = own->value();
        for (const Parameter& each : own->parameters) {
            const bool carried = each.name.starts_with(kVCalendarPrefix);
            std::string bare = carried ? each.name.substr(kVCalendarPrefix.size()) : each.name;
            if (bare == "PARAMETER") bare.clear();
            restored.parameters.push_back({bare, each.value});
        }
        readAlarmFields(restored);
        alarm = std::move(restored);
        return;
    }
}

void EntryReader::takeAlarmLine(const ContentLine& line) {
    Alarm alarm;
    alarm.line = line.number;
    alarm.action = line.id == PropertyName::AAlarm   ? Alarm::Action::Audio
                   : line.id == PropertyName::DAlarm ? Alarm::Action::Display
                   : line.id == PropertyName::MAlarm ? Alarm::Action::Email
                                                     : Alarm::Action::Procedure;
    const bool binary = isBase64(line);
    std::string_view rest = binary ? line.value : text(line);
    const std::string_view when = trimmed(nextField(rest, ';'));
    const auto at = moment(line, when);
    if (!at) {
        if (!when.empty())
            carry(line, "has no time that makes sense", Severity::Error);
        else if (!trimmed(rest).empty() && rest.find_first_not_of("; ") != std::string_view::npos)
            carry(line, "has no time", Severity::Warning);
        else
            tell(Severity::Note, line.number, std::string(line.name) + " is empty");
        return;
    }
    alarm.at = *at;
    if (at->isDate) {
        alarm.at->isDate = false;
        if (entry_.zone != nullptr) alarm.at->clock = Clock::Zoned;
    }
    alarm.fields = std::string(rest);
    for (const Parameter& each : line.parameters)
        if (each.name != "CHARSET" && !(each.name == "ENCODING" && !binary) &&
            !(each.name.empty() && isEncodingWord(each.value) && !binary))
            alarm.parameters.push_back(each);
    readAlarmFields(alarm);
    // That a URI is one need not be said.
    if (isUri(alarm.text))
        std::erase_if(alarm.parameters, [](const Parameter& each) {
            return each.name == "VALUE" &&
                   (equalsIgnoreCase(each.value, "URL") || equalsIgnoreCase(each.value, "URI"));
        });
    entry_.alarms.push_back(std::move(alarm));
}

}  // namespace qel::calendar
