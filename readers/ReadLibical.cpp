// Prints what libical reads of calendar files: one JSON object a file, in the form that compare.py
// explains. Usage: read_libical MOST FILE...
#include <libical/ical.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

namespace {

using Json = nlohmann::json;

// The series that have no end are looked at up to here.
constexpr int kLastYear = 2400;

std::string textOf(icaltimetype time) {
    if (icaltime_is_null_time(time)) return "";
    if (time.zone != nullptr && !time.is_date)
        time = icaltime_convert_to_zone(time, icaltimezone_get_utc_timezone());
    return icaltime_as_ical_string(time);
}

std::string orEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

struct Dates {
    icaltimetype start;
    std::set<std::string> found;
};

// The span's seconds are UTC, or, of a day or a local time, as if that were.
void takeDate(icalcomponent*, icaltime_span* span, void* data) {
    auto* dates = static_cast<Dates*>(data);
    const bool zoned = dates->start.zone != nullptr && !dates->start.is_date;
    icaltimetype time = icaltime_from_timet_with_zone(
        span->start, dates->start.is_date, zoned ? icaltimezone_get_utc_timezone() : nullptr);
    dates->found.insert(icaltime_as_ical_string(time));
}

Json datesOf(icalcomponent* entry, std::size_t most) {
    Dates dates{icalcomponent_get_dtstart(entry), {}};
    if (icaltime_is_null_time(dates.start)) return Json::array();
    const icaltimetype first = icaltime_from_string("19000101T000000Z");
    icaltimetype last = first;
    last.year = kLastYear;
    icalcomponent_foreach_recurrence(entry, first, last, takeDate, &dates);
    Json list = Json::array();
    for (const std::string& date : dates.found)
        if (list.size() < most) list.push_back(date);
    return list;
}

Json alarmsOf(icalcomponent* entry) {
    Json alarms = Json::array();
    for (icalcomponent* alarm = icalcomponent_get_first_component(entry, ICAL_VALARM_COMPONENT);
         alarm != nullptr; alarm = icalcomponent_get_next_component(entry, ICAL_VALARM_COMPONENT)) {
        icalproperty* property = icalcomponent_get_first_property(alarm, ICAL_TRIGGER_PROPERTY);
        if (property == nullptr) continue;
        const icaltriggertype trigger = icalproperty_get_trigger(property);
        alarms.push_back(icaltime_is_null_time(trigger.time)
                             ? std::to_string(icaldurationtype_as_int(trigger.duration))
                             : textOf(trigger.time));
    }
    return alarms;
}

// Without an end or a length an event ends as it starts, or with its day (RFC 5545 section 3.6.1).
icaltimetype endOf(icalcomponent* entry) {
    icaltimetype end = icalcomponent_get_dtend(entry);
    const icaltimetype start = icalcomponent_get_dtstart(entry);
    if (end.is_date && icaltime_compare(end, start) == 0) icaltime_adjust(&end, 1, 0, 0, 0);
    return end;
}

// icalcomponent_get_recurrenceid leaves out the zone.
icaltimetype recurrenceIdOf(icalcomponent* entry) {
    icalproperty* property = icalcomponent_get_first_property(entry, ICAL_RECURRENCEID_PROPERTY);
    return property == nullptr ? icaltime_null_time()
                               : icalproperty_get_datetime_with_component(property, entry);
}

Json entryOf(icalcomponent* entry, std::size_t most) {
    const auto property = [&](icalproperty_kind kind) {
        return icalcomponent_get_first_property(entry, kind);
    };
    icalproperty* due = property(ICAL_DUE_PROPERTY);
    icalproperty* completed = property(ICAL_COMPLETED_PROPERTY);
    icalproperty* percent = property(ICAL_PERCENTCOMPLETE_PROPERTY);
    const bool event = icalcomponent_isa(entry) == ICAL_VEVENT_COMPONENT;
    return {
        {"kind", icalcomponent_kind_to_string(icalcomponent_isa(entry))},
        {"uid", orEmpty(icalcomponent_get_uid(entry))},
        {"recurrence-id", textOf(recurrenceIdOf(entry))},
        {"summary", orEmpty(icalcomponent_get_summary(entry))},
        {"description", orEmpty(icalcomponent_get_description(entry))},
        {"location", orEmpty(icalcomponent_get_location(entry))},
        {"start", textOf(icalcomponent_get_dtstart(entry))},
        {"end", event ? textOf(endOf(entry)) : ""},
        {"due", due == nullptr ? "" : textOf(icalcomponent_get_due(entry))},
        {"completed", completed == nullptr ? "" : textOf(icalproperty_get_completed(completed))},
        {"percent", percent == nullptr ? 0 : icalproperty_get_percentcomplete(percent)},
        {"alarms", alarmsOf(entry)},
        {"dates", datesOf(entry, most)}};
}

void readComponents(icalcomponent* parent, std::size_t most, Json& file) {
    for (icalcomponent* each = icalcomponent_get_first_component(parent, ICAL_ANY_COMPONENT);
         each != nullptr; each = icalcomponent_get_next_component(parent, ICAL_ANY_COMPONENT)) {
        const icalcomponent_kind kind = icalcomponent_isa(each);
        if (kind == ICAL_VCALENDAR_COMPONENT) readComponents(each, most, file);
        if (kind == ICAL_VEVENT_COMPONENT || kind == ICAL_VTODO_COMPONENT ||
            kind == ICAL_VJOURNAL_COMPONENT)
            file["entries"].push_back(entryOf(each, most));
    }
}

void noteErrors(icalcomponent* parent, Json& file) {
    for (icalproperty* each = icalcomponent_get_first_property(parent, ICAL_XLICERROR_PROPERTY);
         each != nullptr; each = icalcomponent_get_next_property(parent, ICAL_XLICERROR_PROPERTY))
        file["errors"].push_back(orEmpty(icalproperty_get_xlicerror(each)));
    for (icalcomponent* each = icalcomponent_get_first_component(parent, ICAL_ANY_COMPONENT);
         each != nullptr; each = icalcomponent_get_next_component(parent, ICAL_ANY_COMPONENT))
        noteErrors(each, file);
}

}  // namespace

int main(int count, char** arguments) {
    const std::size_t most = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 50;
    for (int each = 2; each < count; ++each) {
        std::ifstream stream(arguments[each], std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        Json file{{"file", arguments[each]}, {"errors", Json::array()}, {"entries", Json::array()}};
        icalcomponent* root = icalparser_parse_string(text.c_str());
        if (root == nullptr) {
            file["errors"].push_back("no calendar");
        } else {
            // A root of its own, whether the file holds one calendar or several.
            icalcomponent* whole = icalcomponent_new(ICAL_XROOT_COMPONENT);
            icalcomponent_add_component(whole, root);
            icalrestriction_check(root);
            readComponents(whole, most, file);
            if (icalcomponent_isa(root) == ICAL_XROOT_COMPONENT) readComponents(root, most, file);
            noteErrors(whole, file);
            icalcomponent_free(whole);
        }
        std::cout << file.dump() << "\n";
    }
}
