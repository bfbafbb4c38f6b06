// The converter's descriptor level: open, convert, close.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "encodings/BxCharConvDescriptor.h"
#include "platform/AsciiText.h"
#include "platform/CodePages.h"

namespace qel::encodings {
namespace {

constexpr std::uint32_t kUtf8CodePage = 65001;
constexpr std::uint32_t kDefaultCodePage = 0;
constexpr std::uint64_t kMaxUnits =
    std::min<std::uint64_t>(std::numeric_limits<std::uint32_t>::max(),
                            std::numeric_limits<std::size_t>::max() / sizeof(char16_t));
constexpr char16_t kByteOrderMark = 0xFEFF;
constexpr char16_t kSwappedByteOrderMark = 0xFFFE;

// Only these two names count as names. So "8859-2" is page 8859, which no system has, and
// "SJIS" is the default page: the connector's own meaning of its list, not an oversight.
std::uint32_t codePageOf(const char* name) {
    if (platform::equalNoCase(name, "UTF-8")) return kUtf8CodePage;
    if (platform::equalNoCase(name, "8859-1")) return kDefaultCodePage;
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(
        platform::takeDecimal<std::uint64_t, kMost>(name, std::numeric_limits<std::size_t>::max()));
}

int errorOf(platform::CodePageFailure failure) {
    switch (failure) {
        case platform::CodePageFailure::kNoRoom:
            return kErrorTooBig;
        case platform::CodePageFailure::kInvalid:
            return kErrorInvalidSequence;
        default:
            return kErrorBadDescriptor;
    }
}

// The work buffer with at least `need` units; false when memory is exhausted.
bool prepareWideBuf(_iconv_info& cd, std::uint64_t need) {
    if (cd.wideBufCount < need) {
        if (need > kMaxUnits) return false;
        const auto bytes = static_cast<std::size_t>(need) * sizeof(char16_t);
        void* grown = std::realloc(cd.wideBuf, bytes);
        if (grown == nullptr) return false;
        cd.wideBuf = static_cast<char16_t*>(grown);
        cd.wideBufCount = static_cast<std::uint32_t>(need);
    }
    return true;
}

// Takes what was converted off the input and the room.
void advance(const char*& in, unsigned int& inLeft, char*& out, unsigned int& outLeft,
             std::uint32_t written) {
    in += inLeft;
    inLeft = 0;
    out += written;
    outLeft -= written;
}

// Converts all of the input or nothing: 0, or the error.
int convertThroughUtf16(_iconv_info& cd, const char*& in, unsigned int& inLeft, char*& out,
                        unsigned int& outLeft) {
    // One unit more than any text decodes to, so that a zero follows it.
    const std::uint64_t need = std::uint64_t{inLeft} + 1;
    if (!prepareWideBuf(cd, need)) return kErrorNoMemory;
    const auto decoded = platform::decodeCodePage(cd.fromCodePage, in, inLeft, cd.wideBuf,
                                                  static_cast<std::uint32_t>(need));
    if (decoded.count == 0) return errorOf(decoded.failure);
    cd.wideBuf[decoded.count] = u'\0';

    // A byte-order mark is left out but still counted: the zero unit after the text is encoded in
    // its place, and the result ends in a NUL byte.
    const char16_t* text = cd.wideBuf;
    if (*text == kByteOrderMark || *text == kSwappedByteOrderMark) ++text;
    const auto encoded = platform::encodeCodePage(cd.toCodePage, text, decoded.count, out, outLeft);
    if (encoded.count == 0) return errorOf(encoded.failure);

    advance(in, inLeft, out, outLeft, encoded.count);
    return 0;
}

// Copies what there is room for: 0, or the error when input remains.
int copyBytes(const char*& in, unsigned int& inLeft, char*& out, unsigned int& outLeft) {
    const unsigned int count = std::min(inLeft, outLeft);
    std::memmove(out, in, count);
    in += count;
    inLeft -= count;
    out += count;
    outLeft -= count;
    return inLeft != 0 ? kErrorTooBig : 0;
}

}  // namespace

char* duplicate(const char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy != nullptr) std::memcpy(copy, text, size);
    return copy;
}

void releaseDescriptor(_iconv_info* cd) {
    std::free(cd->toName);
    std::free(cd->fromName);
    std::free(cd->wideBuf);
    std::free(cd);
}

}  // namespace qel::encodings

_iconv_info* CBxCharConvSvcs::iconv_open(const char* to, const char* from) {
    if (to == nullptr || *to == '\0' || from == nullptr || *from == '\0') {
        m_lastError = qel::encodings::kErrorInvalidArgument;
        return qel::encodings::failedOpen();
    }
    auto* cd = static_cast<_iconv_info*>(std::calloc(1, sizeof(_iconv_info)));
    if (cd != nullptr) {
        cd->toName = qel::encodings::duplicate(to);
        cd->fromName = qel::encodings::duplicate(from);
    }
    if (cd == nullptr || cd->toName == nullptr || cd->fromName == nullptr) {
        if (cd != nullptr) qel::encodings::releaseDescriptor(cd);
        m_lastError = qel::encodings::kErrorNoMemory;
        return qel::encodings::failedOpen();
    }
    cd->toCodePage = qel::encodings::codePageOf(to);
    cd->fromCodePage = qel::encodings::codePageOf(from);
    cd->useCodePages = 1;
    return cd;
}

int CBxCharConvSvcs::iconv_close(_iconv_info* cd) {
    if (cd == nullptr || cd == qel::encodings::failedOpen()) {
        m_lastError = qel::encodings::kErrorBadDescriptor;
        return -1;
    }
    qel::encodings::releaseDescriptor(cd);
    return 0;
}

unsigned int CBxCharConvSvcs::iconv(_iconv_info* cd, const char** in, unsigned int* inLeft,
                                    char** out, unsigned int* outLeft) {
    if (cd == qel::encodings::failedOpen()) cd = nullptr;
    if (cd != nullptr && (in == nullptr || *in == nullptr)) return 0;
    const bool available = qel::platform::codePagesAvailable();
    if (cd != nullptr && !available) cd->useCodePages = 0;
    int error = qel::encodings::kErrorBadDescriptor;
    unsigned int result = 1;
    if (cd != nullptr && inLeft != nullptr && out != nullptr && *out != nullptr &&
        outLeft != nullptr) {
        if (cd->useCodePages != 0 && *inLeft != 0) {
            const std::uint32_t written = qel::platform::convertCodePage(
                cd->fromCodePage, cd->toCodePage, *in, *inLeft, *out, *outLeft);
            error = 0;
            if (written != 0)
                qel::encodings::advance(*in, *inLeft, *out, *outLeft, written);
            else
                error = qel::encodings::convertThroughUtf16(*cd, *in, *inLeft, *out, *outLeft);
        } else {
            result = *inLeft;
            error = qel::encodings::copyBytes(*in, *inLeft, *out, *outLeft);
        }
    }
    if (error == 0) return result;
    m_lastError = error;
    return qel::encodings::kIconvFailed;
}
