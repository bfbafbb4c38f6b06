#include "calendar/base/Notes.h"

#include <algorithm>
#include <cassert>
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
    const NoteKind* const found =
        std::lower_bound(std::begin(kKinds), std::end(kKinds), code,
                         [](const NoteKind& kind, NoteCode wanted) { return kind.code < wanted; });
    assert(found != std::end(kKinds) && found->code == code);
    return *found;
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
