#include "calendar/converter/HeldFiles.h"

#include <memory>
#include <ostream>

#include "calendar/formats/EntryWriter.h"

namespace qel::calendar {

// Writes nothing. Entries are held when they are converted, with their notes.
class FileHolder::Writer final : public EntryWriter {
  public:
    explicit Writer(FileHolder& holder)
        : EntryWriter(nowhere_, [](const Note&) {}), holder_(holder), nowhere_(nullptr) {}
    void calendar(const std::vector<EntryProperty>& properties) override {
        holder_.add().calendar =
            std::make_unique<HeldCalendar>(HeldCalendar{*holder_.converter_.target(), properties});
    }
    void draft(const Entry&, EntryDraft&) const override {}
    void add(EntryDraft&) override {}
    void finish() override {}

  private:
    FileHolder& holder_;
    std::ostream nowhere_;
};

FileHolder::FileHolder(Choices choices, bool lines)
    : lines_(lines), converter_(std::make_unique<Writer>(*this), [this](Note note) {
          add().note = std::make_unique<Note>(std::move(note));
      }) {
    converter_.choose(std::move(choices));
    converter_.observe(this);
}

HeldFile::Item& FileHolder::add() {
    HeldFile::Item& item = files_.back().items.emplace_back();
    item.calendars = calendars();
    return item;
}

void FileHolder::beginFile(const std::string& name) {
    if (!files_.empty()) files_.back().calendars = calendars();
    calendarsBefore_ = converter_.counts().calendars;
    HeldFile& file = files_.emplace_back();
    file.name = name;
    file.distinctUids = converter_.choices().distinctUids;
}

std::vector<HeldFile> FileHolder::take() {
    if (!files_.empty()) files_.back().calendars = calendars();
    return std::exchange(files_, {});
}

void FileHolder::entryConverted(const ConvertedEntry& converted) {
    auto held = std::make_unique<HeldEntry>();
    held->entry = std::move(converted.entry);
    held->notes.assign(converted.notes.begin(), converted.notes.end());
    held->moreNotes = converted.moreNotes;
    held->source = converted.source;
    held->sourceCut = converted.sourceCut;
    add().entry = std::move(held);
}

}  // namespace qel::calendar
