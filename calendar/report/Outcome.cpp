#include "calendar/report/Outcome.h"

#include <utility>

namespace qel::calendar {

void OutcomeCounts::add(const OutcomeCounts& other) {
    entries += other.entries;
    converted += other.converted;
    changed += other.changed;
    warnings += other.warnings;
    errors += other.errors;
    lost += other.lost;
}

void Tally::beginFile(std::string name) {
    files_.emplace_back().file = std::move(name);
}

void Tally::note(const Note& note) {
    OutcomeCounts& counts = files_.back().counts;
    if (note.severity() == Severity::Warning) ++counts.warnings;
    if (note.severity() == Severity::Error) ++counts.errors;
    if (note.fate() == Fate::Lost) ++counts.lost;
}

void Tally::entryConverted(const ConvertedEntry& converted) {
    OutcomeCounts& counts = files_.back().counts;
    ++counts.entries;
    ++counts.converted;
    if (!converted.notes.empty()) ++counts.changed;
}

void Tally::settle(std::size_t file, std::string output, std::string reason) {
    FileOutcome& outcome = files_[file];
    outcome.output = std::move(output);
    outcome.reason = std::move(reason);
    if (!outcome.reason.empty()) outcome.counts.converted = 0;
}

Totals Tally::totals() const {
    Totals totals;
    for (const FileOutcome& file : files_) {
        ++totals.files;
        if (!file.reason.empty()) ++totals.leftOut;
        totals.counts.add(file.counts);
    }
    return totals;
}

}  // namespace qel::calendar
