#include "base/EntryJson.h"

#include "base/NoteWords.h"

namespace qel::cli {

namespace {

Json textOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(jsonText(text));
}

Json timeOrNull(const qelcal::Entry& entry, qelcal_which_time which) {
    return entry.has(which) ? Json(entry.time(which).text()) : Json();
}

Json timesJson(const std::vector<qelcal::Time>& times) {
    Json list = Json::array();
    for (const qelcal::Time& time : times) list.push_back(time.text());
    return list;
}

Json rulesJson(const std::vector<qelcal::Rules>& all) {
    Json list = Json::array();
    for (const qelcal::Rules& rules : all)
        for (std::size_t i = 0; i < rules.count(); ++i)
            list.push_back({{"text", jsonText(rules.text(QELCAL_FORM_ICALENDAR, i))},
                            {"words", jsonText(rules.words(i))}});
    return list;
}

Json alarmsJson(const std::vector<qelcal_alarm>& alarms) {
    Json list = Json::array();
    for (const qelcal_alarm& alarm : alarms)
        list.push_back(
            {{"action", jsonText(alarm.action)},
             {"time", alarm.has_time != 0 ? Json(qelcal::Time(alarm.time).text()) : Json()},
             {"offset", alarm.has_time != 0 ? Json() : Json(qelcal::durationText(alarm.offset))},
             {"fromEnd", alarm.from_end != 0},
             {"text", textOrNull(alarm.text)}});
    return list;
}

}  // namespace

const char* kindName(qelcal_entry_kind kind) {
    if (kind == QELCAL_TODO) return "todo";
    return kind == QELCAL_JOURNAL ? "note" : "event";
}

Json noteJson(const qelcal::Note& note) {
    return {{"code", note.code},
            {"name", note.name},
            {"severity", severityName(note.severity)},
            {"fate", fateName(note.fate)},
            {"line", note.line == 0 ? Json() : Json(note.line)},
            {"text", jsonText(note.text)}};
}

Json entryJson(const qelcal::Entry& entry) {
    Json json{{"kind", kindName(entry.kind())},
              {"line", entry.line()},
              {"uid", textOrNull(entry.uid())},
              {"summary", textOrNull(entry.text("SUMMARY"))},
              {"start", timeOrNull(entry, QELCAL_START)},
              {"end", timeOrNull(entry, QELCAL_END_TIME)},
              {"due", timeOrNull(entry, QELCAL_DUE)},
              {"completed", timeOrNull(entry, QELCAL_COMPLETED)},
              {"replaces", timeOrNull(entry, QELCAL_RECURRENCE_ID)},
              {"allDay", entry.allDay()},
              {"zone", textOrNull(entry.zone())},
              {"location", textOrNull(entry.text("LOCATION"))},
              {"description", textOrNull(entry.text("DESCRIPTION"))},
              {"categories", Json::array()},
              {"rules", rulesJson(entry.rules())},
              {"excludingRules", rulesJson(entry.excluding())},
              {"dates", timesJson(entry.dates(false))},
              {"excludedDates", timesJson(entry.dates(true))},
              {"alarms", alarmsJson(entry.alarms())},
              {"messages", Json::array()}};
    for (const std::string& each : entry.values("CATEGORIES"))
        json["categories"].push_back(jsonText(each));
    for (const qelcal::Note& note : entry.notes()) json["messages"].push_back(noteJson(note));
    return json;
}

}  // namespace qel::cli
