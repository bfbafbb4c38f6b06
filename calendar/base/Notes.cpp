#include "calendar/base/Notes.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

constexpr NoteKind kKinds[] = {
#define QEL_NOTE(code, number, severity, fate, name, sentence, meaning, advice) \
    {NoteCode::code, Severity::severity, Fate::fate, name, sentence, meaning, advice},
#include "calendar/base/NoteCatalogue.def"
#undef QEL_NOTE
};

static_assert(std::is_sorted(std::begin(kKinds), std::end(kKinds),
                             [](const NoteKind& a, const NoteKind& b) { return a.code <= b.code; }),
              "numbers ascend, and each stands once");

// The rows by their numbers; elsewhere kNoRow.
constexpr std::size_t kNumbers = 1000;
constexpr std::uint16_t kNoRow = 0xFFFF;
constexpr auto kRows = [] {
    std::array<std::uint16_t, kNumbers> rows{};
    rows.fill(kNoRow);
    for (std::size_t row = 0; row < std::size(kKinds); ++row)
        rows[static_cast<std::size_t>(kKinds[row].code)] = static_cast<std::uint16_t>(row);
    return rows;
}();

// The value that `hole`, the inside of "{0}", "{q0}" or "{+0}", asks for.
std::string valueFor(std::string_view hole, const std::vector<std::string>& values) {
    const bool inQuotes = hole.starts_with('q');
    const bool isMore = hole.starts_with('+');
    const auto number = parseInt(inQuotes || isMore ? hole.substr(1) : hole);
    assert(number && *number >= 0 && static_cast<std::size_t>(*number) < values.size());
    if (!number || static_cast<std::size_t>(*number) >= values.size()) return {};
    const std::string& value = values[static_cast<std::size_t>(*number)];
    if (isMore) return value == "0" ? std::string() : " and " + value + " more";
    return inQuotes ? quoted(value) : value;
}

}  // namespace

std::span<const NoteKind> noteKinds() {
    return kKinds;
}

const NoteKind& noteKind(NoteCode code) {
    const std::size_t row = kRows[static_cast<std::size_t>(code)];
    assert(row != kNoRow);
    return kKinds[row];
}

std::string_view severityName(Severity severity) {
    switch (severity) {
        case Severity::Note:
            return "note";
        case Severity::Warning:
            return "warning";
        case Severity::Error:
            return "error";
    }
    return "";
}

std::string_view fateName(Fate fate) {
    switch (fate) {
        case Fate::Unchanged:
            return "unchanged";
        case Fate::Kept:
            return "kept";
        case Fate::Lost:
            return "lost";
    }
    return "";
}

std::string Note::text() const {
    std::string text;
    if (!property.empty()) {
        text = property;
        if (!excerpt.empty()) text += " " + quoted(excerpt);
        text += ": ";
    }
    for (std::string_view rest = noteKind(code).sentence; !rest.empty();) {
        text += nextField(rest, '{');
        if (!rest.empty()) text += valueFor(nextField(rest, '}'), values);
    }
    return text;
}

}  // namespace qel::calendar
