#include "calendar/formats/EntryWriter.h"

#include <algorithm>
#include <ostream>

namespace qel::calendar {

namespace {

// Text is passed on in pieces of at least this many bytes.
constexpr std::size_t kWaiting = 65536;
// New UIDs that are remembered for the moved occurrences of a file.
constexpr std::size_t kMostNewUids = 10000;

}  // namespace

void EntryWriter::put(std::string_view line) {
    text_ += line;
    endLine();
}

void EntryWriter::endLine() {
    text_ += "\r\n";
    if (text_.size() >= kWaiting && !keepsEntryLines_) flush();
}

void EntryWriter::beginEntry() {
    if (text_.size() >= kWaiting) flush();
    entryBegin_ = text_.size();
}

EntryWriter::Verdict EntryWriter::judge(const EntryDraft& draft) {
    const Entry& entry = draft.settled->entry();
    // The same entry of two files has the same made UID.
    const bool made = entry.uid.empty();
    const std::string& own = made ? draft.settled->read().madeUid : entry.uid;
    if (own.empty()) return {};
    std::string instance;
    if (entry.recurrenceId)
        instance = formatMoment(entry.toUtc(*entry.recurrenceId).value_or(*entry.recurrenceId));
    const ContentDigest key = contentDigest({own, instance, entry.component});
    const ContentDigest& body = draft.content;
    const ContentDigest all{key.low ^ body.low, key.high + body.high};
    const WrittenEntries::Found found = written_.add(key, all);
    if (found == WrittenEntries::Found::Same) {
        report(Note(NoteCode::EntryTwice, entry.line));
        return {true, ""};
    }
    const auto series = newUids_.find(own);
    if (entry.recurrenceId && series != newUids_.end()) return {false, series->second};
    if (found == WrittenEntries::Found::Nothing) return {};
    if (!made && !distinctUids_) {
        report(Note(NoteCode::UidShared, entry.line, {entry.uid.substr(0, kLongestExcerpt)}));
        return {};
    }
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string uid = own + "-";
    for (unsigned shift = 0; shift < 64; shift += 4) uid += kHex[(body.low >> shift) & 0x0FU];
    if (made) return {false, uid};
    report(Note(NoteCode::UidMadeDistinct, entry.line,
                {entry.uid.substr(0, kLongestExcerpt), uid.substr(0, 2 * kLongestExcerpt)}));
    if (!entry.recurrenceId && newUids_.size() < kMostNewUids) newUids_[entry.uid] = uid;
    return {false, uid};
}

void EntryWriter::reportDifferent(const std::vector<std::string>& have,
                                  const std::vector<std::string>& lines,
                                  const std::vector<EntryProperty>& properties) {
    for (std::size_t each = 0; each < lines.size(); ++each)
        if (std::find(have.begin(), have.end(), lines[each]) == have.end())
            report(Note(NoteCode::CalendarPropertiesDiffer, properties[each].line,
                        {properties[each].name}));
}

void EntryWriter::flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
    entryBegin_ = 0;
}

}  // namespace qel::calendar
