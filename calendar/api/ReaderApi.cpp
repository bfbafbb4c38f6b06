// The entries of one file, one at a time.
#include <memory>
#include <optional>

#include "calendar/api/Calls.h"
#include "calendar/api/Choosing.h"
#include "calendar/api/EntryHandle.h"
#include "calendar/converter/EntryStream.h"

using qel::calendar::EntryStream;
namespace api = qel::calendar::api;

struct qelcal_reader {
    EntryStream stream;
    std::optional<qelcal_entry> entry;  // the current one
    bool scanning = false;              // scan() was called
    bool reading = false;               // write() or end() was called
    bool ended = false;
    mutable api::NoteHandles notes;  // those of the stream that somebody has asked for
};

namespace {

constexpr char kNullReader[] = "the reader, the bytes or the result are null";

std::string_view textOf(const void* bytes, size_t size) {
    return size == 0 ? std::string_view() : std::string_view(static_cast<const char*>(bytes), size);
}

}  // namespace

qelcal_reader* qelcal_reader_new() {
    return api::guardedValue(
        static_cast<qelcal_reader*>(nullptr),
        [] { return std::make_unique<qelcal_reader>().release(); });
}

void qelcal_reader_free(qelcal_reader* reader) {
    delete reader;
}

int qelcal_reader_choose(qelcal_reader* reader, int choice, const char* value) {
    if (reader == nullptr) return api::fail(QELCAL_INVALID_ARGUMENT, kNullReader);
    if (reader->scanning || reader->reading)
        return api::fail(QELCAL_WRONG_ORDER, "the file is being read already; choose before");
    return api::guarded([=] {
        qel::calendar::Choices choices = reader->stream.choices();
        const int result = api::choose(choices, choice, value);
        if (result == QELCAL_OK) reader->stream.choose(choices);
        return result;
    });
}

int qelcal_reader_scan(qelcal_reader* reader, const void* bytes, size_t size) {
    if (reader == nullptr || (bytes == nullptr && size != 0))
        return api::fail(QELCAL_INVALID_ARGUMENT, kNullReader);
    if (reader->reading)
        return api::fail(QELCAL_WRONG_ORDER, "the file is being read already; scan it before");
    return api::guarded([=] {
        reader->scanning = true;
        reader->stream.scan(textOf(bytes, size));
        return int{QELCAL_OK};
    });
}

int qelcal_reader_write(qelcal_reader* reader, const void* bytes, size_t size) {
    if (reader == nullptr || (bytes == nullptr && size != 0))
        return api::fail(QELCAL_INVALID_ARGUMENT, kNullReader);
    if (reader->ended) return api::fail(QELCAL_WRONG_ORDER, "the file has ended");
    return api::guarded([=] {
        reader->reading = true;
        reader->stream.write(textOf(bytes, size));
        return int{QELCAL_OK};
    });
}

int qelcal_reader_end(qelcal_reader* reader) {
    if (reader == nullptr) return api::fail(QELCAL_INVALID_ARGUMENT, kNullReader);
    reader->reading = true;
    reader->ended = true;
    reader->stream.end();
    return QELCAL_OK;
}

int qelcal_reader_next(qelcal_reader* reader, const qelcal_entry** entry) {
    if (reader == nullptr || entry == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, kNullReader);
    *entry = nullptr;
    return api::guarded([=] {
        reader->entry.reset();
        switch (reader->stream.next()) {
            case EntryStream::State::NeedInput:
                return int{QELCAL_NEED_INPUT};
            case EntryStream::State::End:
                return int{QELCAL_END};
            case EntryStream::State::Entry:
                break;
        }
        const auto& read = reader->stream.entry();
        *entry = &reader->entry.emplace(read.entry, read.notes);
        return int{QELCAL_OK};
    });
}

size_t qelcal_reader_note_count(const qelcal_reader* reader) {
    return reader == nullptr ? 0 : reader->stream.notes().size();
}

const qelcal_note* qelcal_reader_note(const qelcal_reader* reader, size_t index) {
    if (index >= qelcal_reader_note_count(reader)) return nullptr;
    return api::guardedValue(static_cast<const qelcal_note*>(nullptr), [=] {
        const auto& notes = reader->stream.notes();
        while (reader->notes.size() <= index)
            reader->notes.emplace_back(notes[reader->notes.size()]);
        return static_cast<const qelcal_note*>(&reader->notes[index]);
    });
}
