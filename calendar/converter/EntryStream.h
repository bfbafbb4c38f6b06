// The entries of one file, one at a time, from bytes that come in pieces. One thread.
#ifndef QEL_CALENDAR_CONVERTER_ENTRYSTREAM_H
#define QEL_CALENDAR_CONVERTER_ENTRYSTREAM_H

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Choices.h"
#include "calendar/base/Notes.h"
#include "calendar/entries/Entry.h"

namespace qel::calendar {

struct ReadEntry {
    Entry entry;
    std::vector<Note> notes;  // about this entry, ConvertedEntry::kMostNotes at most
};

class EntryStream {
  public:
    enum class State { Entry, NeedInput, End };

    EntryStream();
    ~EntryStream();
    EntryStream(const EntryStream&) = delete;
    EntryStream& operator=(const EntryStream&) = delete;

    // REQUIRES: before scan() and write().
    void choose(const Choices& choices);
    [[nodiscard]] const Choices& choices() const;

    // The whole file in a pass of its own before write(), for zones that are described after the
    // entries that use them.
    void scan(std::string_view bytes);
    // The next bytes, which are copied; then the end.
    void write(std::string_view bytes);
    void end() { ended_ = true; }

    // Reads on until there is an entry. The one before it ends.
    State next();
    // REQUIRES: next() returned Entry.
    [[nodiscard]] const ReadEntry& entry() const;

    // Notes that belong to no entry, so far; the first kMostNotes of them.
    [[nodiscard]] const std::deque<Note>& notes() const;

    static constexpr std::size_t kMostNotes = 10000;

  private:
    class Catcher;

    bool feed();

    std::unique_ptr<Catcher> catcher_;
    std::string input_;
    std::size_t at_ = 0;        // in input_
    std::size_t searched_ = 0;  // bytes from there on that hold no line end
    bool scanning_ = false;
    bool begun_ = false;
    bool ended_ = false;
    bool finished_ = false;  // the converter has seen the end
};

}  // namespace qel::calendar

#endif
