#include "calendar/formats/AlarmReader.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/formats/AlarmText.h"
#include "calendar/formats/EntryReader.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

using Action = Alarm::Action;

AlarmReader::AlarmReader(EntryReader& reader)
    : reader_(reader), alarm_(reader.entry_.alarms.emplace_back()) {}

void AlarmReader::takeComponent(const Component& component) {
    alarm_.line = component.number;
    alarm_.hasText = false;
    // What the other properties are for depends on it.
    for (const ContentLine& line : component.properties)
        if (line.id == PropertyName::Action) {
            takeAction(line);
            hasAction_ = true;
            break;
        }
    for (const ContentLine& line : component.properties) takeProperty(line);
    for (const Component& child : component.children)
        reader_.report(Note(NoteCode::EntryPartUnknown, child.number, {child.name}));
    if (!hasTrigger_) {
        reader_.report(Note(NoteCode::AlarmWithoutTrigger, component.number));
        usable_ = false;
    }
    if (!usable_) return reader_.entry_.alarms.pop_back();
    takeAttachment();
    restore();
}

void AlarmReader::takeProperty(const ContentLine& line) {
    using Name = PropertyName;
    switch (line.id) {
        case Name::Action:
            if (std::exchange(hasAction_, false)) return;
            return takeOther(line, EntryProperty::Type::Text);
        case Name::Trigger:
            return takeTrigger(line);
        case Name::Duration:
            if (const auto snooze = reader_.duration(line, line.value))
                alarm_.snooze = snooze->total();
            else
                return takeOther(line, EntryProperty::Type::Text);
            return reader_.reportParameters(line);
        case Name::Repeat:
            alarm_.repeat = parseInt(trimmed(line.value));
            if (!alarm_.repeat) return takeOther(line, EntryProperty::Type::Text);
            return reader_.reportParameters(line);
        case Name::Description:
            if (alarm_.hasText || alarm_.action == Action::Audio ||
                alarm_.action == Action::Procedure)
                return takeOther(line, EntryProperty::Type::Text);
            alarm_.text = unescapeICalendar(reader_.text(line));
            alarm_.hasText = true;
            return reader_.reportParameters(line);
        case Name::Summary:
            if (alarm_.action != Action::Email || !alarm_.summary.empty())
                return takeOther(line, EntryProperty::Type::Text);
            alarm_.summary = unescapeICalendar(reader_.text(line));
            return reader_.reportParameters(line);
        case Name::Attendee:
            return alarm_.action == Action::Email ? takeAddress(line)
                                                  : takeOther(line, EntryProperty::Type::Raw);
        case Name::Attach:
            return takeOther(line, EntryProperty::Type::Raw);
        default:
            return takeOther(line, EntryProperty::Type::Text);
    }
}

void AlarmReader::takeAction(const ContentLine& line) {
    reader_.reportParameters(line);
    alarm_.actionName = upper(trimmed(line.value));
    alarm_.action = alarm_.actionName == "AUDIO"       ? Action::Audio
                    : alarm_.actionName == "DISPLAY"   ? Action::Display
                    : alarm_.actionName == "EMAIL"     ? Action::Email
                    : alarm_.actionName == "PROCEDURE" ? Action::Procedure
                                                       : Action::Other;
}

void AlarmReader::takeTrigger(const ContentLine& line) {
    if (std::exchange(hasTrigger_, true)) return takeOther(line, EntryProperty::Type::Text);
    reader_.reportParameters(line);
    if (const auto duration = reader_.duration(line, line.value)) {
        alarm_.offset = duration->total();
        alarm_.fromEnd = equalsIgnoreCase(line.parameter("RELATED"), "END");
    } else if (const auto at = reader_.moment(line, line.value)) {
        alarm_.at = *at;
    } else {
        reader_.report(Note(NoteCode::AlarmTriggerInvalid, line.number,
                            {line.value.substr(0, kLongestExcerpt)}));
        usable_ = false;
    }
}

void AlarmReader::takeAddress(const ContentLine& line) {
    if (!alarm_.address.empty()) return takeOther(line, EntryProperty::Type::Raw);
    alarm_.address = std::string(trimmed(reader_.text(line)));
    if (startsWithIgnoreCase(alarm_.address, "mailto:")) alarm_.address.erase(0, 7);
    for (const Parameter& each : line.parameters)
        if (!each.name.empty() && each.name != "ENCODING"sv && each.name != "CHARSET"sv)
            alarm_.targetParameters.push_back(each);
}

void AlarmReader::takeOther(const ContentLine& line, EntryProperty::Type type) {
    const bool binary = isBase64(line);
    const std::string_view text = binary ? line.value : reader_.text(line);
    EntryProperty other{std::string(line.name), line.parameters, type, {}, {}, line.number};
    if (binary)
        other.type = EntryProperty::Type::Raw;
    else
        // The value is decoded.
        std::erase_if(other.parameters, [](const Parameter& each) {
            return each.name == "ENCODING"sv || each.name == "CHARSET"sv ||
                   (each.name.empty() && isEncodingWord(each.value));
        });
    other.text = other.type == EntryProperty::Type::Raw ? std::string(trimmed(text))
                                                        : unescapeICalendar(text);
    alarm_.others.push_back(std::move(other));
}

void AlarmReader::takeAttachment() {
    if (alarm_.action != Action::Audio && alarm_.action != Action::Procedure) return;
    const auto attachment =
        std::find_if(alarm_.others.begin(), alarm_.others.end(),
                     [](const EntryProperty& each) { return each.name == "ATTACH"sv; });
    if (attachment == alarm_.others.end()) return;
    const bool binary = std::any_of(
        attachment->parameters.begin(), attachment->parameters.end(), [](const Parameter& each) {
            return each.name == "ENCODING"sv && equalsIgnoreCase(each.value, "BASE64");
        });
    alarm_.text = attachment->value();
    if (binary) alarm_.parameters = {{"VALUE", "INLINE"}, {"ENCODING", "BASE64"}};
    for (const Parameter& each : attachment->parameters) {
        const bool usual = binary || equalsIgnoreCase(each.value, "URI");
        if (!each.name.empty() && each.name != "ENCODING"sv && !(each.name == "VALUE"sv && usual))
            alarm_.targetParameters.push_back(each);
    }
    alarm_.others.erase(attachment);
}

void AlarmReader::restore() {
    if (alarm_.others.empty()) return;
    for (const Action action : {Action::Audio, Action::Display, Action::Email, Action::Procedure})
        if (restoreAs(action)) return;
}

bool AlarmReader::restoreAs(Action action) {
    const std::string name = std::string(kVCalendarPrefix) + std::string(alarmName(action));
    const auto own = std::find_if(alarm_.others.begin(), alarm_.others.end(),
                                  [&](const EntryProperty& each) { return each.name == name; });
    if (own == alarm_.others.end()) return false;
    Alarm restored;
    restored.action = action;
    restored.at = alarm_.at;
    restored.offset = alarm_.offset;
    restored.fromEnd = alarm_.fromEnd;
    restored.line = alarm_.line;
    restored.summary = alarm_.summary;
    restored.targetParameters = alarm_.targetParameters;
    restored.fields = own->value();
    for (const Parameter& each : own->parameters) {
        const bool carried = each.name.starts_with(kVCalendarPrefix);
        std::string bare = carried ? each.name.substr(kVCalendarPrefix.size()) : each.name;
        if (bare == "PARAMETER") bare.clear();
        restored.parameters.push_back({bare, each.value});
    }
    // Reported when the file had it.
    static_cast<void>(readAlarmFields(restored));
    alarm_.others.erase(own);
    restored.others = std::move(alarm_.others);
    alarm_ = std::move(restored);
    return true;
}

void AlarmReader::takeLine(const ContentLine& line) {
    alarm_.line = line.number;
    alarm_.action = line.id == PropertyName::AAlarm   ? Action::Audio
                    : line.id == PropertyName::DAlarm ? Action::Display
                    : line.id == PropertyName::MAlarm ? Action::Email
                                                      : Action::Procedure;
    const bool binary = isBase64(line);
    std::string_view rest = binary ? line.value : reader_.text(line);
    const std::string_view when = trimmed(nextField(rest, ';'));
    const auto at = reader_.moment(line, when);
    if (!at) {
        reader_.entry_.alarms.pop_back();
        return reportTimeless(line, when, rest);
    }
    alarm_.at = *at;
    if (at->isDate) {
        alarm_.at->isDate = false;
        if (reader_.entry_.zone != nullptr) alarm_.at->clock = Clock::Zoned;
    }
    alarm_.fields = std::string(rest);
    for (const Parameter& each : line.parameters)
        if (alarm_.action == Action::Email && each.name == kMailSummary)
            alarm_.summary = each.value;
        else if (alarm_.action != Action::Display && each.name.starts_with(kICalendarPrefix))
            alarm_.targetParameters.push_back(
                {std::string(restoredName(each.name, kICalendarPrefix)), each.value});
        else if (each.name != "CHARSET"sv && !(each.name == "ENCODING"sv && !binary) &&
                 !(each.name.empty() && isEncodingWord(each.value) && !binary))
            alarm_.parameters.push_back(each);
    if (!readAlarmFields(alarm_))
        reader_.report(Note(NoteCode::DurationWithoutT, line.number,
                            {std::string_view(alarm_.fields).substr(0, kLongestExcerpt)}));
    // A URI can be recognised as one.
    if (isUri(alarm_.text))
        std::erase_if(alarm_.parameters, [](const Parameter& each) {
            return each.name == "VALUE"sv &&
                   (equalsIgnoreCase(each.value, "URL") || equalsIgnoreCase(each.value, "URI"));
        });
}

void AlarmReader::reportTimeless(const ContentLine& line, std::string_view when,
                                 std::string_view rest) {
    if (!when.empty())
        reader_.carry(line, NoteCode::AlarmTimeInvalid);
    else if (!trimmed(rest).empty() && rest.find_first_not_of("; ") != std::string_view::npos)
        reader_.carry(line, NoteCode::AlarmWithoutTime);
    else
        reader_.report(Note(NoteCode::AlarmEmpty, line.number, {line.name}));
}

}  // namespace qel::calendar
