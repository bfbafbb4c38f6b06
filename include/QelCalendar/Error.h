/// @file
/// How the C++ interface reports failures: every function that can fail throws qelcal::Error, and
/// out of memory is std::bad_alloc. The C++ headers are thin wrappers over qelcalendar.h, for C++11
/// and newer and any compiler that links its plain C names; nothing of them is in the library.
#ifndef QELCALENDAR_ERROR_H
#define QELCALENDAR_ERROR_H

#include <new>
#include <stdexcept>
#include <string>

#include "QelCalendar/qelcalendar.h"

namespace qelcal {

/// A call that failed: its result and one sentence without a full stop.
class Error : public std::runtime_error {
  public:
    /// The error of a call that returned `failed`; `why` says what was wrong.
    Error(int failed, const std::string& why) : std::runtime_error(why), result_(failed) {}
    /// A qelcal_result.
    int result() const noexcept { return result_; }

  private:
    int result_;
};

/// The library's version, "1.0.0".
inline std::string version() {
    return qelcal_version();
}

/// What the wrappers share; callers have no use for it.
namespace detail {

inline void check(int result) {
    if (result == QELCAL_OK) return;
    if (result == QELCAL_OUT_OF_MEMORY) throw std::bad_alloc();
    throw Error(result, qelcal_last_error());
}

template <class Handle>
Handle* made(Handle* handle) {
    if (handle == nullptr) throw std::bad_alloc();
    return handle;
}

}  // namespace detail

}  // namespace qelcal

#endif
