#include "calendar/report/Outcome.h"

#include <algorithm>
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

void Tally::addFile(std::string name) {
    beginFile(std::move(name));
    files_.back().read = false;
}

void Tally::note(const Note& note) {
    OutcomeCounts& counts = files_.back().counts;
    const NoteKind& kind = noteKind(note.code);
    if (kind.severity == Severity::Warning) ++counts.warnings;
    if (kind.severity == Severity::Error) ++counts.errors;
    if (kind.fate == Fate::Lost) ++counts.lost;
    if (kind.severity == Severity::Note) return;
    if (NoteGroup* const known = groupOf(note.code))
        ++known->count;
    else
        groups_.push_back({note, files_.size(), 1});
}

NoteGroup* Tally::groupOf(NoteCode code) {
    const auto known = std::find_if(groups_.begin(), groups_.end(), [code](const NoteGroup& each) {
        return each.first.code == code;
    });
    return known == groups_.end() ? nullptr : &*known;
}

void Tally::join(const Tally& other) {
    const std::size_t before = files_.size();
    files_.insert(files_.end(), other.files_.begin(), other.files_.end());
    for (NoteGroup group : other.groups_) {
        group.file += before;
        if (NoteGroup* const known = groupOf(group.first.code))
            known->count += group.count;
        else
            groups_.push_back(std::move(group));
    }
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

std::vector<NoteGroup> Tally::worthALook() const {
    const auto weight = [](const Note& note) {
        return (note.fate() == Fate::Lost ? 2 : 0) + (note.severity() == Severity::Error ? 1 : 0);
    };
    std::vector<NoteGroup> order = groups_;
    std::stable_sort(order.begin(), order.end(), [&weight](const NoteGroup& a, const NoteGroup& b) {
        return weight(a.first) > weight(b.first);
    });
    return order;
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
