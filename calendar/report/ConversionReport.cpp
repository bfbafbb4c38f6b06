#include "calendar/report/ConversionReport.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "calendar/converter/SourceLines.h"
#include "calendar/entries/Entry.h"

namespace qel::calendar {

namespace {

// Bytes of an entry's text that are shown, on each side.
constexpr std::size_t kMostText = 4000;
constexpr std::size_t kMostNames = 50;
// After so many entries, those without a message are a line each.
constexpr std::size_t kMostArticles = 2000;

// The first lines of an entry's bytes, each ended by "\n" alone.
std::string plainLines(std::string_view bytes) {
    std::string text;
    text.reserve(std::min(bytes.size(), kMostText) + 1);
    while (!bytes.empty() && text.size() <= kMostText) {
        std::size_t end = std::min(findLineEnd(bytes, 0), bytes.size());
        text.append(bytes.substr(0, end)).append("\n");
        while (end < bytes.size() && bytes[end] == '\r') ++end;
        if (end < bytes.size() && bytes[end] == '\n') ++end;
        bytes.remove_prefix(end);
    }
    return text;
}

// The first lines of a text.
std::string firstLines(std::string_view text, bool& cut) {
    if (text.size() <= kMostText) return std::string(text);
    cut = true;
    return std::string(text.substr(0, text.find('\n', kMostText) + 1));
}

// The names of lines of `after` that keep what its format lacks, and that `before` does not have.
std::vector<std::string> keptNames(std::string_view after, std::string_view before) {
    std::vector<std::string> names;
    while (!after.empty() && names.size() < kMostNames) {
        const std::size_t end = after.find('\n');
        const std::string_view line = after.substr(0, end);
        after.remove_prefix(end == std::string_view::npos ? after.size() : end + 1);
        if (!line.starts_with(kVCalendarPrefix) && !line.starts_with(kICalendarPrefix)) continue;
        std::string name(line.substr(0, line.find_first_of(";:")));
        if (before.find("\n" + name) == std::string_view::npos &&
            std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

}  // namespace

std::unique_ptr<ConversionReport> ConversionReport::partOf(const ConversionReport& whole) {
    auto part = std::make_unique<ConversionReport>(nullptr);
    part->weekStart_ = whole.weekStart_;
    part->articles_ = whole.articles_.load();
    return part;
}

void ConversionReport::beginFile(const std::string& name) {
    tally_.beginFile(name);
    pending_ = {};
    ofFile_ = {};
    put(Held::What::File, name);
}

void ConversionReport::note(const Note& note) {
    tally_.note(note);
    pending_.add(note);
}

void ConversionReport::entryConverted(const ConvertedEntry& converted) {
    tally_.entryConverted(converted);
    ReportEntry entry;
    for (const Note& each : converted.notes) entry.notes.add(each);
    entry.notes.more += converted.moreNotes;
    // Notes about earlier lines are about the calendar, or about an entry that was left out.
    const NoteList since = std::exchange(pending_, {});
    NoteList others;
    for (const Note& each : since.shown)
        if (each.line < converted.entry.line) others.add(each);
    const std::uint64_t known = entry.notes.count() + others.count();
    others.more = since.count() - std::min(since.count(), known);
    ofFile_.add(others);
    entry.line = converted.entry.line;
    // A page of everything about everything could not be opened.
    const bool mayBeLine = entry.notes.count() == 0;
    std::string line;
    if (mayBeLine && (isPart() || articles_ >= kMostArticles)) {
        entry.facts = entryHeading(converted.entry);
        line = entryLine(entry);
        if (articles_ >= kMostArticles) return put(Held::What::Other, std::move(line));
    }
    entry.weekStart = weekStart_;
    entry.facts = entryFacts(converted);
    const std::string before = plainLines(converted.source);
    entry.kept = keptNames(converted.written, before);
    entry.before = firstLines(before, entry.cut);
    entry.after = firstLines(converted.written, entry.cut);
    put(Held::What::Article, entryArticle(entry), std::move(line));
}

void ConversionReport::endFile() {
    ofFile_.add(pending_);
    pending_ = {};
    put(Held::What::Other, fileEnd(ofFile_));
}

void ConversionReport::put(Held::What what, std::string text, std::string line) {
    if (what == Held::What::Article) ++articles_;
    if (isPart())
        held_.push_back({what, std::move(text), std::move(line)});
    else
        body_(what == Held::What::File ? fileBegin(tally_.files().size(), text) : text);
}

void ConversionReport::join(ConversionReport& part) {
    std::size_t file = tally_.files().size();
    tally_.join(part.tally_);
    for (Held& each : part.held_)
        if (each.what == Held::What::File)
            body_(fileBegin(++file, each.text));
        else if (!each.line.empty() && articles_ >= kMostArticles)
            body_(each.line);
        else
            put(each.what, std::move(each.text));
}

void ConversionReport::finish(const std::string& remark, const Write& head) {
    const std::vector<FileOutcome>& files = tally_.files();
    const bool importable = std::any_of(files.begin(), files.end(), [](const FileOutcome& each) {
        return each.output.ends_with(".ics");
    });
    put(Held::What::Other, pageEnd(importable));
    const Totals totals = tally_.totals();
    head(pageBegin(remark, totals));
    head(filesLeftOut(files));
    head(lookFirst(tally_.worthALook()));
    head(filesBegin(totals));
    for (std::size_t i = 0; i < files.size(); ++i) head(fileRow(i + 1, files[i]));
    head(entriesBegin());
}

}  // namespace qel::calendar
