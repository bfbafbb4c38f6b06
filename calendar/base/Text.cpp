#include "calendar/base/Text.h"

#include <cassert>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

// By its first byte; 0 when no character begins with it.
std::size_t lengthOfLead(unsigned lead) {
    if (lead < 0x80U) return 1;
    if (lead < 0xC2U || lead > 0xF4U) return 0;
    if (lead < 0xE0U) return 2;
    return lead < 0xF0U ? 3 : 4;
}

bool isContinuation(unsigned byte) {
    return (byte & 0xC0U) == 0x80U;
}

bool maySecondFollow(unsigned lead, unsigned second) {
    if (!isContinuation(second)) return false;
    switch (lead) {
        case 0xE0U:
            return second >= 0xA0U;  // else overlong
        case 0xEDU:
            return second <= 0x9FU;  // else a surrogate
        case 0xF0U:
            return second >= 0x90U;  // else overlong
        case 0xF4U:
            return second <= 0x8FU;  // else beyond U+10FFFF
        default:
            return true;
    }
}

}  // namespace

std::size_t utf8CharacterLength(std::string_view text) {
    assert(!text.empty());
    const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t length = lengthOfLead(at(0));
    if (length <= 1) return length;
    if (text.size() < length || !maySecondFollow(at(0), at(1))) return 0;
    for (std::size_t each = 2; each < length; ++each)
        if (!isContinuation(at(each))) return 0;
    return length;
}

bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        // Most text is ASCII.
        at += asciiLength(text.substr(at));
        if (at == text.size()) break;
        const std::size_t length = utf8CharacterLength(text.substr(at));
        if (length == 0) return false;
        at += length;
    }
    return true;
}

void appendUtf8(std::string& text, char32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

namespace {

// A character of two or three bytes that terminals obey and nobody sees: U+0080 to U+009F, which
// are control characters too, and those that turn the direction of the text after them.
bool isUnseen(std::string_view character) {
    if (character.size() == 2)
        return (character[0] == '\xC2' && static_cast<unsigned char>(character[1]) < 0xA0U) ||
               character == "\u061C";
    if (character.size() != 3 || character[0] != '\xE2') return false;
    return character == "\u200E" || character == "\u200F" ||
           (character >= "\u202A" && character <= "\u202E") ||
           (character >= "\u2066" && character <= "\u2069");
}

}  // namespace

std::string printable(std::string_view text, std::size_t longest) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string shown;
    while (!text.empty()) {
        if (shown.size() >= longest) return shown + "...";
        const std::size_t length = utf8CharacterLength(text);
        const auto byte = static_cast<unsigned char>(text[0]);
        const std::size_t taken = length == 0 ? 1 : length;
        if (length == 0 || byte < 0x20U || byte == 0x7FU || isUnseen(text.substr(0, length))) {
            for (std::size_t i = 0; i < taken; ++i) {
                const auto each = static_cast<unsigned char>(text[i]);
                switch (each) {
                    case '\n':
                        shown += "\\n";
                        break;
                    case '\r':
                        shown += "\\r";
                        break;
                    case '\t':
                        shown += "\\t";
                        break;
                    default:
                        shown += "\\x";
                        shown += kDigits[each >> 4U];
                        shown += kDigits[each & 0x0FU];
                }
            }
        } else {
            shown.append(text.substr(0, taken));
        }
        text.remove_prefix(taken);
    }
    return shown;
}

}  // namespace qel::calendar
