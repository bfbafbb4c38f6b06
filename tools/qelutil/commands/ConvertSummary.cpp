#include "commands/ConvertSummary.h"

#include <cstdint>

namespace qel::cli {

namespace {

std::string counted(std::uint64_t number, const std::string& one, const std::string& many) {
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

Json countsJson(const calendar::OutcomeCounts& counts) {
    return {{"entries", counts.entries}, {"converted", counts.converted},
            {"changed", counts.changed}, {"warnings", counts.warnings},
            {"errors", counts.errors},   {"notCarriedOver", counts.lost}};
}

Json textOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(jsonText(text));
}

}  // namespace

std::string summaryText(const calendar::Totals& totals) {
    const calendar::OutcomeCounts& counts = totals.counts;
    std::string text = counted(totals.files, "file", "files");
    if (totals.leftOut != 0) text += " (" + std::to_string(totals.leftOut) + " left out)";
    return text + ", " + counted(counts.entries, "entry", "entries") + ": " +
           std::to_string(counts.converted) + " converted, " + std::to_string(counts.changed) +
           " changed, " + counted(counts.warnings, "warning", "warnings") + ", " +
           counted(counts.errors, "error", "errors") + ", " + std::to_string(counts.lost) +
           " not carried over";
}

Json summaryJson(const calendar::Totals& totals) {
    Json json{{"files", totals.files}, {"filesLeftOut", totals.leftOut}};
    json.update(countsJson(totals.counts));
    return json;
}

Json outcomeJson(const calendar::FileOutcome& file, const std::vector<calendar::Note>& shown) {
    Json json{{"file", jsonText(file.file)},
              {"output", textOrNull(file.output)},
              {"leftOut", textOrNull(file.reason)}};
    json.update(countsJson(file.counts));
    json["messages"] = Json::array();
    for (const calendar::Note& each : shown)
        json["messages"].push_back({{"severity", severityName(each.severity())},
                                    {"line", each.line == 0 ? Json() : Json(each.line)},
                                    {"text", jsonText(each.text())},
                                    {"notCarriedOver", each.fate() == calendar::Fate::Lost}});
    return json;
}

}  // namespace qel::cli
