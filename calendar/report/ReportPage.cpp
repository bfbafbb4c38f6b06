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
// With more months than these they are shown below an entry's text and not beside it.
constexpr std::size_t kMonthsBeside = 2;
// A longer list of files is folded away at first.
constexpr std::size_t kMostFilesShown = 20;
constexpr std::size_t kLongestTitle = 200;
// Bytes of an entry's article beside its lines.
constexpr std::size_t kUsualArticle = 4096;

// `file` is its number where the item is not among those of the file itself.
void addNoteItem(std::string& text, const Note& note, std::size_t file = 0) {
    text.append("<li class=");
    text += note.fate() == Fate::Lost ? "gone" : severityName(note.severity());
    text += '>';
    addHtml(text, note.text());
    if (note.line == 0 && file == 0) return;
    text += " <span class=soft>(";
    if (file != 0) {
        text.append("<a href='#f").append(std::to_string(file)).append("'><bdi>");
        addHtml(text, note.file);
        text += note.line == 0 ? "</bdi></a>" : "</bdi></a>, ";
    }
    if (note.line != 0) text.append("line ").append(std::to_string(note.line));
    text += ")</span>";
}

void addNoteList(std::string& text, const NoteList& notes, const std::vector<std::string>& kept) {
    if (notes.shown.empty() && kept.empty()) return;
    text += "<ul class=told>";
    for (const Note& each : notes.shown) addNoteItem(text, each);
    if (notes.more != 0)
        text += "<li class=note>" + counted(notes.more, "more message", "more messages");
    if (!kept.empty()) {
        text += "<li class=note>Kept for the way back: ";
        for (const std::string& name : kept) {
            text += &name == &kept.front() ? "<code>" : ", <code>";
            addHtml(text, name);
            text += "</code>";
        }
    }
    text += "</ul>";
}

void addRule(std::string& text, const RuleFacts& rule) {
    text.append("<li><div class=say>").append(rule.exclude ? "except " : "");
    addHtml(text, rule.sentence);
    text += "</div><dl class=texts><dt>vCalendar<dd>";
    for (const std::string& each : rule.vCalendar) {
        text += &each == &rule.vCalendar.front() ? "<code>" : "<br><code>";
        addHtml(text, each);
        text += "</code>";
    }
    if (rule.vCalendar.empty()) {
        text += "<span class=soft>none: ";
        addHtml(text, rule.whyNot);
        text += "</span>";
    }
    text += "<dt>iCalendar<dd><code>";
    addHtml(text, rule.iCalendar);
    text += "</code></dl>";
}

void addRuleList(std::string& text, const EntryFacts& facts) {
    if (facts.rules.empty() && facts.furtherDates == 0 && facts.exclusions == 0) return;
    text += "<ul class=rule>";
    for (const RuleFacts& rule : facts.rules) addRule(text, rule);
    std::string dates;
    if (facts.furtherDates != 0)
        dates = counted(facts.furtherDates, "date", "dates") + " more on a list";
    if (facts.exclusions != 0)
        dates += (dates.empty() ? "" : ", ") +
                 counted(facts.exclusions, "date taken out", "dates taken out");
    if (!dates.empty()) text.append("<li>").append(dates);
    text += "</ul>";
}

enum class State { Fine, Changed, Lost };

State stateOf(const ReportEntry& entry) {
    const std::vector<Note>& shown = entry.notes.shown;
    if (std::any_of(shown.begin(), shown.end(),
                    [](const Note& each) { return each.fate() == Fate::Lost; }))
        return State::Lost;
    return shown.empty() ? State::Fine : State::Changed;
}

void addBeforeAndAfter(std::string& text, const ReportEntry& entry) {
    if (entry.after.empty() && entry.before.empty()) return;
    text += "<details><summary>Before and after</summary><div class=sides><div><h4>";
    text += "In the file</h4><pre>";
    if (entry.before.empty()) text += "not at hand";
    addHtmlLines(text, entry.before);
    text += "</pre></div><div><h4>In the result</h4><pre>";
    addHtmlLines(text, entry.after);
    text += "</pre></div></div>";
    if (entry.cut) text += "<p class=soft>The first lines of a long entry.";
    text += "</details>";
}

void addTitle(std::string& text, const EntryFacts& facts) {
    text += "<bdi>";
    if (facts.title.empty())
        text += "<span class=soft>without a title</span>";
    else
        addHtml(text, facts.title, kLongestTitle);
    text += "</bdi>";
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
           (totals.leftOut == 0 ? "" : tile("Files left out", totals.leftOut, "bad")) + "</dl>";
}

// Mostly the reason begins with the file's name.
std::string_view reasonOf(const FileOutcome& file) {
    const std::string_view reason = file.reason;
    const std::size_t name = file.file.size();
    const bool named = reason.starts_with(file.file) && reason.substr(name).starts_with(": ");
    return named ? reason.substr(name + 2) : reason;
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

std::string filesLeftOut(const std::vector<FileOutcome>& files) {
    std::string text;
    std::size_t count = 0;
    for (const FileOutcome& file : files) {
        if (file.reason.empty() || ++count > kMostFilesShown) continue;
        text += "<li class=gone><bdi>" + html(file.file) + "</bdi>: " + html(reasonOf(file));
    }
    if (text.empty()) return text;
    if (count > kMostFilesShown)
        text += "<li class=note>" + counted(count - kMostFilesShown, "more file", "more files") +
                " below";
    return "<h2>Files left out</h2><div class=about><ul class=told>" + text + "</ul></div>\n";
}

std::string lookFirst(const std::vector<NoteGroup>& groups) {
    if (groups.empty()) return {};
    std::string text = "<h2>What to look at first</h2><div class=about><ul class=told>";
    std::size_t shown = 0;
    for (const NoteGroup& group : groups) {
        if (shown++ == kMostLookedAt)
            text += "</ul><details><summary>Other kinds of messages</summary><ul class=told>";
        addNoteItem(text, group.first, group.file);
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
    const std::string name = "<bdi>" + html(file.file) + "</bdi>";
    std::string text =
        "<tr><td>" +
        (file.read ? "<a href='#f" + std::to_string(number) + "'>" + name + "</a>" : name);
    if (!file.reason.empty())
        text += "<br><span class=soft>left out: " + html(reasonOf(file)) + "</span>";
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
    std::string text;
    text.reserve(kUsualArticle + 2 * (entry.before.size() + entry.after.size()));
    text.append("<article class='").append(kClasses[state]).append(serious ? " serious" : "");
    text.append("'><div><div class=kind><span>").append(facts.kind).append(", line ");
    text.append(std::to_string(entry.line)).append("</span><span class=state>");
    text.append(kWords[state]).append("</span></div><h3>");
    addTitle(text, facts);
    text += "</h3>";
    if (!facts.when.empty()) {
        text += "<p>";
        addHtml(text, facts.when);
        text += "</p>";
    }
    if (facts.alarms != 0)
        text += "<p class=soft>" + counted(facts.alarms, "alarm", "alarms") + "</p>";
    const MonthTables months =
        monthTables(facts.days.days, facts.days.more, kMostMonths, entry.weekStart);
    addRuleList(text, facts);
    addNoteList(text, entry.notes, entry.kept);
    text +=
        months.count > kMonthsBeside ? "</div><div class='grids wide'>" : "</div><div class=grids>";
    text.append(months.html).append("</div>");
    addBeforeAndAfter(text, entry);
    text += "</article>\n";
    return text;
}

std::string entryLine(const ReportEntry& entry) {
    const EntryFacts& facts = entry.facts;
    std::string text = "<p class='fine one'>";
    addTitle(text, facts);
    text += " <span class=soft>";
    addHtml(text, facts.when);
    text.append(facts.when.empty() ? "" : ", ").append(facts.kind).append(", line ");
    return text.append(std::to_string(entry.line)).append("</span></p>\n");
}

std::string fileEnd(const NoteList& notes) {
    std::string text;
    if (!notes.shown.empty()) {
        // The filters show a file without entries of their kind for its own messages of that kind.
        const auto any = [&](auto fits) {
            return std::any_of(notes.shown.begin(), notes.shown.end(), fits);
        };
        const bool serious =
            any([](const Note& each) { return each.severity() != Severity::Note; });
        const bool lost = any([](const Note& each) { return each.fate() == Fate::Lost; });
        text = std::string("<div class='about") + (serious ? " serious" : "") +
               (lost ? " lost" : "") + "'><p class=soft>About the file itself</p>";
        addNoteList(text, notes, {});
        text += "</div>";
    }
    return text + "</section>\n";
}

std::string pageEnd(bool importable) {
    const char* import =
        "<p>To bring the result into a calendar. Google Calendar: Settings, Import &amp; export, "
        "on "
        "a computer. Apple Calendar: File, Import. Thunderbird: the menu, Import, Calendar. "
        "Outlook: File, Open &amp; Export, Import/Export. Take a new calendar for it: that can be "
        "removed again as a whole.</p>";
    return std::string("</div></main><footer>") + (importable ? import : "") +
           "<p>Converted: the entry is in the result. Changed: a message says "
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
