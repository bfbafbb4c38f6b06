// Between UTF-8 and a page with tables without the step through UTF-16, for the texts that convert
// whole: one pass, and nothing is held but the result.
#include <array>
#include <bit>
#include <cstring>
#include <functional>

#include "platform/ByteOrder.h"
#include "platform/CodePages.h"
#include "platform/posix/CodePageCharacters.h"
#include "platform/posix/CodePageTables.h"

namespace qel::platform {
namespace {

constexpr std::uint32_t kChunk = 16;

// Copies 16 bytes; how many of them, from the first on, are below 128. What was copied behind those
// is written over.
std::uint32_t copyAscii(const unsigned char* in, char* out) {
    std::array<std::uint64_t, 2> words;
    std::memcpy(words.data(), in, kChunk);
    std::memcpy(out, words.data(), kChunk);
    for (std::uint32_t i = 0; i < 2; ++i) {
        const std::uint64_t high = firstByteLowest(words[i]) & 0x8080808080808080U;
        if (high == 0) continue;
        return i * 8 + static_cast<std::uint32_t>(std::countr_zero(high)) / 8;
    }
    return kChunk;
}

// Walks through `in`: ASCII is copied, and `other(at, size)` converts the character at in[at] to
// out[size], moves both on and gives false where it cannot. The size of the result, 0 when the text
// does not convert whole.
template <typename Other>
std::uint32_t convert(const unsigned char* in, std::uint32_t length, char* out, std::uint32_t room,
                      Other other) {
    std::uint32_t at = 0;
    std::uint32_t size = 0;
    while (at < length) {
        if (length - at >= kChunk && room - size >= kChunk) {
            const std::uint32_t run = copyAscii(in + at, out + size);
            at += run;
            size += run;
            if (run == kChunk) continue;
        } else if (in[at] < 0x80) {
            if (size == room) return 0;
            out[size++] = static_cast<char>(in[at++]);
            continue;
        }
        do {
            if (!other(at, size)) return 0;
            // A blank between two words of such characters is no run.
            if (length - at >= 2 && in[at] < 0x80 && in[at + 1] >= 0x80 && size < room)
                out[size++] = static_cast<char>(in[at++]);
        } while (at < length && in[at] >= 0x80);
    }
    return size;
}

// Whether a unit has three bytes in UTF-8.
constexpr bool isThreeBytes(std::uint32_t point) {
    return point - 0x800 < 0xD800 - 0x800 || point - 0xE000 < 0x10000 - 0xE000;
}

// How far a conversion has come: the next byte of the text, and of the result.
struct Place {
    std::uint32_t at;
    std::uint32_t size;
};

// Converts on from a place for as long as a character has three bytes in UTF-8 and two in the page,
// as most of a text in Asia. What it stops at may be anything. Each character is read and written
// as one word; what is beyond it there still belongs to the text, and to the result's room.
inline Place fromUtf8Run(const unsigned char* in, std::uint32_t length, Page& page, char* out,
                         std::uint32_t room, Place place) {
    std::uint32_t word = 0;
    while (length - place.at >= sizeof word && room - place.size >= 2) {
        std::memcpy(&word, in + place.at, sizeof word);
        word = firstByteLowest(word);
        const std::uint32_t point = (word & 0x0F) << 12 | (word >> 2 & 0xFC0) | (word >> 16 & 0x3F);
        if ((word & 0xC0C0F0) != 0x8080E0 || !isThreeBytes(point)) break;
        const auto* row = page.codes(point >> 8);
        if (row == nullptr || (*row)[point & 0xFF] < 0x100) break;
        const std::uint16_t code = (*row)[point & 0xFF];
        const auto bytes = firstByteLowest(static_cast<std::uint16_t>(code << 8 | code >> 8));
        std::memcpy(out + place.size, &bytes, sizeof bytes);
        place.at += 3;
        place.size += 2;
    }
    return place;
}

inline Place toUtf8Run(const unsigned char* in, std::uint32_t length, Page& page,
                       const Rows<char16_t>::Row& singles, char* out, std::uint32_t room,
                       Place place) {
    std::uint32_t word = 0;
    while (length - place.at >= 2 && room - place.size >= sizeof word) {
        const unsigned char* const pair = in + place.at;
        const auto* row = singles[pair[0]] == 0 ? page.pairs(pair[0]) : nullptr;
        if (row == nullptr || !isThreeBytes((*row)[pair[1]])) break;
        const std::uint32_t point = (*row)[pair[1]];
        word =
            firstByteLowest(0x8080E0 | point >> 12 | (point << 2 & 0x3F00) | (point & 0x3F) << 16);
        std::memcpy(out + place.size, &word, sizeof word);
        place.at += 2;
        place.size += 3;
    }
    return place;
}

std::uint32_t fromUtf8(const unsigned char* in, std::uint32_t length, Page& page, char* out,
                       std::uint32_t room) {
    return convert(
        in, length, out, room,
        [&](std::uint32_t& at, std::uint32_t& size) {
            std::uint32_t point = 0;
            const std::uint32_t taken = utf8Character(in + at, length - at, point);
            if (taken == 0 || room - size < 2) return false;
            at += taken;
            if (point > 0xFFFF) {
                // One for each half of the pair that it is in UTF-16.
                out[size++] = '?';
                out[size++] = '?';
                return true;
            }
            const auto* row = page.codes(point >> 8);
            if (row == nullptr) return false;
            const std::uint32_t code = (*row)[point & 0xFF];
            if (code > 0xFF) out[size++] = static_cast<char>(code >> 8);
            out[size++] = code != 0 ? static_cast<char>(code & 0xFF) : '?';
            if (code <= 0xFF) return true;
            const Place end = fromUtf8Run(in, length, page, out, room, {at, size});
            at = end.at;
            size = end.size;
            return true;
        });
}

std::uint32_t toUtf8(const unsigned char* in, std::uint32_t length, Page& page, char* out,
                     std::uint32_t room) {
    const auto* singles = page.singles();
    if (singles == nullptr) return 0;
    return convert(in, length, out, room, [&](std::uint32_t& at, std::uint32_t& size) {
        char16_t unit = 0;
        const std::uint32_t taken = pageCharacter(page, *singles, in + at, length - at, unit);
        if (taken == 0 || room - size < 3) return false;
        at += taken;
        const std::uint32_t point = unit;
        if (point < 0x80) {
            out[size++] = static_cast<char>(point);
        } else if (point < 0x800) {
            out[size++] = static_cast<char>(0xC0 | point >> 6);
            out[size++] = static_cast<char>(0x80 | (point & 0x3F));
        } else {
            out[size++] = static_cast<char>(0xE0 | point >> 12);
            out[size++] = static_cast<char>(0x80 | (point >> 6 & 0x3F));
            out[size++] = static_cast<char>(0x80 | (point & 0x3F));
            const Place end = toUtf8Run(in, length, page, *singles, out, room, {at, size});
            at = end.at;
            size = end.size;
        }
        return true;
    });
}

// The units that the library's descriptor level treats in a way of its own at a text's head.
bool beginsWithMark(const unsigned char* in, std::uint32_t length) {
    return length >= 3 && in[0] == 0xEF && (in[1] == 0xBB || in[1] == 0xBF);
}

// A text may be converted in its own place; that takes the step between.
bool overlap(const char* in, std::uint32_t length, const char* out, std::uint32_t room) {
    const std::less<> before;
    return before(in, out + room) && before(out, in + length);
}

}  // namespace

std::uint32_t convertCodePage(std::uint32_t from, std::uint32_t to, const char* in,
                              std::uint32_t length, char* out, std::uint32_t room) noexcept {
    if (overlap(in, length, out, room)) return 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(in);
    if (from == kUtf8) {
        Page* page = pageOf(to);
        if (page == nullptr || beginsWithMark(bytes, length)) return 0;
        return fromUtf8(bytes, length, *page, out, room);
    }
    Page* page = to == kUtf8 ? pageOf(from) : nullptr;
    return page == nullptr ? 0 : toUtf8(bytes, length, *page, out, room);
}

}  // namespace qel::platform
