// The time stamps of messages. Callable from any thread.
#ifndef QEL_TRACE_STAMP_H
#define QEL_TRACE_STAMP_H

namespace qel::trace {

// Room for "06/15 14:02:11.123 000" with the widest numbers.
struct Stamp {
    char text[48];
};

// Local time, milliseconds, and a number that counts the stamps of one millisecond.
[[nodiscard]] Stamp makeStamp() noexcept;

// Writes the same to `out`, which has room for a Stamp; returns the position of its terminator.
char* putStamp(char* out) noexcept;

}  // namespace qel::trace

#endif
