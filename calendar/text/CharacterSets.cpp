#include "calendar/text/CharacterSets.h"

#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"
#include "calendar/charsets/CharacterSet.h"

namespace qel::calendar {

namespace {

bool isAsciiSet(std::string_view set) {
    return equalsIgnoreCase(set, "US-ASCII") || equalsIgnoreCase(set, "ASCII");
}

bool isUtf8Set(std::string_view set) {
    return equalsIgnoreCase(set, "UTF-8") || equalsIgnoreCase(set, "UTF8");
}

// The text with U+FFFD for each byte that is not ASCII.
std::string asciiOnly(std::string_view text) {
    std::string result;
    for (const char c : text)
        if (static_cast<signed char>(c) >= 0)
            result += c;
        else
            result += kReplacement;
    return result;
}

std::string fromNamedSet(std::string text, std::string_view name, std::vector<Note>& notes) {
    const CharacterSet* const set = findCharacterSet(name);
    if (isAscii(text) && (set == nullptr || !changesAscii(*set))) return text;
    if (set == nullptr) {
        const std::string_view guess = isUtf8(text) ? "UTF-8" : "windows-1252";
        notes.push_back(Note(NoteCode::CharacterSetUnknown, 0, {name, guess}));
        return utf8OrWindows1252(std::move(text));
    }
    std::string converted;
    if (decode(*set, text, converted) != 0)
        notes.push_back(Note(NoteCode::TextBytesInvalid, 0, {name}));
    return converted;
}

}  // namespace

bool isUnlabelled(std::string_view set) {
    return set.empty() || isAsciiSet(set);
}

std::string toUtf8(std::string text, std::string_view set, std::string_view unlabelled,
                   std::vector<Note>& notes) {
    const bool saysUtf8 = isUtf8Set(set);
    if (!isUnlabelled(set) && !saysUtf8) return fromNamedSet(std::move(text), set, notes);
    // Sets that switch by escapes are ASCII to look at.
    if (isUtf8(text) && (unlabelled.empty() || text.find('\x1b') == std::string::npos)) return text;
    if (!saysUtf8 && !unlabelled.empty()) return fromNamedSet(std::move(text), unlabelled, notes);
    notes.emplace_back(saysUtf8 ? NoteCode::TextNotUtf8 : NoteCode::CharacterSetMissing);
    return fromWindows1252(text);
}

std::optional<std::string> fromCharacterSet(std::string_view text, std::string_view set) {
    if (set.empty()) return std::nullopt;
    if (isAsciiSet(set)) return asciiOnly(text);
    const CharacterSet* const found = findCharacterSet(set);
    if (found == nullptr) return std::nullopt;
    std::string converted;
    decode(*found, text, converted);
    return converted;
}

std::string fromWindows1252(std::string_view text) {
    static const CharacterSet* const kSet = findCharacterSet("windows-1252");
    std::string converted;
    decode(*kSet, text, converted);
    return converted;
}

std::string utf8OrWindows1252(std::string text) {
    return isUtf8(text) ? std::move(text) : fromWindows1252(text);
}

}  // namespace qel::calendar
