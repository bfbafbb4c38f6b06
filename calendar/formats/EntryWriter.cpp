#include "calendar/formats/EntryWriter.h"

#include <ostream>

namespace qel::calendar {

namespace {

// Text is passed on in pieces of at least this many bytes.
constexpr std::size_t kWaiting = 65536;

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

void EntryWriter::flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
    entryBegin_ = 0;
}

}  // namespace qel::calendar
