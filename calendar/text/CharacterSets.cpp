#include "calendar/text/CharacterSets.h"

#include <algorithm>

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

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// A text that is UTF-8 but for a few bytes: phones cut texts within a character, and some write a
// character beyond U+FFFF as two surrogates.
struct RepairedUtf8 {
    std::string text;         // with U+FFFD for what is broken
    std::size_t whole = 0;    // characters beyond ASCII
    std::size_t broken = 0;   // sequences that are not characters
    bool endsBroken = false;  // the last one of them is cut off by the end
};

// The character beyond U+FFFF that the two surrogates at the start of `text` are; 0 when there are
// no such two.
char32_t surrogatePair(std::string_view text) {
    const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (text.size() < 6 || at(0) != 0xED || (at(1) & 0xF0U) != 0xA0U || !isContinuation(text[2]) ||
        at(3) != 0xED || (at(4) & 0xF0U) != 0xB0U || !isContinuation(text[5]))
        return 0;
    const unsigned high = (at(1) & 0x0FU) << 6U | (at(2) & 0x3FU);
    const unsigned low = (at(4) & 0x0FU) << 6U | (at(5) & 0x3FU);
    return 0x10000 + (high << 10U | low);
}

// The bytes of a broken sequence: its first one and what could follow that.
std::size_t brokenLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t most = lead < 0xC2U || lead > 0xF4U ? 1
                             : lead < 0xE0U               ? 2
                             : lead < 0xF0U               ? 3
                                                          : 4;
    std::size_t length = 1;
    while (length < most && length < text.size() && isContinuation(text[length])) ++length;
    return length;
}

RepairedUtf8 repairedUtf8(std::string_view text) {
    RepairedUtf8 result;
    while (!text.empty()) {
        std::size_t length = utf8CharacterLength(text);
        if (length != 0) {
            result.whole += length > 1 ? 1 : 0;
            result.text += text.substr(0, length);
        } else if (const char32_t code = surrogatePair(text); code != 0) {
            length = 6;
            ++result.whole;
            appendUtf8(result.text, code);
        } else {
            length = brokenLength(text);
            ++result.broken;
            result.endsBroken =
                length == text.size() && static_cast<unsigned char>(text.front()) >= 0xC2U;
            result.text += kReplacement;
        }
        text.remove_prefix(length);
    }
    return result;
}

// True when no other set explains the bytes as well. A label is believed sooner.
bool isNearlyUtf8(const RepairedUtf8& repaired, bool labelled) {
    const std::size_t enough = labelled ? 1 : 2;
    return repaired.whole != 0 &&
           (repaired.broken * 4 <= repaired.whole ||
            (repaired.broken == 1 && repaired.endsBroken && repaired.whole >= enough));
}

// True for UTF-16 and UTF-32, in which a text hardly ever looks like ASCII.
bool hasWideUnits(const CharacterSet& set) {
    return nameOf(set).starts_with("UTF-16") || nameOf(set).starts_with("UTF-32");
}

// True when a text that names another set is surely UTF-8. Bytes of single characters in Latin sets
// are never UTF-8 by chance; in others a few may be.
bool isUtf8Despite(const CharacterSet& set, std::string_view text) {
    constexpr std::size_t kSure = 6;  // bytes
    if (!isUtf8(text)) return false;
    if (hasWideUnits(set))
        return std::none_of(text.begin(), text.end(), [](char c) {
            return isBlank(c) && c != ' ' && c != '\t' && c != '\r' && c != '\n';
        });
    if (isAscii(text)) return false;
    std::string letter;
    decode(set, "\xC3", letter);
    const bool isLatin = letter == "Ã" || letter == "Ă" || letter == "Ć";
    if (isLatin || changesAscii(set)) return true;
    std::size_t bytes = 0;
    while (!text.empty()) {
        const std::size_t length = utf8CharacterLength(text);
        if (length == 2 && !isSingleByte(set)) return false;
        bytes += length > 1 ? length : 0;
        text.remove_prefix(length);
    }
    return bytes >= kSure;
}

// The set that the escape sequences of a text belong to; "" for none.
std::string_view setOfEscapes(std::string_view text) {
    struct Escape {
        std::string_view sequence;
        std::string_view set;
    };
    constexpr Escape kEscapes[] = {{"\x1b$B", "ISO-2022-JP"},  {"\x1b$@", "ISO-2022-JP"},
                                   {"\x1b$(D", "ISO-2022-JP"}, {"\x1b(I", "ISO-2022-JP"},
                                   {"\x1b$)C", "ISO-2022-KR"}, {"\x1b$)A", "ISO-2022-CN"}};
    for (const Escape& each : kEscapes)
        if (text.find(each.sequence) != std::string_view::npos) return each.set;
    return "";
}

std::string fromNamedSet(std::string text, std::string_view name, std::vector<Note>& notes) {
    const CharacterSet* const set = findCharacterSet(name);
    if (isAscii(text) && (set == nullptr || !changesAscii(*set))) return text;
    if (set == nullptr) {
        const std::string_view guess = isUtf8(text) ? "UTF-8" : "windows-1252";
        notes.push_back(Note(NoteCode::CharacterSetUnknown, 0, {name, guess}));
        return utf8OrWindows1252(std::move(text));
    }
    if (nameOf(*set) != "UTF-8" && isUtf8Despite(*set, text)) {
        notes.push_back(Note(NoteCode::TextIsUtf8, 0, {name}));
        return text;
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
    if (isUtf8(text)) {
        if (saysUtf8 || text.find('\x1b') == std::string::npos) return text;
        // Sets that switch by escapes are ASCII to look at.
        const CharacterSet* const chosen = findCharacterSet(unlabelled);
        if (chosen != nullptr && changesAscii(*chosen))
            return fromNamedSet(std::move(text), unlabelled, notes);
        const std::string_view escaped = setOfEscapes(text);
        if (escaped.empty()) return text;
        notes.push_back(Note(NoteCode::TextHasEscapes, 0, {escaped}));
        return fromNamedSet(std::move(text), escaped, notes);
    }
    if (RepairedUtf8 repaired = repairedUtf8(text); isNearlyUtf8(repaired, saysUtf8)) {
        if (repaired.broken != 0) notes.push_back(Note(NoteCode::TextBytesInvalid, 0, {"UTF-8"}));
        return std::move(repaired.text);
    }
    const std::string_view taken = unlabelled.empty() ? "windows-1252" : unlabelled;
    if (saysUtf8)
        notes.push_back(Note(NoteCode::TextNotUtf8, 0, {taken}));
    else if (unlabelled.empty() && !set.empty())
        notes.push_back(Note(NoteCode::TextNotAscii, 0, {taken, set}));
    else if (unlabelled.empty())
        notes.emplace_back(NoteCode::CharacterSetMissing);
    return unlabelled.empty() ? fromWindows1252(text)
                              : fromNamedSet(std::move(text), unlabelled, notes);
}

bool isUnexplained(std::string_view text, std::string_view set) {
    const bool saysUtf8 = isUtf8Set(set);
    return (saysUtf8 || isUnlabelled(set)) && !isUtf8(text) &&
           !isNearlyUtf8(repairedUtf8(text), saysUtf8);
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
