// The library's one door to the operating system: free functions, declared here once and defined
// twice, in posix/ and in win32/. Callable from any thread unless a function says otherwise.
#ifndef QEL_PLATFORM_PLATFORM_H
#define QEL_PLATFORM_PLATFORM_H

#include <cstddef>
#include <cstdint>

namespace qel::platform {

// --- Memory of strings (Memory.cpp) --------------------------------------------------------------

// A zero-filled block of `size` bytes, or null when memory is exhausted. Freed by stringFree alone.
[[nodiscard]] char* stringAlloc(std::size_t size) noexcept;

// The block grown or shrunk to `size` bytes, content kept and new bytes zero; it may move. Null
// when memory is exhausted, and then `block` stands as it was. A null `block` allocates.
[[nodiscard]] char* stringRealloc(char* block, std::size_t size) noexcept;

// Frees a block of the two functions above; null is nothing.
void stringFree(char* block) noexcept;

// The number of bytes that may be used in `block`, at least what was asked for; 0 for null.
[[nodiscard]] std::size_t stringBlockSize(const char* block) noexcept;

// --- The local clock (LocalClock.cpp) ------------------------------------------------------------

// A wall-clock reading in the computer's current time zone.
struct LocalClock {
    int year;    // all digits, such as 2005
    int month;   // [1, 12]
    int day;     // [1, 31]
    int hour;    // [0, 23]
    int minute;  // [0, 59]
    int second;  // [0, 59]; a leap second shows as the 59th
};

// The local wall clock now; all zero when the system cannot tell.
[[nodiscard]] LocalClock localClock() noexcept;

// --- Locks (Lock.cpp) ----------------------------------------------------------------------------
// A recursive lock of one process, in storage that its owner provides.

constexpr std::size_t kLockSize = 6 * sizeof(void*);
constexpr std::size_t kLockAlignment = alignof(void*);

// `storage` is kLockSize bytes, aligned to kLockAlignment, that stay where they are until
// lockDestroy. REQUIRES of the others: initialised; of lockLeave: held by the calling thread; of
// lockDestroy: held by nobody.
void lockInit(void* storage) noexcept;
void lockEnter(void* storage) noexcept;
void lockLeave(void* storage) noexcept;
void lockDestroy(void* storage) noexcept;

// --- The current time zone (TimeZone.cpp) --------------------------------------------------------

// The moment of a yearly change of offset, in the wall-clock time that it ends. With `year` 0 a
// rule: the `day`-th (1 to 4, 5 = the last) `dayOfWeek` of `month`. With another year a date: `day`
// of `month`. Month 0: the zone has no such change.
struct ZoneChangeMoment {
    int year = 0;
    int month = 0;      // [0, 12]
    int dayOfWeek = 0;  // [0, 6], 0 = Sunday
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// A zone's offsets in minutes, UTC = local time + bias. In standard time the bias is
// `bias + standardBias`; daylight saving adds `daylightBias`, which is mostly -60.
struct TimeZoneDescription {
    int bias = 0;
    int standardBias = 0;
    int daylightBias = 0;
    ZoneChangeMoment standardDate;  // the change to standard time
    ZoneChangeMoment daylightDate;  // the change to daylight saving
};

// The computer's current zone with the rules that hold now. Where a rule cannot be put as a weekday
// of a month, both changes come as the dates of `year`. UTC when the system cannot tell. May read a
// file; callable from any thread that no other thread changes the environment under.
[[nodiscard]] TimeZoneDescription currentTimeZone(int year) noexcept;

// Whether the computer follows daylight saving: true unless its settings say otherwise.
[[nodiscard]] bool followsDaylightSaving() noexcept;

// --- Code pages (CodePages.cpp) ------------------------------------------------------------------

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

// For input that decodeCodePage found invalid (length at least 2): how many of its bytes can be
// skipped at once because no decoding that begins before them would succeed, in [1, length - 1].
// Takes time in proportion to the length, where trying each position would take its square.
[[nodiscard]] std::uint32_t undecodablePrefix(std::uint32_t codePage, const char* in,
                                              std::uint32_t length) noexcept;

}  // namespace qel::platform

#endif
