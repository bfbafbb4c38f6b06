#include "calendar/converter/Turn.h"

#include <utility>

namespace qel::calendar {

Converter::Turn::Turn(Converter& owner, const std::string& name, const Choices& choices)
    : owner_(owner),
      name_(name),
      choices_(choices),
      observer_(owner.observer_),
      wantsLines_(observer_ != nullptr && observer_->wantsLines()),
      vCalReader_(owner.zones_->known, choices, noteSink()),
      iCalReader_(owner.zones_->known, choices, noteSink()) {}

void Converter::Turn::report(Note note, std::size_t entryLine) {
    note.file = name_;
    if (observer_ != nullptr) keep(note, entryLine);
    owner_.sink_(std::move(note));
}

void Converter::Turn::keep(const Note& note, std::size_t entryLine) {
    if (notes_.size() == ConvertedEntry::kMostNotes) {
        // What is outside entries may have given any number of notes.
        if (entryLine == 0)
            notes_.clear();
        else if (notes_.front().line < entryLine)
            dropNotesBefore(entryLine);
    }
    if (notes_.size() < ConvertedEntry::kMostNotes)
        notes_.push_back(note);
    else
        ++moreNotes_;
}

void Converter::Turn::dropNotesBefore(std::size_t line) {
    std::erase_if(
        notes_, [line](const Note& note) { return note.line < line; });
}

void Converter::Turn::calendar(const std::vector<EntryProperty>& header) {
    owner_.writer().makeUidsDistinct(choices_.distinctUids);
    owner_.writer().calendar(header);
}

void Converter::Turn::take(EntryWork& work) {
    entryLine_ = work.line;
    convert(work);
    // Else whoever reads ahead gives its memory back.
    if (work.component != nullptr) work.draft.settled.reset();
    entryLine_ = 0;
}

void Converter::Turn::endComponent() {
    notes_.clear();
    moreNotes_ = 0;
}

void Converter::Turn::convert(EntryWork& work) {
    const bool ahead = work.component == nullptr;
    if (!ahead) prepare(work, choices_);
    std::string uid = uids_.uidOf(work.digest, work.line);
    if (!work.chosen) return;
    if (!ahead) read(work);
    for (Note& note : work.notes) report(std::move(note));
    if (work.entry == nullptr) return;
    Entry& entry = *work.entry;
    if (work.series) reader(work.vCalendar).remember(entry.uid, std::move(*work.series));
    work.zone->report(work.settled, entry, noteSink());
    if (const auto date = namesakes_.differs(entry, owner_.zones_->known.world))
        report(Note(NoteCode::ZoneDiffersFromName, entry.line,
                    {formatMoment(*date), entry.zone->id()}));
    countShifting(entry);
    entry.madeUid = std::move(uid);
    ++owner_.counts_.entries;
    owner_.counts_.alarms += entry.alarms.size();
    if (!ahead) owner_.writer().draft(entry, work.draft);
    write(work);
}

void Converter::Turn::read(EntryWork& work) {
    EntryReader& own = reader(work.vCalendar);
    work.notes.clear();
    work.entry = own.read(*work.component, work.zone->zone());
    if (work.entry == nullptr) return;
    work.series = std::move(own.series());
    work.settled = work.zone->settle(*work.entry);
    if (work.settled.named != nullptr) work.entry->zone = *work.settled.named;
}

void Converter::Turn::write(EntryWork& work) {
    Entry& entry = *work.entry;
    EntryWriter& writer = owner_.writer();
    if (observer_ == nullptr) return writer.add(work.draft);
    // Notes about lines before the entry are about the calendar, or about what was left out.
    dropNotesBefore(entry.line);
    writer.keepEntryLines(wantsLines_);
    writer.add(work.draft);
    observer_->entryConverted({entry, *owner_.to_, notes_, moreNotes_, work.source, work.sourceCut,
                               wantsLines_ ? writer.entryLines() : std::string_view()});
}

void Converter::Turn::countShifting(const Entry& entry) {
    if (entry.zone != nullptr || !entry.start || entry.start->isDate ||
        entry.start->clock != Clock::Utc || !entry.recurs() ||
        !owner_.zones_->known.described->empty())
        return;
    if (shifting_++ == 0) firstShifting_ = entry.line;
}

void Converter::Turn::endFile() {
    if (shifting_ != 0)
        report(Note(NoteCode::UtcSeriesShifts, firstShifting_, {std::to_string(shifting_)}));
}

}  // namespace qel::calendar
