// Entries as vCalendar 1.0.
#include <algorithm>
#include <ostream>

#include "convert/Ascii.h"
#include "convert/Days.h"
#include "convert/EntryWriter.h"
#include "convert/RuleText.h"
#include "convert/TextCodec.h"
#include "convert/Vocabulary.h"

namespace qel::convert {

namespace {

// Dates on one RDATE or EXDATE line; phones have short line buffers.
constexpr std::size_t kDatesOnLine = 4;
// A rule that vCalendar 1.0 lacks becomes a list of dates up to this many.
constexpr std::size_t kMostDates = 500;
// DAYLIGHT lines for an endless series reach this far.
constexpr int kYearsAhead = 10;

bool isVCalendarName(std::string_view name) {
    static constexpr std::string_view kNames[] = {
        "ATTACH",   "ATTENDEE", "CATEGORIES", "CLASS",      "DESCRIPTION",
        "GEO",      "LOCATION", "PRIORITY",   "RELATED-TO", "RESOURCES",
        "SEQUENCE", "STATUS",   "SUMMARY",    "TRANSP",     "URL"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

// Parameters on their way back: those carried here from vCalendar 1.0 get their own names, those
// that only iCalendar knows go behind X-ICAL-.
std::vector<Parameter> parametersToVCalendar(const std::vector<Parameter>& parameters) {
    std::vector<Parameter> result;
    for (const Parameter& each : parameters) {
        if (each.name == "X-VCAL-PARAMETER") {
            result.push_back({"", each.value});
        } else if (each.name.starts_with(kVCalendarPrefix)) {
            result.push_back({each.name.substr(kVCalendarPrefix.size()), each.value});
        } else if (each.name.starts_with("X-") || each.name == "LANGUAGE") {
            result.push_back(each);
        } else {
            result.push_back({std::string(kICalendarPrefix) + each.name, each.value});
        }
    }
    return result;
}

std::string_view parameterOf(const std::vector<Parameter>& parameters, std::string_view name) {
    for (const Parameter& each : parameters)
        if (each.name == name) return each.value;
    return {};
}

}  // namespace

class VCalEntry {
  public:
    VCalEntry(VCalWriter& writer, const Entry& entry)
        : writer_(writer),
          entry_(entry),
          allDay_(entry.saysAllDay()),
          ownTransparency_(entry.find("X-VCAL-TRANSP") != nullptr) {}

    void write() {
        if (entry_.kind == EntryKind::Journal) {
            writeNote();
            return;
        }
        openCalendar();
        const EntryProperty* component = entry_.find("X-VCAL-COMPONENT");
        std::string name = entry_.kind == EntryKind::Event ? "VEVENT" : "VTODO";
        if (component != nullptr && equalsIgnoreCase(component->value(), "VEVENT")) name = "VEVENT";
        writer_.put("BEGIN:" + name);
        if (!entry_.uid.empty()) line("UID", {}, entry_.uid);
        addDates();
        addRecurrence();
        for (const EntryProperty& property : entry_.properties) addProperty(property);
        for (const Alarm& alarm : entry_.alarms) addAlarm(alarm);
        writer_.put("END:" + name);
    }

  private:
    void tell(Severity severity, const std::string& message, std::size_t at = 0) {
        writer_.tell(severity, at == 0 ? entry_.line : at, message);
    }

    void line(std::string_view name, const std::vector<Parameter>& parameters,
              std::string_view value) {
        writer_.put(vCalendarLine(name, parameters, value));
    }

    [[nodiscard]] bool uses(Clock clock) const {
        const auto is = [&](const Moment& moment) {
            return !moment.isDate && moment.clock == clock;
        };
        for (const auto* each : {&entry_.start, &entry_.end, &entry_.due, &entry_.completed,
                                 &entry_.created, &entry_.modified, &entry_.recurrenceId})
            if (*each && is(**each)) return true;
        const auto isAlarm = [&](const Alarm& alarm) { return alarm.at && is(*alarm.at); };
        return std::any_of(entry_.dates.begin(), entry_.dates.end(), is) ||
               std::any_of(entry_.excluded.begin(), entry_.excluded.end(), is) ||
               std::any_of(entry_.alarms.begin(), entry_.alarms.end(), isAlarm);
    }

    // Local times need a calendar of their zone; floating ones, and series in UTC, one without any.
    void openCalendar() {
        if (entry_.zone != nullptr && uses(Clock::Zoned)) {
            const auto [first, last] = years();
            writer_.open(entry_.zone, first, last);
            return;
        }
        const bool dayWithAlarm = entry_.start && entry_.start->isDate && !entry_.alarms.empty();
        const bool utcSeries = entry_.start && entry_.start->clock == Clock::Utc &&
                               (entry_.recurs() || !entry_.excluded.empty());
        if (!writer_.open_ || writer_.headerChanged_ ||
            (writer_.zone_ != nullptr && (uses(Clock::Floating) || dayWithAlarm || utcSeries)))
            writer_.open(nullptr, 0, 0);
    }

    // The years in which the zone's changes matter to this entry.
    [[nodiscard]] std::pair<int, int> years() const {
        int first = 9999;
        int last = 0;
        for (const auto* each : {&entry_.start, &entry_.end, &entry_.due, &entry_.completed,
                                 &entry_.created, &entry_.modified, &entry_.recurrenceId}) {
            if (!*each) continue;
            first = std::min(first, civilOf((*each)->day).year);
            last = std::max(last, civilOf((*each)->day).year);
        }
        for (const auto* list : {&entry_.dates, &entry_.excluded})
            for (const Moment& each : *list) last = std::max(last, civilOf(each.day).year);
        if (first > last) first = last = 2000;
        if (entry_.start) {
            for (const EntryRule& each : entry_.rules) {
                for (const Rule& rule : each.rules) {
                    RuleLimits limits;
                    limits.most = 10000;
                    limits.lastYear = std::min(civilOf(entry_.start->day).year + 30, 2499);
                    const int end = rule.endless() ? civilOf(entry_.start->day).year + kYearsAhead
                                                   : lastYear(rule, limits);
                    last = std::max(last, end);
                }
            }
        }
        return {first, std::min(last, first + 50)};
    }

    [[nodiscard]] int lastYear(const Rule& rule, const RuleLimits& limits) const {
        const std::vector<int> days = expandRule(rule, entry_.ruleStart(), limits);
        return days.empty() ? 0 : civilOf(days.back()).year;
    }

    // Where a property says that the entry is all-day, its writer expects midnights.
    [[nodiscard]] std::string dateText(const Moment& moment) const {
        std::string text = formatMoment(moment);
        if (moment.isDate && entry_.start && entry_.start->isDate && allDay_) text += "T000000";
        return text;
    }

    // `moment` after `duration`: the days on the wall clock, the rest as time goes by.
    [[nodiscard]] Moment after(const Moment& moment, const Duration& duration) const {
        Moment day = momentAt(moment, moment.seconds() + duration.days * 86400);
        return later(day, duration.seconds);
    }

    [[nodiscard]] Moment later(const Moment& moment, std::int64_t seconds) const {
        if (moment.clock == Clock::Zoned && entry_.zone != nullptr && !moment.isDate) {
            const Moment utc = entry_.zone->toUtc(moment);
            return entry_.zone->toLocal(momentAt(utc, utc.seconds() + seconds));
        }
        return momentAt(moment, moment.seconds() + seconds);
    }

    void addDates() {
        if (entry_.duration && entry_.start && !entry_.end && !entry_.due) {
            (entry_.kind == EntryKind::Todo ? entry_.due : entry_.end) =
                after(*entry_.start, *entry_.duration);
        } else if (entry_.duration) {
            line("X-ICAL-DURATION", {}, formatDuration(*entry_.duration));
        }
        if (entry_.start) line("DTSTART", {}, dateText(*entry_.start));
        if (entry_.end) line("DTEND", {}, dateText(*entry_.end));
        if (entry_.due) line("DUE", {}, dateText(*entry_.due));
        if (entry_.completed) line("COMPLETED", {}, formatMoment(*entry_.completed));
        if (entry_.created) line("DCREATED", {}, formatMoment(*entry_.created));
        if (entry_.modified) line("LAST-MODIFIED", {}, formatMoment(*entry_.modified));
        if (entry_.recurrenceId) {
            std::vector<Parameter> parameters;
            if (entry_.thisAndFuture) parameters.push_back({"RANGE", "THISANDFUTURE"});
            line("X-RECURRENCE-ID", parameters, dateText(*entry_.recurrenceId));
        }
        addStamp();
    }

    // DTSTAMP, unless iCalendar would get the same one again from the other dates.
    void addStamp() {
        const bool fallback = entry_.stamp && entry_.stamp->seconds() == kNoStamp.seconds();
        if (!entry_.stamp || fallback) return;
        for (const auto* each : {&entry_.modified, &entry_.created, &entry_.start, &entry_.due}) {
            if (!*each) continue;
            Moment derived = entry_.toUtc(**each).value_or(**each);
            derived.isDate = false;
            if (derived.seconds() == entry_.stamp->seconds()) return;
            break;
        }
        line("X-ICAL-DTSTAMP", {}, formatMoment(*entry_.stamp));
    }

    // The rule's end on the start's clock.
    [[nodiscard]] std::string untilText(const std::string& until) const {
        const auto read = parseMoment(until);
        if (!read) return until;
        Moment moment = *read;
        const Moment& start = *entry_.start;
        if (moment.clock == Clock::Floating && start.clock == Clock::Zoned && !moment.isDate)
            moment.clock = Clock::Zoned;
        moment = entry_.inClockOf(start, moment);
        if (!moment.isDate && start.clock == Clock::Utc) moment.clock = Clock::Utc;
        if (start.clock == Clock::Floating) moment.clock = Clock::Floating;
        return formatMoment(moment);
    }

    void addRecurrence() {
        if (!entry_.start) return;
        RuleStart start = entry_.ruleStart();
        start.utcOffset = 0;
        for (const EntryRule& each : entry_.rules) {
            for (Rule rule : each.rules) {
                if (!rule.until.empty()) rule.until = untilText(rule.until);
                const VCalendarRule texts = vCalendarTexts(rule, start);
                for (const std::string& text : texts.texts)
                    writer_.put((each.exclude ? "EXRULE:" : "RRULE:") + text);
                if (texts.texts.empty()) addInexpressible(each, rule, start, texts.reason);
            }
        }
        addDateList("RDATE", entry_.dates);
        addDateList("EXDATE", entry_.excluded);
    }

    // A list of dates where it has an end, or the rule as it stands for whoever reads it back.
    void addInexpressible(const EntryRule& owner, const Rule& rule, const RuleStart& start,
                          const std::string& reason) {
        const std::string text = iCalendarText(rule);
        const std::string head = "vCalendar 1.0 has no rule for " + reason + "; ";
        const bool times = !rule.hours.empty() || !rule.minutes.empty() || !rule.seconds.empty();
        RuleLimits limits;
        limits.most = kMostDates + 1;
        const std::vector<int> days =
            rule.endless() || times ? std::vector<int>() : expandRule(rule, start, limits);
        if (!days.empty() && days.size() <= kMostDates) {
            std::vector<Moment>& list = owner.exclude ? entry_.excluded : entry_.dates;
            Moment moment = *entry_.start;
            for (const int day : days) {
                moment.day = day;
                if (moment != *entry_.start || owner.exclude) list.push_back(moment);
            }
            tell(Severity::Note,
                 head + text + " is written as " + std::to_string(days.size()) + " dates",
                 owner.line);
            return;
        }
        const std::string name = owner.exclude ? "X-ICAL-EXRULE" : "X-ICAL-RRULE";
        line(name, {}, text);
        tell(Severity::Warning, head + text + " is kept as " + name, owner.line);
    }

    void addDateList(std::string_view name, const std::vector<Moment>& dates) {
        std::string value;
        std::size_t count = 0;
        for (const Moment& date : dates) {
            const Moment moment = entry_.inClockOf(*entry_.start, date);
            value += (value.empty() ? "" : ";") + dateText(moment);
            if (++count % kDatesOnLine == 0) {
                writer_.put(std::string(name) + ":" + value);
                value.clear();
            }
        }
        if (!value.empty()) writer_.put(std::string(name) + ":" + value);
    }

    void addProperty(const EntryProperty& property) {
        const std::string& name = property.name;
        if (name == "X-VCAL-COMPONENT") return;
        if (name.starts_with(kVCalendarPrefix)) {
            const std::string own = name.substr(kVCalendarPrefix.size());
            // Texts of vCalendar 1.0 come back as they were.
            line(own, parametersToVCalendar(property.parameters), property.value());
        } else if (name == "STATUS") {
            addStatus(property);
        } else if (name == "TRANSP") {
            if (ownTransparency_) return;
            line(name, parametersToVCalendar(property.parameters),
                 equalsIgnoreCase(property.value(), "TRANSPARENT") ? "1" : "0");
        } else if (name == "GEO") {
            addPosition(property);
        } else if (name == "ATTENDEE") {
            addAttendee(property);
        } else if (name == "ATTACH") {
            addAttachment(property);
        } else if (property.type == EntryProperty::Type::TextList) {
            addList(property);
        } else if (isVCalendarName(name) || name.starts_with("X-")) {
            const bool escape = property.type == EntryProperty::Type::Text && isVCalendarName(name);
            line(name, parametersToVCalendar(property.parameters),
                 escape ? escapeVCalendar(property.value(), "") : property.value());
        } else {
            line(std::string(kICalendarPrefix) + name, parametersToVCalendar(property.parameters),
                 property.value());
        }
    }

    void addList(const EntryProperty& property) {
        const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
        std::string value;
        for (const std::string& item : property.values) {
            if (!value.empty()) value += ';';
            value += escapeVCalendar(item, ";,");
            // A backslash at an item's end would swallow the semicolon behind it.
            if (item.ends_with('\\')) {
                line(property.name, parameters, value);
                value.clear();
            }
        }
        if (!value.empty()) line(property.name, parameters, value);
    }

    void addStatus(const EntryProperty& property) {
        const std::string_view own = statusToVCalendar(property.value(), entry_.kind);
        const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
        if (!own.empty()) {
            line("STATUS", parameters, own);
            return;
        }
        line("X-ICAL-STATUS", parameters, property.value());
        if (equalsIgnoreCase(property.value(), "CANCELLED"))
            tell(Severity::Warning,
                 "vCalendar 1.0 cannot say that an entry is cancelled; it is kept as X-ICAL-STATUS",
                 property.line);
    }

    void addPosition(const EntryProperty& property) {
        const std::string& value = property.value();
        const std::size_t middle = value.find(';');
        const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
        if (middle == std::string::npos) {
            line("X-ICAL-GEO", parameters, value);
        } else {
            line("GEO", parameters,
                 std::string(trimmed(value.substr(middle + 1))) + "," +
                     std::string(trimmed(value.substr(0, middle))));
        }
    }

    void addAttendee(const EntryProperty& property) {
        std::vector<Parameter> parameters;
        const std::string_view ownStatus = parameterOf(property.parameters, "X-VCAL-STATUS");
        const std::string_view ownRole = parameterOf(property.parameters, "X-VCAL-ROLE");
        std::string_view name;
        std::string_view address;
        for (const Parameter& each : property.parameters) {
            if (each.name == "CN") {
                name = each.value;
            } else if (each.name == "X-VCAL-ADDRESS") {
                address = each.value;
            } else if (each.name == "RSVP") {
                parameters.push_back({"RSVP", equalsIgnoreCase(each.value, "TRUE") ? "YES" : "NO"});
            } else if (each.name == "ROLE") {
                if (ownRole.empty()) addWord("ROLE", roleToVCalendar(each.value), each, parameters);
            } else if (each.name == "PARTSTAT") {
                if (ownStatus.empty())
                    addWord("STATUS", participationToVCalendar(each.value), each, parameters);
            } else {
                for (const Parameter& back : parametersToVCalendar({each}))
                    parameters.push_back(back);
            }
        }
        const std::string value = address.empty()
                                      ? addressToVCalendar({std::string(name), property.value()})
                                      : std::string(address);
        line("ATTENDEE", parameters, value);
    }

    static void addWord(std::string_view name, std::string_view word, const Parameter& parameter,
                        std::vector<Parameter>& parameters) {
        if (word.empty()) {
            parameters.push_back({std::string(kICalendarPrefix) + parameter.name, parameter.value});
        } else {
            parameters.push_back({std::string(name), std::string(word)});
        }
    }

    void addAttachment(const EntryProperty& property) {
        std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
        if (property.type == EntryProperty::Type::Base64) {
            parameters.push_back({"VALUE", "INLINE"});
            parameters.push_back({"ENCODING", "BASE64"});
            writer_.put(vCalendarBase64("ATTACH", parameters, property.value()));
            return;
        }
        const std::string& value = property.value();
        const bool hasValue = !parameterOf(parameters, "VALUE").empty();
        if (startsWithIgnoreCase(value, "cid:")) {
            if (!hasValue) parameters.push_back({"VALUE", "CONTENT-ID"});
            line("ATTACH", parameters, "<" + value.substr(4) + ">");
        } else {
            if (!hasValue) parameters.push_back({"VALUE", "URL"});
            line("ATTACH", parameters, value);
        }
    }

    // When the alarm rings first, on the clock of the entry.
    [[nodiscard]] std::optional<Moment> alarmMoment(const Alarm& alarm) const {
        if (alarm.at) return alarm.at;
        std::optional<Moment> anchor = entry_.start;
        if (alarm.fromEnd || !anchor) {
            const std::optional<Moment>& end =
                entry_.kind == EntryKind::Todo ? entry_.due : entry_.end;
            if (end) anchor = end;
        }
        if (!anchor) return std::nullopt;
        Moment moment = later(*anchor, alarm.offset);
        moment.isDate = false;
        return moment;
    }

    void addAlarm(const Alarm& alarm) {
        const auto when = alarmMoment(alarm);
        if (alarm.action == Alarm::Action::Other || !when) {
            tell(Severity::Warning,
                 alarm.action == Alarm::Action::Other
                     ? "vCalendar 1.0 has no alarm " + quoted(alarm.actionName) + "; it is left out"
                     : "the alarm has nothing that it could be relative to; it is left out",
                 alarm.line);
            return;
        }
        std::string lost;
        for (const EntryProperty& other : alarm.others)
            lost += (lost.empty() ? "" : ", ") + other.name;
        if (!lost.empty())
            tell(Severity::Warning, "an alarm of vCalendar 1.0 has no room for " + lost,
                 alarm.line);
        std::string value = formatMoment(*when);
        const std::string fields = alarm.fromVCalendar ? alarm.fields : writeAlarmFields(alarm);
        if (!fields.empty()) value += ";" + fields;
        const std::string name(alarmName(alarm.action));
        std::vector<Parameter> parameters = alarm.parameters;
        const bool takesUri =
            alarm.action == Alarm::Action::Audio || alarm.action == Alarm::Action::Procedure;
        if (takesUri && isUri(alarm.text) && parameterOf(parameters, "VALUE").empty())
            parameters.push_back({"VALUE", "URL"});
        const bool binary = std::any_of(
            alarm.parameters.begin(), alarm.parameters.end(),
            [](const Parameter& each) { return equalsIgnoreCase(each.value, "BASE64"); });
        if (binary) {
            // The fields before the sound stand on the first line.
            writer_.put(vCalendarBase64(name, parameters, value));
        } else {
            line(name, parameters, value);
        }
    }

    // A journal is a note of the phone: its text, and what else has a place there.
    void writeNote() {
        writer_.close();
        writer_.any_ = true;
        writer_.put("BEGIN:VNOTE");
        writer_.put("VERSION:1.1");
        if (!entry_.uid.empty()) line("UID", {}, entry_.uid);
        std::string body;
        for (const EntryProperty& each : entry_.properties)
            if (each.name == "DESCRIPTION") body += (body.empty() ? "" : "\n\n") + each.value();
        line("BODY", {}, body);
        addDates();
        addRecurrence();
        for (const EntryProperty& property : entry_.properties)
            if (property.name != "DESCRIPTION") addProperty(property);
        for (const Alarm& alarm : entry_.alarms) addAlarm(alarm);
        writer_.put("END:VNOTE");
    }

    VCalWriter& writer_;
    Entry entry_;
    bool allDay_;
    bool ownTransparency_;
};

void VCalWriter::calendar(const std::vector<EntryProperty>& properties) {
    std::vector<std::string> before;
    std::vector<std::string> now;
    for (const EntryProperty& each : header_)
        before.push_back(vCalendarLine(each.name, each.parameters, each.value()));
    for (const EntryProperty& each : properties)
        now.push_back(vCalendarLine(each.name, each.parameters, each.value()));
    headerChanged_ = headerChanged_ || before != now;
    header_ = properties;
}

void VCalWriter::open(const ZonePtr& zone, int firstYear, int lastYear) {
    const bool sameZone =
        zone_ == zone || (zone_ != nullptr && zone != nullptr && zone_->id() == zone->id());
    const bool covered = zone == nullptr || zone->sameInAllYears() ||
                         (firstYear >= firstYear_ && lastYear <= lastYear_);
    if (open_ && !headerChanged_ && sameZone && covered) return;
    close();
    put("BEGIN:VCALENDAR");
    put("VERSION:1.0");
    put("PRODID:" + std::string(kProduct));
    // Some years more, so that the entries that follow find room.
    firstYear_ = firstYear;
    lastYear_ = std::max(lastYear, firstYear + kYearsAhead);
    if (zone != nullptr)
        for (const auto& [name, value] : zone->vCalendarLines(firstYear_, lastYear_))
            put(vCalendarLine(name, {}, value));
    for (const EntryProperty& each : header_) {
        const std::string name = each.name.starts_with(kVCalendarPrefix)
                                     ? each.name.substr(kVCalendarPrefix.size())
                                 : each.name.starts_with("X-") || each.name == "GEO"
                                     ? each.name
                                     : std::string(kICalendarPrefix) + each.name;
        put(vCalendarLine(name, parametersToVCalendar(each.parameters), each.value()));
    }
    zone_ = zone;
    open_ = true;
    any_ = true;
    headerChanged_ = false;
}

void VCalWriter::close() {
    if (open_) put("END:VCALENDAR");
    open_ = false;
}

void VCalWriter::write(const Entry& entry) {
    VCalEntry(*this, entry).write();
}

void VCalWriter::finish() {
    if (!any_) open(nullptr, 0, 0);
    close();
}

}  // namespace qel::convert
