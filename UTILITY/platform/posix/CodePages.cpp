// Code pages through UTF-16: UTF-8 by hand, the others by tables.
#include "platform/CodePages.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <vector>

#include "platform/posix/CodePageCharacters.h"
#include "platform/posix/CodePageTables.h"

namespace qel::platform {
namespace {

constexpr CodePageResult failed(CodePageFailure failure) {
    return {0, failure};
}

// --- ASCII runs, which are the same in every page ------------------------------------------------

constexpr std::size_t kChunk = 16;

// Copies bytes below 128 as units, at most `most`; their number.
std::size_t widenAscii(const unsigned char* in, std::size_t most, char16_t* out) {
    std::size_t done = 0;
    for (; most - done >= kChunk; done += kChunk) {
        std::array<std::uint64_t, 2> words;
        std::array<unsigned char, kChunk> bytes;
        std::array<char16_t, kChunk> units;
        std::memcpy(words.data(), in + done, kChunk);
        if (((words[0] | words[1]) & 0x8080808080808080U) != 0) break;
        std::memcpy(bytes.data(), in + done, kChunk);
        for (std::size_t i = 0; i < kChunk; ++i) units[i] = bytes[i];
        std::memcpy(out + done, units.data(), sizeof units);
    }
    for (; done < most && in[done] < 0x80; ++done) out[done] = in[done];
    return done;
}

std::size_t narrowAscii(const char16_t* in, std::size_t most, char* out) {
    std::size_t done = 0;
    for (; most - done >= kChunk; done += kChunk) {
        std::array<std::uint64_t, 4> words;
        std::array<std::uint16_t, kChunk> units;
        std::array<char, kChunk> bytes;
        std::memcpy(words.data(), in + done, sizeof words);
        if (((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80U) != 0) break;
        std::memcpy(units.data(), in + done, sizeof units);
        for (std::size_t i = 0; i < kChunk; ++i) bytes[i] = static_cast<char>(units[i] & 0x7F);
        std::memcpy(out + done, bytes.data(), kChunk);
    }
    for (; done < most && in[done] < 0x80; ++done) out[done] = static_cast<char>(in[done]);
    return done;
}

// Takes the run at in[at] over to out[size] with one of the two and moves both on. False where
// there is no room for its first character. REQUIRES: in[at] below 128
template <auto copyAscii, typename In, typename Out>
bool passAscii(const In* in, std::uint32_t count, std::uint32_t& at, Out* out, std::uint32_t room,
               std::uint32_t& size) {
    const auto run = static_cast<std::uint32_t>(
        copyAscii(in + at, std::min(count - at, room - size), out + size));
    at += run;
    size += run;
    return run != 0;
}

// --- UTF-8 ---------------------------------------------------------------------------------------

CodePageResult decodeUtf8(const unsigned char* in, std::uint32_t length, char16_t* out,
                          std::uint32_t room) {
    std::uint32_t at = 0;
    std::uint32_t count = 0;
    while (at < length) {
        if (in[at] < 0x80) {
            if (!passAscii<widenAscii>(in, length, at, out, room, count))
                return failed(CodePageFailure::kNoRoom);
            continue;
        }
        std::uint32_t point = 0;
        const std::uint32_t size = utf8Character(in + at, length - at, point);
        if (size == 0) return failed(CodePageFailure::kInvalid);
        if (room - count < (size == 4 ? 2U : 1U)) return failed(CodePageFailure::kNoRoom);
        if (size == 4) {
            out[count++] = static_cast<char16_t>(0xD7C0 + (point >> 10));
            out[count++] = static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        } else {
            out[count++] = static_cast<char16_t>(point);
        }
        at += size;
    }
    return {count, CodePageFailure::kNone};
}

bool isPair(const char16_t* in, std::size_t count) {
    return count > 1 && (in[0] & 0xFC00) == 0xD800 && (in[1] & 0xFC00) == 0xDC00;
}

CodePageResult encodeUtf8(const char16_t* in, std::uint32_t count, char* out, std::uint32_t room) {
    std::uint32_t at = 0;
    std::uint32_t size = 0;
    const auto put = [&](std::uint32_t byte) { out[size++] = static_cast<char>(byte); };
    while (at < count) {
        const std::uint32_t unit = in[at];
        if (unit < 0x80) {
            if (!passAscii<narrowAscii>(in, count, at, out, room, size))
                return failed(CodePageFailure::kNoRoom);
            continue;
        }
        const bool pair = isPair(in + at, count - at);
        const bool lone = !pair && unit >= 0xD800 && unit < 0xE000;
        const std::uint32_t needed = lone ? 1 : unit < 0x800 ? 2 : pair ? 4 : 3;
        if (room - size < needed) return failed(CodePageFailure::kNoRoom);
        if (lone) {
            put('?');
        } else if (pair) {
            const std::uint32_t point = ((unit - 0xD7C0) << 10) + (in[at + 1] - 0xDC00U);
            put(0xF0 | point >> 18);
            put(0x80 | (point >> 12 & 0x3F));
            put(0x80 | (point >> 6 & 0x3F));
            put(0x80 | (point & 0x3F));
        } else if (unit < 0x800) {
            put(0xC0 | unit >> 6);
            put(0x80 | (unit & 0x3F));
        } else {
            put(0xE0 | unit >> 12);
            put(0x80 | (unit >> 6 & 0x3F));
            put(0x80 | (unit & 0x3F));
        }
        at += pair ? 2 : 1;
    }
    return {size, CodePageFailure::kNone};
}

// --- Pages with tables ---------------------------------------------------------------------------

CodePageResult decodePage(Page& page, const unsigned char* in, std::uint32_t length, char16_t* out,
                          std::uint32_t room) {
    const auto* singles = page.singles();
    if (singles == nullptr) return failed(CodePageFailure::kOther);
    std::uint32_t at = 0;
    std::uint32_t count = 0;
    while (at < length) {
        if (in[at] < 0x80) {
            if (!passAscii<widenAscii>(in, length, at, out, room, count))
                return failed(CodePageFailure::kNoRoom);
            continue;
        }
        if (count == room) return failed(CodePageFailure::kNoRoom);
        const std::uint32_t size = pageCharacter(page, *singles, in + at, length - at, out[count]);
        if (size == 0) return failed(CodePageFailure::kInvalid);
        at += size;
        ++count;
    }
    return {count, CodePageFailure::kNone};
}

CodePageResult encodePage(Page& page, const char16_t* in, std::uint32_t count, char* out,
                          std::uint32_t room) {
    std::uint32_t at = 0;
    std::uint32_t size = 0;
    while (at < count) {
        const std::uint32_t unit = in[at];
        if (unit < 0x80) {
            if (!passAscii<narrowAscii>(in, count, at, out, room, size))
                return failed(CodePageFailure::kNoRoom);
            continue;
        }
        const auto* row = page.codes(unit >> 8);
        if (row == nullptr) return failed(CodePageFailure::kOther);
        // Each half of a pair is replaced: no page here has characters past U+FFFF.
        const std::uint32_t code = (*row)[unit & 0xFF] != 0 ? (*row)[unit & 0xFF] : '?';
        if (room - size < (code > 0xFF ? 2U : 1U)) return failed(CodePageFailure::kNoRoom);
        if (code > 0xFF) out[size++] = static_cast<char>(code >> 8);
        out[size++] = static_cast<char>(code & 0xFF);
        ++at;
    }
    return {size, CodePageFailure::kNone};
}

}  // namespace

bool codePagesAvailable() noexcept {
    return true;
}

CodePageResult decodeCodePage(std::uint32_t codePage, const char* in, std::uint32_t length,
                              char16_t* out, std::uint32_t room) noexcept {
    const auto* bytes = reinterpret_cast<const unsigned char*>(in);
    if (codePage == kUtf8) return decodeUtf8(bytes, length, out, room);
    Page* page = pageOf(codePage);
    if (page == nullptr) return failed(CodePageFailure::kOther);
    return decodePage(*page, bytes, length, out, room);
}

CodePageResult encodeCodePage(std::uint32_t codePage, const char16_t* in, std::uint32_t count,
                              char* out, std::uint32_t room) noexcept {
    if (codePage == kUtf8) return encodeUtf8(in, count, out, room);
    Page* page = pageOf(codePage);
    if (page == nullptr) return failed(CodePageFailure::kOther);
    return encodePage(*page, in, count, out, room);
}

std::uint32_t undecodablePrefix(std::uint32_t codePage, const char* in,
                                std::uint32_t length) noexcept {
    Page* page = pageOf(codePage);
    const auto* singles = page != nullptr ? page->singles() : nullptr;
    if ((singles == nullptr && codePage != kUtf8) || length < 2) return 1;
    const auto* bytes = reinterpret_cast<const unsigned char*>(in);
    const auto characterSize = [&](std::uint32_t at) {
        std::uint32_t point = 0;
        char16_t unit = 0;
        return page == nullptr ? utf8Character(bytes + at, length - at, point)
                               : pageCharacter(*page, *singles, bytes + at, length - at, unit);
    };
    // A decoding that reaches a position where an earlier one came past fails as that one did, so
    // no position is examined twice.
    std::vector<bool> passed;
    try {
        passed.resize(length);
    } catch (const std::bad_alloc&) {
        return 1;
    }
    for (std::uint32_t start = 0; start < length - 1; ++start) {
        std::uint32_t at = start;
        while (at < length && !passed[at]) {
            passed[at] = true;
            const std::uint32_t size = characterSize(at);
            if (size == 0) break;
            at += size;
        }
        if (at == length) return std::max(start, std::uint32_t{1});
    }
    return length - 1;
}

}  // namespace qel::platform
