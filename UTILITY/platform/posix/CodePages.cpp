// Code pages by iconv(3), through UTF-16 in the machine's byte order.
#include <iconv.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <new>
#include <vector>

#include "platform/Immortal.h"
#include "platform/Platform.h"

namespace qel::platform {
namespace {

constexpr const char* kUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";
constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
// After a character that had to be replaced, input is offered in pieces that start at this many
// bytes: iconv decodes ahead of what it can write, and would decode a long rest again and again.
constexpr std::size_t kFirstSlice = 64;
constexpr std::uint32_t kLongestCharacter = 4;

constexpr std::uint32_t kUtf8 = 65001;

struct CodePage {
    std::uint32_t number;
    const char* name;
};
constexpr std::array<CodePage, 4> kCodePages{
    {{0, "CP1252"}, {936, "CP936"}, {950, "CP950"}, {kUtf8, "UTF-8"}}};

iconv_t noDescriptor() {
    return reinterpret_cast<iconv_t>(-1);
}

// The open descriptors of one thread: opening one costs more than converting a short text.
class Descriptors {
  public:
    Descriptors() {
        decoders_.fill(noDescriptor());
        encoders_.fill(noDescriptor());
    }
    void close() noexcept {
        for (auto* side : {&decoders_, &encoders_}) {
            for (iconv_t& descriptor : *side) {
                if (descriptor != noDescriptor()) iconv_close(descriptor);
                descriptor = noDescriptor();
            }
        }
    }
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;

    // In its initial state; noDescriptor() for an unknown page.
    iconv_t decoder(std::uint32_t codePage) { return ready(codePage, decoders_, true); }
    iconv_t encoder(std::uint32_t codePage) { return ready(codePage, encoders_, false); }

  private:
    using Side = std::array<iconv_t, kCodePages.size()>;

    static iconv_t ready(std::uint32_t codePage, Side& side, bool decodes) {
        for (std::size_t i = 0; i < kCodePages.size(); ++i) {
            if (kCodePages[i].number != codePage) continue;
            if (side[i] == noDescriptor()) {
                side[i] = decodes ? iconv_open(kUtf16, kCodePages[i].name)
                                  : iconv_open(kCodePages[i].name, kUtf16);
            } else {
                iconv(side[i], nullptr, nullptr, nullptr, nullptr);
            }
            return side[i];
        }
        return noDescriptor();
    }

    Side decoders_;
    Side encoders_;
};

Descriptors& descriptors() {
    static const ThreadEnd end(
        [](void* object) noexcept { static_cast<Descriptors*>(object)->close(); });
    thread_local Immortal<Descriptors> ofThisThread;
    end.watch(&ofThisThread.get());
    return ofThisThread.get();
}

constexpr CodePageResult failed(CodePageFailure failure) {
    return {0, failure};
}

// The number of bytes of the character at `in`, or 0 when there is none.
std::uint32_t characterSize(iconv_t decoder, const char* in, std::uint32_t length) {
    // Room for one unit stops iconv after one character; a surrogate pair needs the second.
    for (const std::size_t units : {std::size_t{1}, std::size_t{2}}) {
        char16_t pair[2];
        char* from = const_cast<char*>(in);
        std::size_t left = std::min(length, kLongestCharacter);
        char* to = reinterpret_cast<char*>(pair);
        std::size_t room = units * sizeof(char16_t);
        iconv(decoder, nullptr, nullptr, nullptr, nullptr);
        const bool done = iconv(decoder, &from, &left, &to, &room) != kFailed;
        if (from != in) return static_cast<std::uint32_t>(from - in);
        if (done || errno != E2BIG) return 0;
    }
    return 0;
}

bool isPair(const char16_t* in, std::size_t count) {
    return count > 1 && (in[0] & 0xFC00) == 0xD800 && (in[1] & 0xFC00) == 0xDC00;
}

// The number of units before the first tag character (U+E0000 to U+E007F, as in some flags): what a
// set lacks of these iconv drops without a word, where it refuses every other character.
std::size_t unitsBeforeTag(const char16_t* in, std::size_t count) {
    for (std::size_t i = 0; i + 1 < count; ++i) {
        if (in[i] == 0xDB40 && (in[i + 1] & 0xFF80) == 0xDC00) return i;
    }
    return count;
}

}  // namespace

bool codePagesAvailable() noexcept {
    return true;
}

CodePageResult decodeCodePage(std::uint32_t codePage, const char* in, std::uint32_t length,
                              char16_t* out, std::uint32_t room) noexcept {
    iconv_t decoder = descriptors().decoder(codePage);
    if (decoder == noDescriptor()) return failed(CodePageFailure::kOther);
    char* from = const_cast<char*>(in);
    std::size_t left = length;
    char* to = reinterpret_cast<char*>(out);
    std::size_t roomLeft = std::size_t{room} * sizeof(char16_t);
    if (iconv(decoder, &from, &left, &to, &roomLeft) == kFailed) {
        if (errno == E2BIG) return failed(CodePageFailure::kNoRoom);
        return failed(errno == EILSEQ || errno == EINVAL ? CodePageFailure::kInvalid
                                                         : CodePageFailure::kOther);
    }
    return {room - static_cast<std::uint32_t>(roomLeft / sizeof(char16_t)), CodePageFailure::kNone};
}

CodePageResult encodeCodePage(std::uint32_t codePage, const char16_t* in, std::uint32_t count,
                              char* out, std::uint32_t room) noexcept {
    iconv_t encoder = descriptors().encoder(codePage);
    if (encoder == noDescriptor()) return failed(CodePageFailure::kOther);
    std::size_t done = 0;  // units
    std::size_t slice = count;
    char* to = out;
    std::size_t roomLeft = room;
    while (done < count) {
        std::size_t offered = std::min(slice, count - done);
        if (codePage != kUtf8) offered = unitsBeforeTag(in + done, offered);
        if (offered != 0) {
            char* from = reinterpret_cast<char*>(const_cast<char16_t*>(in + done));
            std::size_t left = offered * sizeof(char16_t);
            const bool converted = iconv(encoder, &from, &left, &to, &roomLeft) != kFailed;
            const int error = errno;
            const std::size_t taken = offered - left / sizeof(char16_t);
            done += taken;
            if (converted) {
                slice *= 2;
                continue;
            }
            if (error == E2BIG) return failed(CodePageFailure::kNoRoom);
            if (error != EILSEQ && error != EINVAL) return failed(CodePageFailure::kOther);
            // A slice that ends between the halves of a pair: the next one begins with the pair.
            if (error == EINVAL && taken != 0 && done < count - 1) continue;
        }
        const std::size_t units = isPair(in + done, count - done) ? 2 : 1;
        if (roomLeft < units) return failed(CodePageFailure::kNoRoom);
        std::fill_n(to, units, '?');
        to += units;
        roomLeft -= units;
        done += units;
        slice = kFirstSlice;
    }
    return {room - static_cast<std::uint32_t>(roomLeft), CodePageFailure::kNone};
}

std::uint32_t undecodablePrefix(std::uint32_t codePage, const char* in,
                                std::uint32_t length) noexcept {
    iconv_t decoder = descriptors().decoder(codePage);
    if (decoder == noDescriptor() || length < 2) return 1;
    // A decoding that reaches a position where an earlier one came past fails as that one did, so
    // no position is looked at twice.
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
            const std::uint32_t size = characterSize(decoder, in + at, length - at);
            if (size == 0) break;
            at += size;
        }
        if (at == length) return std::max(start, std::uint32_t{1});
    }
    return length - 1;
}

}  // namespace qel::platform
