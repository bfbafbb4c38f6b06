#include "calendar/text/CharacterSets.h"

#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"
#include "calendar/platform/CharacterSets.h"
#include "calendar/text/LibrarySets.h"

namespace qel::calendar {

namespace {

bool isAsciiSet(std::string_view set) {
    return set.empty() || equalsIgnoreCase(set, "US-ASCII") || equalsIgnoreCase(set, "ASCII");
}

bool isUtf8Set(std::string_view set) {
    return equalsIgnoreCase(set, "UTF-8") || equalsIgnoreCase(set, "UTF8");
}

// The text with U+FFFD for each byte that belongs to no character; of ASCII alone when asked.
std::string withReplacements(std::string_view text, bool ascii) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = utf8CharacterLength(text);
        const bool valid = length == 1 || (length > 1 && !ascii);
        result += valid ? text.substr(0, length) : kReplacement;
        text.remove_prefix(valid ? length : 1);
    }
    return result;
}

void noteReplaced(const std::string& text, std::string_view set, std::vector<Note>& notes) {
    if (text.find(kReplacement) != std::string::npos)
        notes.push_back(Note(NoteCode::TextBytesInvalid, 0, {set}));
}

std::string fromNamedSet(std::string text, std::string_view set, std::vector<Note>& notes) {
    if (const char* library = libraryCharacterSet(set); *library != '\0') {
        std::string converted = fromLibrarySet(text, library);
        noteReplaced(converted, set, notes);
        return converted;
    }
    if (auto converted = platform::toUtf8(text, set)) {
        notes.push_back(Note(NoteCode::CharacterSetBySystem, 0, {set}));
        noteReplaced(*converted, set, notes);
        return *std::move(converted);
    }
    const std::string_view guess = isUtf8(text) ? "UTF-8" : "windows-1252";
    notes.push_back(Note(NoteCode::CharacterSetUnknown, 0, {set, guess}));
    return utf8OrWindows1252(std::move(text));
}

}  // namespace

std::string toUtf8(std::string text, std::string_view set, std::vector<Note>& notes) {
    // Only these use ASCII bytes for other characters.
    if (isAscii(text) && !startsWithIgnoreCase(set, "ISO-2022") &&
        !startsWithIgnoreCase(set, "UTF-7"))
        return text;
    const bool saysUtf8 = isUtf8Set(set);
    if (!isAsciiSet(set) && !saysUtf8) return fromNamedSet(std::move(text), set, notes);
    if (isUtf8(text)) return text;
    notes.emplace_back(saysUtf8 ? NoteCode::TextNotUtf8 : NoteCode::CharacterSetMissing);
    return fromWindows1252(text);
}

std::optional<std::string> fromCharacterSet(std::string_view text, std::string_view set) {
    if (set.empty()) return std::nullopt;
    if (isUtf8Set(set) || isAsciiSet(set)) return withReplacements(text, isAsciiSet(set));
    if (const char* library = libraryCharacterSet(set); *library != '\0')
        return fromLibrarySet(text, library);
    return platform::toUtf8(text, set);
}

}  // namespace qel::calendar
