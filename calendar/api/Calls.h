// What every function of the C interface does at its edge: exceptions become results, and the
// reason of a failure is kept for qelcal_last_error(). Any thread.
#ifndef QEL_CALENDAR_API_CALLS_H
#define QEL_CALENDAR_API_CALLS_H

#include <functional>
#include <string_view>

#include "QelCalendar/qelcalendar.h"

namespace qel::calendar::api {

// Thrown through the library when a callback asks to stop.
struct Stopped {};

// Keeps `why` as the calling thread's last error and returns `result`.
int fail(qelcal_result result, std::string_view why);

// The result of `body`, which returns one; exceptions included. Called from a catch-all.
int resultOfException() noexcept;

template <class Body>
int guarded(Body&& body) noexcept {
    try {
        return std::invoke(body);
    } catch (...) {
        return resultOfException();
    }
}

// The same for a function that returns a value: `otherwise` when it fails.
template <class Value, class Body>
Value guardedValue(Value otherwise, Body&& body) noexcept {
    try {
        return std::invoke(body);
    } catch (...) {
        resultOfException();
        return otherwise;
    }
}

// Ends the call, by an exception, when a callback returned anything but 0.
inline void goOn(int answer) {
    if (answer != 0) throw Stopped{};
}

}  // namespace qel::calendar::api

#endif
