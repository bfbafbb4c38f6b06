// Notes and their catalogue.
#include "calendar/api/Calls.h"
#include "calendar/api/NoteHandle.h"

using qel::calendar::NoteKind;
namespace api = qel::calendar::api;

int qelcal_note_code_of(const qelcal_note* note) {
    return note == nullptr ? 0 : static_cast<int>(note->note.code);
}

const char* qelcal_note_name(const qelcal_note* note) {
    // The catalogue's texts are literals: they end in a NUL.
    return note == nullptr ? "" : noteKind(note->note.code).name.data();
}

int qelcal_note_severity(const qelcal_note* note) {
    return note == nullptr ? QELCAL_NOTE : static_cast<int>(note->note.severity());
}

int qelcal_note_fate(const qelcal_note* note) {
    return note == nullptr ? QELCAL_UNCHANGED : static_cast<int>(note->note.fate());
}

const char* qelcal_note_file(const qelcal_note* note) {
    return note == nullptr ? "" : note->note.file.c_str();
}

size_t qelcal_note_line(const qelcal_note* note) {
    return note == nullptr ? 0 : note->note.line;
}

const char* qelcal_note_text(const qelcal_note* note) {
    if (note == nullptr) return "";
    return api::guardedValue("", [note] {
        if (note->text.empty()) note->text = note->note.text();
        return note->text.c_str();
    });
}

size_t qelcal_note_value_count(const qelcal_note* note) {
    return note == nullptr ? 0 : note->note.values.size();
}

const char* qelcal_note_value(const qelcal_note* note, size_t index) {
    return index < qelcal_note_value_count(note) ? note->note.values[index].c_str() : "";
}

size_t qelcal_note_kind_count() {
    return qel::calendar::noteKinds().size();
}

int qelcal_note_kind_at(size_t index, qelcal_note_kind* kind) {
    if (kind == nullptr || index >= qelcal_note_kind_count())
        return api::fail(QELCAL_INVALID_ARGUMENT, "there is no note kind of that index");
    const NoteKind& row = qel::calendar::noteKinds()[index];
    *kind = {static_cast<int>(row.code), static_cast<int>(row.severity),
             static_cast<int>(row.fate), row.name.data(),
             row.sentence.data(),        row.meaning.data(),
             row.advice.data()};
    return QELCAL_OK;
}
