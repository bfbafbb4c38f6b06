#include "commands/ConvertSummary.h"

#include <algorithm>
#include <cstdint>

#include "base/EntryJson.h"

namespace qel::cli {

namespace {

std::string counted(std::uint64_t number, const std::string& one, const std::string& many) {
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

struct Totals {
    std::uint64_t leftOut = 0;
    std::uint64_t converted = 0;
    qelcal_counts counts{};
};

Totals totalsOf(const std::vector<FileOutcome>& files) {
    Totals totals;
    for (const FileOutcome& file : files) {
        if (!file.reason.empty()) ++totals.leftOut;
        totals.converted += file.converted();
        totals.counts.entries += file.counts.entries;
        totals.counts.changed += file.counts.changed;
        totals.counts.warnings += file.counts.warnings;
        totals.counts.errors += file.counts.errors;
        totals.counts.lost += file.counts.lost;
    }
    return totals;
}

Json countsJson(const qelcal_counts& counts, std::uint64_t converted) {
    return {{"entries", counts.entries}, {"converted", converted},
            {"changed", counts.changed}, {"warnings", counts.warnings},
            {"errors", counts.errors},   {"notCarriedOver", counts.lost}};
}

Json textOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(jsonText(text));
}

std::uint64_t contactsIn(const std::vector<OtherFile>& others) {
    return static_cast<std::uint64_t>(std::count_if(
        others.begin(), others.end(),
        [](const OtherFile& each) { return each.kind == OtherFile::Kind::Contact; }));
}

}  // namespace

void FileOutcome::take(const qelcal_note* note, bool verbose) {
    if (!verbose && qelcal_note_severity(note) == QELCAL_NOTE) {
        ++hidden;
        return;
    }
    const auto group = std::find_if(shown.begin(), shown.end(), [&](const NoteGroup& each) {
        return !verbose && each.first.code == qelcal_note_code_of(note);
    });
    if (group == shown.end()) {
        shown.push_back({qelcal::Note(note), 1});
    } else {
        ++group->count;
        ++hidden;
    }
}

qelcal_counts difference(const qelcal_counts& after, const qelcal_counts& before) {
    return {after.calendars - before.calendars,
            after.entries - before.entries,
            after.alarms - before.alarms,
            after.changed - before.changed,
            after.warnings - before.warnings,
            after.errors - before.errors,
            after.lost - before.lost};
}

std::string summaryText(const std::vector<FileOutcome>& files) {
    const Totals totals = totalsOf(files);
    const qelcal_counts& counts = totals.counts;
    std::string text = counted(files.size(), "file", "files");
    if (totals.leftOut != 0) text += " (" + std::to_string(totals.leftOut) + " left out)";
    return text + ", " + counted(counts.entries, "entry", "entries") + ": " +
           std::to_string(totals.converted) + " converted, " + std::to_string(counts.changed) +
           " changed, " + counted(counts.warnings, "warning", "warnings") + ", " +
           counted(counts.errors, "error", "errors") + ", " + std::to_string(counts.lost) +
           " not carried over";
}

std::string othersText(const std::vector<OtherFile>& others) {
    const std::uint64_t contacts = contactsIn(others);
    std::string text = counted(others.size(), "other file", "other files");
    if (contacts == 0) return text;
    return text + " (" +
           counted(contacts, "contact, which address books import as it is",
                   "contacts, which address books import as they are") +
           ")";
}

Json summaryJson(const std::vector<FileOutcome>& files, const std::vector<OtherFile>& others) {
    const Totals totals = totalsOf(files);
    Json json{{"files", files.size()},
              {"filesLeftOut", totals.leftOut},
              {"otherFiles", others.size()},
              {"contacts", contactsIn(others)}};
    json.update(countsJson(totals.counts, totals.converted));
    return json;
}

Json outcomeJson(const FileOutcome& file) {
    Json json{{"file", jsonText(file.file)},
              {"output", textOrNull(file.output)},
              {"leftOut", textOrNull(file.reason)}};
    json.update(countsJson(file.counts, file.converted()));
    json["entryList"] = file.entryList;
    json["messages"] = Json::array();
    for (const auto& [note, count] : file.shown) {
        Json message = noteJson(note);
        message["count"] = count;
        message["notCarriedOver"] = note.fate == QELCAL_LOST;
        json["messages"].push_back(message);
    }
    return json;
}

}  // namespace qel::cli
