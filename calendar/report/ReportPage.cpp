#include "calendar/report/ReportPage.h"

#include <algorithm>
#include <string_view>

#include "calendar/report/Html.h"
#include "calendar/report/MonthTables.h"
#include "calendar/report/PageScript.h"
#include "calendar/report/PageStyle.h"
#include "calendar/zones/WorldZones.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kMostNotes = 50;
// Kinds of messages at the top; the others are folded away at first.
constexpr std::size_t kMostLookedAt = 3;
constexpr std::size_t kMostMonths = 5;  // in a row on a wide screen
// With more months than these they are shown below an entry's text and not beside it.
constexpr std::size_t kMonthsBeside = 2;
// A longer list of files is folded away at first.
constexpr std::size_t kMostFilesShown = 20;
constexpr std::size_t kLongestTitle = 200;

// `file` is its number where the item is not among those of the file itself.
std::string noteItem(const Note& note, std::size_t file = 0) {
    const std::string_view kind =
        note.fate() == Fate::Lost ? "gone" : severityName(note.severity());
    std::string text = "<li class=" + std::string(kind) + ">" + html(note.text());
    std::string place = note.line == 0 ? "" : "line " + std::to_string(note.line);
    if (file != 0)
        place = "<a href='#f" + std::to_string(file) + "'><bdi>" + html(note.file) + "</bdi></a>" +
                (place.empty() ? "" : ", ") + place;
    if (!place.empty()) text += " <span class=soft>(" + place + ")</span>";
    return text;
}

std::string noteList(const NoteList& notes, const std::vector<std::string>& kept) {
    if (notes.shown.empty() && kept.empty()) return {};
    std::string text = "<ul class=told>";
    for (const Note& each : notes.shown) text += noteItem(each);
    if (notes.more != 0)
        text += "<li class=note>" + counted(notes.more, "more message", "more messages");
    if (!kept.empty()) {
        text += "<li class=note>Kept for the way back: ";
        for (const std::string& name : kept)
            text += (&name == &kept.front() ? "<code>" : ", <code>") + html(name) + "</code>";
    }
    return text + "</ul>";
}

std::string ruleList(const EntryFacts& facts) {
    std::string text;
    for (const RuleFacts& rule : facts.rules) {
        text += std::string("<li><div class=say>") + (rule.exclude ? "except " : "") +
                html(rule.sentence) + "</div><dl class=texts><dt>vCalendar<dd>";
        for (const std::string& each : rule.vCalendar)
            text += (&each == &rule.vCalendar.front() ? "<code>" : "<br><code>") + html(each) +
                    "</code>";
        if (rule.vCalendar.empty())
            text += "<span class=soft>none: " + html(rule.whyNot) + "</span>";
        text += "<dt>iCalendar<dd><code>" + html(rule.iCalendar) + "</code></dl>";
    }
    std::string dates;
    if (facts.furtherDates != 0)
        dates = counted(facts.furtherDates, "date", "dates") + " more on a list";
    if (facts.exclusions != 0)
        dates += (dates.empty() ? "" : ", ") +
                 counted(facts.exclusions, "date taken out", "dates taken out");
    if (!dates.empty()) text += "<li>" + dates;
    return text.empty() ? text : "<ul class=rule>" + text + "</ul>";
}

enum class State { Fine, Changed, Lost };

State stateOf(const ReportEntry& entry) {
    const std::vector<Note>& shown = entry.notes.shown;
    if (std::any_of(shown.begin(), shown.end(),
                    [](const Note& each) { return each.fate() == Fate::Lost; }))
        return State::Lost;
    return shown.empty() ? State::Fine : State::Changed;
}

std::string beforeAndAfter(const ReportEntry& entry) {
    if (entry.after.empty() && entry.before.empty()) return {};
    std::string text = "<details><summary>Before and after</summary><div class=sides><div><h4>";
    text += "In the file</h4><pre>" +
            (entry.before.empty() ? "not at hand" : htmlLines(entry.before)) +
            "</pre></div><div><h4>In the result</h4><pre>" + htmlLines(entry.after) +
            "</pre></div></div>";
    if (entry.cut) text += "<p class=soft>The first lines of a long entry.";
    return text + "</details>";
}

std::string tile(const char* label, std::uint64_t number, const char* emphasis) {
    return std::string("<div class=") + (number == 0 ? "none" : emphasis) + "><dt>" + label +
           "<dd>" + std::to_string(number) + "</div>";
}

std::string tiles(const Totals& totals) {
    const OutcomeCounts& counts = totals.counts;
    return "<dl class=tiles>" + tile("Files", totals.files, "some") +
           tile("Entries", counts.entries, "some") + tile("Converted", counts.converted, "some") +
           tile("Changed", counts.changed, "warn") + tile("Warnings", counts.warnings, "warn") +
           tile("Errors", counts.errors, "bad") + tile("Not carried over", counts.lost, "bad") +
           "</dl>";
}

std::string countCell(std::uint64_t value) {
    return std::string("<td class='n") + (value == 0 ? " zero'>" : "'>") + std::to_string(value);
}

}  // namespace

void NoteList::add(const Note& note) {
    if (shown.size() < kMostNotes)
        shown.push_back(note);
    else
        ++more;
}

void NoteList::add(const NoteList& others) {
    for (const Note& each : others.shown) add(each);
    more += others.more;
}

std::string pageBegin(const std::string& remark, const Totals& totals) {
    std::string text =
        "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8>\n"
        "<meta name=viewport content='width=device-width,initial-scale=1'>\n"
        "<meta http-equiv=Content-Security-Policy content=\"default-src 'none'; style-src "
        "'unsafe-inline'; script-src '";
    text += kPageScriptDigest;
    text += "'\">\n<title>Conversion report</title><style>";
    text += kPageStyle;
    text += "</style></head>\n<body><header><h1>Conversion report</h1>";
    if (!remark.empty()) text += "<p class=sub>" + html(remark) + "</p>";
    return text + tiles(totals) + "</header>\n<main>\n";
}

std::string lookFirst(const std::vector<NoteGroup>& groups) {
    if (groups.empty()) return {};
    std::string text = "<h2>What to look at first</h2><div class=about><ul class=told>";
    std::size_t shown = 0;
    for (const NoteGroup& group : groups) {
        if (shown++ == kMostLookedAt)
            text += "</ul><details><summary>Other kinds of messages</summary><ul class=told>";
        text += noteItem(group.first, group.file);
        if (group.count > 1) text += " and " + std::to_string(group.count - 1) + " more like it";
        const NoteKind& kind = noteKind(group.first.code);
        text += "<p class=soft>" + html(kind.meaning) + " " + html(kind.advice) + "</p>";
    }
    return text + (shown > kMostLookedAt ? "</ul></details></div>\n" : "</ul></div>\n");
}

std::string filesBegin(const Totals& totals) {
    std::string text = "<h2>Files</h2>";
    text += totals.files > kMostFilesShown ? "<details class=list>" : "<details class=list open>";
    return text +
           "<summary>What became of each</summary><div class=scroll><table "
           "class=files><tr><th>File<th class=n>Entries"
           "<th class=n>Converted<th class=n>Changed<th class=n>Warnings<th class=n>Errors<th "
           "class=n>Not carried over\n";
}

std::string fileRow(std::size_t number, const FileOutcome& file) {
    std::string text =
        "<tr><td><a href='#f" + std::to_string(number) + "'><bdi>" + html(file.file) + "</bdi></a>";
    if (!file.reason.empty())
        text += "<br><span class=soft>left out: " + html(file.reason) + "</span>";
    if (!file.output.empty())
        text += "<br><span class=soft>to <bdi>" + html(file.output) + "</bdi></span>";
    const OutcomeCounts& counts = file.counts;
    return text + countCell(counts.entries) + countCell(counts.converted) +
           countCell(counts.changed) + countCell(counts.warnings) + countCell(counts.errors) +
           countCell(counts.lost) + "\n";
}

std::string entriesBegin() {
    return "</table></div></details>\n"
           "<p class=find hidden><label for=find>Search the entries</label> <input type=search "
           "id=find> <output id=found for=find></output></p>\n"
           "<input class=pick type=radio name=show id=all checked><label for=all>All "
           "entries</label>"
           "<input class=pick type=radio name=show id=some><label for=some>With changes</label>"
           "<input class=pick type=radio name=show id=bad><label for=bad>With warnings</label>"
           "<input class=pick type=radio name=show id=few><label for=few>Not all carried "
           "over</label>\n<div id=entries>\n";
}

std::string fileBegin(std::size_t number, const std::string& name) {
    return "<section id=f" + std::to_string(number) + "><h2><bdi>" + html(name) + "</bdi></h2>\n";
}

std::string entryArticle(const ReportEntry& entry) {
    static constexpr const char* kClasses[] = {"fine", "changed", "lost"};
    static constexpr const char* kWords[] = {"converted", "changed", "not all carried over"};
    const auto state = static_cast<std::size_t>(stateOf(entry));
    const EntryFacts& facts = entry.facts;
    const std::vector<Note>& notes = entry.notes.shown;
    const bool serious = std::any_of(notes.begin(), notes.end(), [](const Note& each) {
        return each.severity() != Severity::Note;
    });
    std::string text = std::string("<article class='") + kClasses[state] +
                       (serious ? " serious" : "") + "'><div><div class=kind><span>" + facts.kind +
                       ", line " + std::to_string(entry.line) + "</span><span class=state>" +
                       kWords[state] + "</span></div><h3><bdi>" +
                       (facts.title.empty() ? "<span class=soft>without a title</span>"
                                            : html(facts.title, kLongestTitle)) +
                       "</bdi></h3>";
    if (!facts.when.empty()) text += "<p>" + html(facts.when) + "</p>";
    if (facts.alarms != 0)
        text += "<p class=soft>" + counted(facts.alarms, "alarm", "alarms") + "</p>";
    const MonthTables months =
        monthTables(facts.days.days, facts.days.more, kMostMonths, entry.weekStart);
    text += ruleList(facts) + noteList(entry.notes, entry.kept) +
            (months.count > kMonthsBeside ? "</div><div class='grids wide'>"
                                          : "</div><div class=grids>") +
            months.html + "</div>" + beforeAndAfter(entry) + "</article>\n";
    return text;
}

std::string entryLine(const ReportEntry& entry) {
    const EntryFacts& facts = entry.facts;
    return "<p class='fine one'><bdi>" +
           (facts.title.empty() ? "<span class=soft>without a title</span>"
                                : html(facts.title, kLongestTitle)) +
           "</bdi> <span class=soft>" + html(facts.when) + (facts.when.empty() ? "" : ", ") +
           facts.kind + ", line " + std::to_string(entry.line) + "</span></p>\n";
}

std::string fileEnd(const NoteList& notes) {
    std::string text;
    if (!notes.shown.empty())
        text = "<div class=about><p class=soft>About the file itself</p>" + noteList(notes, {}) +
               "</div>";
    return text + "</section>\n";
}

std::string pageEnd() {
    return "</div></main><footer><p>Converted: the entry is in the result. Changed: a message says "
           "what "
           "was corrected or kept under another name. Not carried over: part of the entry is "
           "missing from the result.</p><p>In the months, days on which an entry takes place are "
           "filled, and days excluded from its series are struck through. The first " +
           std::to_string(kMostMonths) +
           " months of a series are shown.</p><p>Time zones by name are those of the IANA "
           "database, "
           "version " +
           html(worldZoneVersion()) + ".</p></footer><script>" + kPageScript +
           "</script></body></html>\n";
}

}  // namespace qel::calendar
