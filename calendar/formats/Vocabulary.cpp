#include "calendar/formats/Vocabulary.h"

#include <algorithm>
#include <iterator>

#include "calendar/base/Ascii.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

namespace {

struct Pair {
    std::string_view vcalendar;
    std::string_view icalendar;
};

// The first pair of an iCalendar word is the one that it goes back to.
constexpr Pair kEventStatus[] = {{"TENTATIVE", "TENTATIVE"}, {"CONFIRMED", "CONFIRMED"}};
constexpr Pair kTodoStatus[] = {
    {"NEEDS ACTION", "NEEDS-ACTION"}, {"NEEDS-ACTION", "NEEDS-ACTION"}, {"COMPLETED", "COMPLETED"}};
constexpr Pair kParticipation[] = {
    {"NEEDS ACTION", "NEEDS-ACTION"}, {"ACCEPTED", "ACCEPTED"},   {"DECLINED", "DECLINED"},
    {"TENTATIVE", "TENTATIVE"},       {"DELEGATED", "DELEGATED"}, {"NEEDS-ACTION", "NEEDS-ACTION"},
    {"NEEDSACTION", "NEEDS-ACTION"},  {"CONFIRMED", "ACCEPTED"},  {"SENT", "NEEDS-ACTION"}};
constexpr Pair kRole[] = {{"ORGANIZER", "CHAIR"},
                          {"ATTENDEE", "REQ-PARTICIPANT"},
                          {"OWNER", "CHAIR"},
                          {"DELEGATE", "REQ-PARTICIPANT"}};

template <std::size_t Size>
std::string_view toICalendar(const Pair (&pairs)[Size], std::string_view word) {
    for (const Pair& pair : pairs)
        if (equalsIgnoreCase(pair.vcalendar, word)) return pair.icalendar;
    return {};
}

template <std::size_t Size>
std::string_view toVCalendar(const Pair (&pairs)[Size], std::string_view word) {
    for (const Pair& pair : pairs)
        if (equalsIgnoreCase(pair.icalendar, word)) return pair.vcalendar;
    return {};
}

bool isMailAddress(std::string_view text) {
    const std::size_t at = text.find('@');
    return at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
           text.find('@', at + 1) == std::string_view::npos &&
           std::none_of(text.begin(), text.end(), [](char c) {
               return isBlank(c) || c == '<' || c == '>' || c == '"' || c == ',' || c == ';';
           });
}

}  // namespace

std::string_view statusFromVCalendar(std::string_view status, EntryKind kind) {
    if (kind == EntryKind::Event) return toICalendar(kEventStatus, status);
    if (kind == EntryKind::Todo) return toICalendar(kTodoStatus, status);
    return {};
}

std::string_view statusToVCalendar(std::string_view status, EntryKind kind) {
    if (kind == EntryKind::Event) return toVCalendar(kEventStatus, status);
    if (kind == EntryKind::Todo) return toVCalendar(kTodoStatus, status);
    return {};
}

std::string_view transparencyToVCalendar(std::string_view word) {
    word = trimmed(word);
    return equalsIgnoreCase(word, "TRANSPARENT") ? "1"
           : equalsIgnoreCase(word, "OPAQUE")    ? "0"
                                                 : "";
}

CalendarAddress addressFromVCalendar(std::string_view text) {
    text = trimmed(text);
    const std::size_t open = text.rfind('<');
    if (open != std::string_view::npos && text.back() == '>') {
        std::string_view mail = trimmed(text.substr(open + 1, text.size() - open - 2));
        if (startsWithIgnoreCase(mail, "mailto:")) mail.remove_prefix(7);
        if (isMailAddress(mail)) {
            std::string_view name = trimmed(text.substr(0, open));
            if (name.size() > 1 && name.front() == '"' && name.back() == '"')
                name = name.substr(1, name.size() - 2);
            return {std::string(name), "mailto:" + std::string(mail)};
        }
    }
    if (isMailAddress(text) && !startsWithIgnoreCase(text, "mailto:"))
        return {"", "mailto:" + std::string(text)};
    if (isUri(text)) return {"", std::string(text)};
    return {std::string(text), std::string(kNoMail)};
}

std::string addressToVCalendar(const CalendarAddress& address) {
    if (address.uri == kNoMail) return address.name;
    std::string_view mail = address.uri;
    if (startsWithIgnoreCase(mail, "mailto:")) mail.remove_prefix(7);
    if (!isMailAddress(mail)) mail = address.uri;
    if (address.name.empty()) return std::string(mail);
    return address.name + " <" + std::string(mail) + ">";
}

void addRoleFromVCalendar(const std::string& role, std::vector<Parameter>& parameters) {
    const std::string_view word = toICalendar(kRole, trimmed(role));
    if (!word.empty()) {
        parameters.push_back({"ROLE", std::string(word)});
        if (!equalsIgnoreCase(toVCalendar(kRole, word), trimmed(role)))
            parameters.push_back({"X-VCAL-ROLE", role});
    } else if (roleToVCalendar(upper(trimmed(role))).empty() &&
               !equalsIgnoreCase(role, "OPT-PARTICIPANT") &&
               !equalsIgnoreCase(role, "NON-PARTICIPANT")) {
        parameters.push_back({"X-VCAL-ROLE", role});
    } else {
        parameters.push_back({"ROLE", upper(trimmed(role))});
    }
}

void addParticipationFromVCalendar(const std::string& status, EntryKind kind,
                                   std::vector<Parameter>& parameters) {
    std::string_view word = toICalendar(kParticipation, trimmed(status));
    if (word.empty() && kind == EntryKind::Todo && equalsIgnoreCase(trimmed(status), "COMPLETED"))
        word = "COMPLETED";
    if (!word.empty()) parameters.push_back({"PARTSTAT", std::string(word)});
    if (!equalsIgnoreCase(participationToVCalendar(word), trimmed(status)))
        parameters.push_back({"X-VCAL-STATUS", status});
}

std::string_view roleToVCalendar(std::string_view role) {
    return toVCalendar(kRole, role);
}

std::string_view participationToVCalendar(std::string_view status) {
    if (equalsIgnoreCase(status, "COMPLETED")) return "COMPLETED";
    return toVCalendar(kParticipation, status);
}

std::string_view alarmName(Alarm::Action action) {
    switch (action) {
        case Alarm::Action::Audio:
            return "AALARM";
        case Alarm::Action::Email:
            return "MALARM";
        case Alarm::Action::Procedure:
            return "PALARM";
        case Alarm::Action::Display:
        case Alarm::Action::Other:
            break;
    }
    return "DALARM";
}

bool readAlarmFields(Alarm& alarm) {
    alarm.fromVCalendar = true;
    if (alarm.fields.find_first_not_of(';') == std::string::npos) {
        alarm.fields.clear();
        alarm.hasText = false;
        return true;
    }
    const std::vector<std::string> fields = splitVCalendar(alarm.fields, ";");
    const bool any = std::any_of(fields.begin(), fields.end(),
                                 [](const std::string& field) { return !trimmed(field).empty(); });
    if (!any) alarm.fields.clear();
    const auto field = [&](std::size_t at) {
        return at < fields.size() ? std::string(trimmed(fields[at])) : std::string();
    };
    bool withoutT = false;
    if (const auto snooze = parseUntidyDuration(field(0), withoutT)) alarm.snooze = snooze->total();
    alarm.repeat = parseInt(field(1));
    std::size_t at = 2;
    if (alarm.action == Alarm::Action::Email) alarm.address = field(at++);
    alarm.text = field(at);
    // What follows belongs to the text: a semicolon that was not escaped.
    for (std::size_t more = at + 1; more < fields.size(); ++more)
        if (!fields[more].empty()) alarm.text += ";" + fields[more];
    alarm.hasText = !alarm.text.empty();
    return !withoutT;
}

std::string writeAlarmFields(const Alarm& alarm) {
    const bool email = alarm.action == Alarm::Action::Email;
    if (!alarm.snooze && !alarm.repeat && alarm.text.empty() && !(email && !alarm.address.empty()))
        return "";
    std::string fields = alarm.snooze ? formatDuration(*alarm.snooze) : "";
    fields += ";" + (alarm.repeat ? std::to_string(*alarm.repeat) : std::string()) + ";";
    if (email) fields += escapeVCalendar(alarm.address, ";") + ";";
    return fields + escapeVCalendar(alarm.text, ";");
}

bool isUri(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon < 2 || colon + 1 == text.size()) return false;
    return isAlpha(text.front()) &&
           std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](char c) {
                           return isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
                       }) &&
           std::none_of(text.begin(), text.end(),
                        [](char c) { return isBlank(c) || c == '<' || c == '>' || c == '"'; });
}

}  // namespace qel::calendar
