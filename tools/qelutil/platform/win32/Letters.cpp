#include "platform/Letters.h"

#include <windows.h>

#include <climits>

namespace qel::cli::platform {

std::string smallLetters(const std::string& text) {
    if (text.empty() || text.size() > INT_MAX) return text;
    const int size = static_cast<int>(text.size());
    const int length =
        ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
    if (length <= 0) return text;
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
    ::CharLowerBuffW(wide.data(), static_cast<DWORD>(length));
    const int bytes =
        ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return text;
    std::string small(static_cast<std::size_t>(bytes), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, small.data(), bytes, nullptr, nullptr);
    return small;
}

}  // namespace qel::cli::platform
