// Code pages by the system's MultiByteToWideChar and WideCharToMultiByte.
#include "platform/CodePages.h"

#include <windows.h>

#include <algorithm>
#include <limits>

#include "platform/win32/CodePageLoader.h"

namespace qel::platform {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));
constexpr std::uint32_t kMaxCount = std::numeric_limits<int>::max();

CodePageLoader& loader() {
    static CodePageLoader ofThisProcess(thisSystem());
    return ofThisProcess;
}

CodePageResult resultOf(int count) {
    if (count > 0) return {static_cast<std::uint32_t>(count), CodePageFailure::kNone};
    switch (GetLastError()) {
        case ERROR_INSUFFICIENT_BUFFER:
            return {0, CodePageFailure::kNoRoom};
        case ERROR_NO_UNICODE_TRANSLATION:
            return {0, CodePageFailure::kInvalid};
        default:
            return {0, CodePageFailure::kOther};
    }
}

// Page 0 is the system's ANSI page, also in a program whose manifest makes its own one UTF-8.
std::uint32_t pageOf(std::uint32_t codePage) {
    if (codePage != CP_ACP || GetACP() != CP_UTF8) return codePage;
    DWORD page = 0;
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<wchar_t*>(&page), sizeof(page) / sizeof(wchar_t));
    return page;
}

int asCount(std::uint32_t room) {
    return static_cast<int>(std::min(room, kMaxCount));
}

}  // namespace

bool codePagesAvailable() noexcept {
    return loader().obtain();
}

CodePageResult decodeCodePage(std::uint32_t codePage, const char* in, std::uint32_t length,
                              char16_t* out, std::uint32_t room) noexcept {
    // A negative length would mean "up to the terminator".
    const DecodeFunction decode = loader().decode();
    if (decode == nullptr || length > kMaxCount) return {0, CodePageFailure::kOther};
    SetLastError(0);
    return resultOf(decode(pageOf(codePage), 0, in, static_cast<int>(length),
                           reinterpret_cast<wchar_t*>(out), asCount(room)));
}

CodePageResult encodeCodePage(std::uint32_t codePage, const char16_t* in, std::uint32_t count,
                              char* out, std::uint32_t room) noexcept {
    const EncodeFunction encode = loader().encode();
    if (encode == nullptr || count > kMaxCount) return {0, CodePageFailure::kOther};
    // Room for nothing is the system's way to ask for the length alone.
    if (room == 0) return {0, CodePageFailure::kNoRoom};
    SetLastError(0);
    return resultOf(encode(pageOf(codePage), 0, reinterpret_cast<const wchar_t*>(in),
                           static_cast<int>(count), out, asCount(room), nullptr, nullptr));
}

std::uint32_t convertCodePage(std::uint32_t, std::uint32_t, const char*, std::uint32_t, char*,
                              std::uint32_t) noexcept {
    return 0;  // the system's pages are reached through UTF-16 alone
}

std::uint32_t undecodablePrefix(std::uint32_t, const char*, std::uint32_t) noexcept {
    // The system replaces invalid input rather than refusing it, so this is hardly ever asked.
    return 1;
}

}  // namespace qel::platform
