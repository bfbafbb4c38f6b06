// Conversion between code pages. Callable from any thread.
#ifndef QEL_PLATFORM_CODE_PAGES_H
#define QEL_PLATFORM_CODE_PAGES_H

#include <cstdint>

namespace qel::platform {

enum class CodePageFailure {
    kNone,
    kNoRoom,   // the output cannot hold the result
    kInvalid,  // the input holds a sequence that means nothing in its code page, or ends inside one
    kOther     // no such code page, or the system refused
};

struct CodePageResult {
    std::uint32_t count;  // units or bytes written; 0 on failure
    CodePageFailure failure;
};

// Makes the conversion functions ready; to be asked before each conversion. False when the system
// has none.
[[nodiscard]] bool codePagesAvailable() noexcept;

// Decodes `length` bytes of a code page (0: the system's default ANSI set) into UTF-16, all of them
// or none. Elsewhere than on Windows the pages are 0 (as windows-1252), 936, 950 and 65001, and
// invalid input is always refused; Windows replaces most of it.
[[nodiscard]] CodePageResult decodeCodePage(std::uint32_t codePage, const char* in,
                                            std::uint32_t length, char16_t* out,
                                            std::uint32_t room) noexcept;

// The way back, again all or nothing. What the code page lacks becomes its default character, "?"
// for each UTF-16 unit elsewhere than on Windows.
[[nodiscard]] CodePageResult encodeCodePage(std::uint32_t codePage, const char16_t* in,
                                            std::uint32_t count, char* out,
                                            std::uint32_t room) noexcept;

// From one page to another in one step, with the result that decoding and encoding have: the bytes
// written, or 0 where the two must be asked. That is so for every text that does not convert whole,
// for one that begins with a byte-order mark, and where input and output overlap. `out` may have
// been written to then.
[[nodiscard]] std::uint32_t convertCodePage(std::uint32_t from, std::uint32_t to, const char* in,
                                            std::uint32_t length, char* out,
                                            std::uint32_t room) noexcept;

// For input that decodeCodePage found invalid (length at least 2): how many of its bytes can be
// skipped at once because no decoding that begins before them would succeed, in [1, length - 1].
// Takes time in proportion to the length, where trying each position would take its square.
[[nodiscard]] std::uint32_t undecodablePrefix(std::uint32_t codePage, const char* in,
                                              std::uint32_t length) noexcept;

}  // namespace qel::platform

#endif
