// The local clock. Callable from any thread.
#ifndef QEL_PLATFORM_LOCAL_CLOCK_H
#define QEL_PLATFORM_LOCAL_CLOCK_H

namespace qel::platform {

// A wall-clock reading in the computer's current time zone.
struct LocalClock {
    int year;         // all digits, such as 2005
    int month;        // [1, 12]
    int day;          // [1, 31]
    int hour;         // [0, 23]
    int minute;       // [0, 59]
    int second;       // [0, 59]; a leap second shows as the 59th
    int millisecond;  // [0, 999]
};

// The local wall clock now; all zero when the system does not know.
[[nodiscard]] LocalClock localClock() noexcept;

}  // namespace qel::platform

#endif
