#include "calendar/base/Text.h"

#include <cassert>

namespace qel::calendar {

std::size_t utf8CharacterLength(std::string_view text) {
    assert(!text.empty());
    const auto at = [text](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto continues = [&at](std::size_t i) { return (at(i) & 0xC0U) == 0x80U; };
    const unsigned lead = at(0);
    if (lead < 0x80U) return 1;
    if (lead >= 0xC2U && lead <= 0xDFU) return continues(1) ? 2 : 0;
    if (lead >= 0xE0U && lead <= 0xEFU) {
        if (!continues(1) || !continues(2)) return 0;
        if (lead == 0xE0U && at(1) < 0xA0U) return 0;  // overlong
        if (lead == 0xEDU && at(1) > 0x9FU) return 0;  // a surrogate
        return 3;
    }
    if (lead >= 0xF0U && lead <= 0xF4U) {
        if (!continues(1) || !continues(2) || !continues(3)) return 0;
        if (lead == 0xF0U && at(1) < 0x90U) return 0;  // overlong
        if (lead == 0xF4U && at(1) > 0x8FU) return 0;  // beyond U+10FFFF
        return 4;
    }
    return 0;
}

bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        // Most text is ASCII.
        if (static_cast<unsigned char>(text[at]) < 0x80U) {
            ++at;
            continue;
        }
        const std::size_t length = utf8CharacterLength(text.substr(at));
        if (length == 0) return false;
        at += length;
    }
    return true;
}

std::string printable(std::string_view text, std::size_t longest) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string shown;
    while (!text.empty()) {
        if (shown.size() >= longest) return shown + "...";
        const std::size_t length = utf8CharacterLength(text);
        const auto byte = static_cast<unsigned char>(text[0]);
        // U+0080 to U+009F are control characters too, and some terminals obey them.
        const bool isC1 =
            length == 2 && byte == 0xC2U && static_cast<unsigned char>(text[1]) < 0xA0U;
        const std::size_t taken = length == 0 ? 1 : length;
        if (length == 0 || isC1 || byte < 0x20U || byte == 0x7FU) {
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
