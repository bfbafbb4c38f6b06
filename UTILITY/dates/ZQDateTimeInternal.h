// The writer of date-time texts for callers with a buffer of their own. Without state; callable
// from any thread.
#ifndef QEL_DATES_ZQDATETIMEINTERNAL_H
#define QEL_DATES_ZQDATETIMEINTERNAL_H

#include <cstddef>
#include <cstdint>

namespace qel::dates {

inline constexpr std::size_t kDateTimeRoom = 17;

// Writes the date-time text of a value, as ZQ_SecondsToDateTime appends it, and a terminator;
// returns its length. REQUIRES: room for kDateTimeRoom characters
std::size_t secondsToAlpha(std::int64_t seconds, char* buffer, bool noUtc);

}  // namespace qel::dates

#endif
