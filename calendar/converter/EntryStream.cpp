#include "calendar/converter/EntryStream.h"

#include <ostream>
#include <utility>

#include "calendar/converter/Converter.h"
#include "calendar/formats/EntryWriter.h"

namespace qel::calendar {

namespace {

// Input without a line end is read all the same when it is this long.
constexpr std::size_t kLongestWait = 65536;

// Writes nothing: the entries are wanted as they were read.
class NoWriter final : public EntryWriter {
  public:
    NoWriter() : EntryWriter(nowhere_, [](const Note&) {}), nowhere_(nullptr) {}
    void calendar(const std::vector<EntryProperty>&) override {}
    void draft(const Entry&, EntryDraft&) const override {}
    void add(EntryDraft&) override {}
    void finish() override {}

  private:
    std::ostream nowhere_;
};

}  // namespace

// Takes entries and notes from a converter that reads the file.
class EntryStream::Catcher final : public ConversionObserver {
  public:
    Catcher()
        : converter(std::make_unique<NoWriter>(), [this](Note note) {
              if (pending_.size() < kMostNotes) pending_.push_back(std::move(note));
          }) {
        converter.observe(this);
    }

    void entryConverted(const ConvertedEntry& converted) override {
        const std::size_t line = converted.entry.line;
        entries.push_back(
            {std::move(converted.entry), {converted.notes.begin(), converted.notes.end()}});
        for (Note& note : pending_)
            if (note.line < line) keepOutside(std::move(note));
        pending_.clear();
    }

    // What was reported since the last entry belongs to none when the file is at its end.
    void endNotes() {
        for (Note& note : pending_) keepOutside(std::move(note));
        pending_.clear();
    }

    std::deque<ReadEntry> entries;  // the first one is the current one
    std::deque<Note> outside;
    Converter converter;

  private:
    void keepOutside(Note note) {
        if (outside.size() < kMostNotes) outside.push_back(std::move(note));
    }

    std::vector<Note> pending_;  // since the last entry, the first kMostNotes
};

EntryStream::EntryStream() : catcher_(std::make_unique<Catcher>()) {}

EntryStream::~EntryStream() = default;

void EntryStream::choose(const Choices& choices) {
    catcher_->converter.choose(choices);
}

const Choices& EntryStream::choices() const {
    return catcher_->converter.choices();
}

void EntryStream::scan(std::string_view bytes) {
    if (!std::exchange(scanning_, true)) catcher_->converter.beginScan();
    catcher_->converter.scan(bytes);
}

void EntryStream::write(std::string_view bytes) {
    if (std::exchange(scanning_, false)) catcher_->converter.endScan();
    if (!std::exchange(begun_, true)) catcher_->converter.beginFile("");
    input_.erase(0, std::exchange(at_, 0));
    input_ += bytes;
}

// Gives the converter one line, so that at most one entry results. False when that has to
// wait for more input.
bool EntryStream::feed() {
    const std::string_view rest = std::string_view(input_).substr(at_);
    const std::size_t lineEnd = rest.find('\n', searched_);
    if (lineEnd == std::string_view::npos && rest.size() < kLongestWait && !ended_) {
        searched_ = rest.size();
        return false;
    }
    searched_ = 0;
    const std::string_view piece =
        rest.substr(0, lineEnd == std::string_view::npos ? rest.size() : lineEnd + 1);
    at_ += piece.size();
    if (!piece.empty()) {
        catcher_->converter.write(piece);
    } else {
        catcher_->converter.endFile();
        catcher_->endNotes();
        finished_ = true;
    }
    return true;
}

EntryStream::State EntryStream::next() {
    std::deque<ReadEntry>& entries = catcher_->entries;
    if (!entries.empty()) entries.pop_front();
    if (ended_ && !begun_) write({});
    while (entries.empty()) {
        if (finished_) return State::End;
        if (!begun_ || !feed()) return State::NeedInput;
    }
    return State::Entry;
}

const ReadEntry& EntryStream::entry() const {
    return catcher_->entries.front();
}

const std::deque<Note>& EntryStream::notes() const {
    return catcher_->outside;
}

}  // namespace qel::calendar
