#include "calendar/report/Outcome.h"

#include "base/Json.h"

namespace qel::calendar {

namespace {

std::string counted(std::uint64_t number, const std::string& one, const std::string& many) {
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

cli::Json countsJson(const OutcomeCounts& counts) {
    return {{"entries", counts.entries}, {"converted", counts.converted},
            {"changed", counts.changed}, {"warnings", counts.warnings},
            {"errors", counts.errors},   {"notCarriedOver", counts.lost}};
}

}  // namespace

void OutcomeCounts::add(const OutcomeCounts& other) {
    entries += other.entries;
    converted += other.converted;
    changed += other.changed;
    warnings += other.warnings;
    errors += other.errors;
    lost += other.lost;
}

void Totals::add(const FileOutcome& file) {
    ++files;
    if (!file.reason.empty()) ++leftOut;
    counts.add(file.counts);
}

std::string summaryText(const Totals& totals) {
    const OutcomeCounts& counts = totals.counts;
    std::string text = counted(totals.files, "file", "files");
    if (totals.leftOut != 0) text += " (" + std::to_string(totals.leftOut) + " left out)";
    return text + ", " + counted(counts.entries, "entry", "entries") + ": " +
           std::to_string(counts.converted) + " converted, " + std::to_string(counts.changed) +
           " changed, " + counted(counts.warnings, "warning", "warnings") + ", " +
           counted(counts.errors, "error", "errors") + ", " + std::to_string(counts.lost) +
           " not carried over";
}

cli::Json summaryJson(const Totals& totals) {
    cli::Json json{{"files", totals.files}, {"filesLeftOut", totals.leftOut}};
    json.update(countsJson(totals.counts));
    return json;
}

cli::Json outcomeJson(const FileOutcome& file) {
    cli::Json json{
        {"file", cli::jsonText(file.file)},
        {"output", file.output.empty() ? cli::Json() : cli::Json(cli::jsonText(file.output))},
        {"leftOut", file.reason.empty() ? cli::Json() : cli::Json(cli::jsonText(file.reason))}};
    json.update(countsJson(file.counts));
    json["messages"] = cli::Json::array();
    for (const Note& each : file.messages)
        json["messages"].push_back({{"severity", severityName(each.severity())},
                                    {"line", each.line == 0 ? cli::Json() : cli::Json(each.line)},
                                    {"text", cli::jsonText(each.text())},
                                    {"notCarriedOver", each.fate() == Fate::Lost}});
    return json;
}

void Tally::beginFile(std::string name) {
    file_ = {};
    file_.file = std::move(name);
}

void Tally::hear(const Note& message, bool keep) {
    if (message.severity() == Severity::Warning) ++file_.counts.warnings;
    if (message.severity() == Severity::Error) ++file_.counts.errors;
    if (message.fate() == Fate::Lost) ++file_.counts.lost;
    if (keep) file_.messages.push_back(message);
}

void Tally::entryConverted(const ConvertedEntry& converted) {
    ++file_.counts.entries;
    ++file_.counts.converted;
    if (!converted.notes.empty()) ++file_.counts.changed;
}

}  // namespace qel::calendar
