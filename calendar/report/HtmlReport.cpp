#include "calendar/report/HtmlReport.h"

#include <algorithm>
#include <ostream>
#include <system_error>

#include "calendar/report/Html.h"
#include "calendar/report/MonthTables.h"
#include "calendar/report/PageStyle.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kMostMessages = 50;
constexpr std::size_t kMostMonths = 5;  // in a row on a wide screen
// More months than these stand below an entry's text and not beside it.
constexpr std::size_t kMonthsBeside = 2;
// A longer list of files is folded away at first.
constexpr std::size_t kMostFilesShown = 20;
constexpr std::size_t kLongestTitle = 200;

std::string messageItem(const Note& message) {
    const char* kind = (message.fate() == Fate::Lost)            ? "gone"
                       : message.severity() == Severity::Error   ? "error"
                       : message.severity() == Severity::Warning ? "warning"
                                                                 : "note";
    std::string text = std::string("<li class=") + kind + ">" + html(message.text());
    if (message.line != 0)
        text += " <span class=soft>(line " + std::to_string(message.line) + ")</span>";
    return text;
}

std::string messageList(const ReportMessages& messages, const std::vector<std::string>& kept) {
    if (messages.shown.empty() && kept.empty()) return {};
    std::string text = "<ul class=told>";
    for (const Note& each : messages.shown) text += messageItem(each);
    if (messages.more != 0)
        text += "<li class=note>" + counted(messages.more, "more message", "more messages");
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
    const auto& shown = entry.messages.shown;
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

std::string number(std::uint64_t value) {
    return std::string("<td class='n") + (value == 0 ? " zero'>" : "'>") + std::to_string(value);
}

std::string fileRow(const FileOutcome& file, std::size_t id) {
    std::string text =
        "<tr><td><a href='#f" + std::to_string(id) + "'><bdi>" + html(file.file) + "</bdi></a>";
    if (!file.reason.empty())
        text += "<br><span class=soft>left out: " + html(file.reason) + "</span>";
    if (!file.output.empty())
        text += "<br><span class=soft>to <bdi>" + html(file.output) + "</bdi></span>";
    const OutcomeCounts& counts = file.counts;
    return text + number(counts.entries) + number(counts.converted) + number(counts.changed) +
           number(counts.warnings) + number(counts.errors) + number(counts.lost) + "\n";
}

}  // namespace

void ReportMessages::add(const Note& message) {
    if (shown.size() < kMostMessages)
        shown.push_back(message);
    else
        ++more;
}

HtmlReport::HtmlReport(cli::Context& context, const std::string& name)
    : name_(name), page_(context, name) {
    bodyPath_ = cli::pathOf(name);
    bodyPath_ += ".qelutil-body";
    body_.open(bodyPath_, std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc);
    if (!body_) throw cli::InputError(name + ": cannot be written there; make its folder first");
}

HtmlReport::~HtmlReport() {
    body_.close();
    std::error_code ignored;
    std::filesystem::remove(bodyPath_, ignored);
}

void HtmlReport::put(const std::string& text) {
    body_.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!body_) throw cli::InputError(name_ + ": cannot be written; is the disk full?");
}

void HtmlReport::beginFile(const std::string& name) {
    put("<section id=f" + std::to_string(++number_) + "><h2><bdi>" + html(name) + "</bdi></h2>\n");
}

void HtmlReport::entry(const ReportEntry& entry) {
    static constexpr const char* kClasses[] = {"fine", "changed", "lost"};
    static constexpr const char* kWords[] = {"converted", "changed", "not all carried over"};
    const auto state = static_cast<std::size_t>(stateOf(entry));
    const EntryFacts& facts = entry.facts;
    std::string text = std::string("<article class=") + kClasses[state] +
                       "><div><div class=kind><span>" + facts.kind + ", line " +
                       std::to_string(entry.line) + "</span><span class=state>" + kWords[state] +
                       "</span></div><h3><bdi>" +
                       (facts.title.empty() ? "<span class=soft>without a title</span>"
                                            : html(facts.title, kLongestTitle)) +
                       "</bdi></h3>";
    if (!facts.when.empty()) text += "<p>" + html(facts.when) + "</p>";
    if (facts.alarms != 0)
        text += "<p class=soft>" + counted(facts.alarms, "alarm", "alarms") + "</p>";
    const MonthTables months = monthTables(facts.days.days, facts.days.more, kMostMonths);
    text += ruleList(facts) + messageList(entry.messages, entry.kept) +
            (months.count > kMonthsBeside ? "</div><div class='grids wide'>"
                                          : "</div><div class=grids>") +
            months.html + "</div>" + beforeAndAfter(entry) + "</article>\n";
    put(text);
}

void HtmlReport::endFile(const ReportMessages& messages) {
    std::string text;
    if (!messages.shown.empty())
        text = "<div class=about><p class=soft>About the file itself</p>" +
               messageList(messages, {}) + "</div>";
    put(text + "</section>\n");
}

void HtmlReport::finish(const std::vector<FileOutcome>& files, const Totals& totals,
                        const std::string& note) {
    std::ostream& out = page_.stream();
    out << "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8>\n"
           "<meta name=viewport content='width=device-width,initial-scale=1'>\n"
           "<meta http-equiv=Content-Security-Policy content=\"default-src 'none'; style-src "
           "'unsafe-inline'\">\n<title>Conversion report</title><style>"
        << kPageStyle << "</style></head>\n<body><header><h1>Conversion report</h1><p class=sub>"
        << html(note) << "</p>" << tiles(totals) << "</header>\n";
    out << "<h2>Files</h2>"
        << (files.size() > kMostFilesShown ? "<details class=list>" : "<details class=list open>")
        << "<summary>What became of each</summary><div class=scroll><table "
           "class=files><tr><th>File<th class=n>Entries"
           "<th class=n>Converted<th class=n>Changed<th class=n>Warnings<th class=n>Errors<th "
           "class=n>Not carried "
           "over\n";
    for (std::size_t i = 0; i < files.size(); ++i) out << fileRow(files[i], i + 1);
    out << "</table></div></details>\n"
           "<input class=pick type=radio name=show id=all checked><label for=all>All "
           "entries</label>"
           "<input class=pick type=radio name=show id=some><label for=some>With changes</label>"
           "<input class=pick type=radio name=show id=few><label for=few>Not all carried "
           "over</label>\n<main>\n";
    body_.flush();
    body_.seekg(0);
    if (number_ != 0) out << body_.rdbuf();
    out << "</main><footer><p>Converted: it stands in the result. Changed: a remark tells what of "
           "it was put in order, or is kept under another name. Not carried over: the "
           "result lacks something of it.</p><p>Days of an entry are filled, days taken out of its "
           "series are struck through. A series shows its first "
        << kMostMonths << " months.</p></footer></body></html>\n";
    if (!body_) throw cli::InputError(name_ + ": what was gathered for it cannot be read back");
    page_.commit();
}

}  // namespace qel::calendar
