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
        holder_.add(HeldCalendar{*holder_.converter_.target(), properties});
    }
    void write(const Entry&) override {}
    void finish() override {}

  private:
    FileHolder& holder_;
    std::ostream nowhere_;
};

FileHolder::FileHolder(Choices choices, bool lines)
    : lines_(lines),
      converter_(std::make_unique<Writer>(*this), [this](Note note) { add(std::move(note)); }) {
    converter_.choose(std::move(choices));
    converter_.observe(this);
}

template <class What>
void FileHolder::add(What what) {
    files_.back().items.push_back({calendars(), std::move(what)});
}

void FileHolder::beginFile(const std::string& name) {
    if (!files_.empty()) files_.back().calendars = calendars();
    calendarsBefore_ = converter_.counts().calendars;
    files_.push_back({name, converter_.choices().distinctUids, {}});
}

std::vector<HeldFile> FileHolder::take() {
    if (!files_.empty()) files_.back().calendars = calendars();
    return std::exchange(files_, {});
}

void FileHolder::entryConverted(const ConvertedEntry& converted) {
    add(HeldEntry{converted.entry,
                  {converted.notes.begin(), converted.notes.end()},
                  converted.moreNotes,
                  std::string(converted.source),
                  converted.sourceCut});
}

}  // namespace qel::calendar
