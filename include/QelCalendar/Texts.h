/// @file
/// Character sets, files recognised, and texts of unknown origin made safe to show. Any thread.
#ifndef QELCALENDAR_TEXTS_H
#define QELCALENDAR_TEXTS_H

#include <cstddef>
#include <string>

#include "QelCalendar/Error.h"

namespace qelcal {

namespace detail {

// Adds output to the std::string that `context` points to.
inline int QELCALENDAR_CALL appendTo(void* context, const char* bytes, std::size_t size) {
    try {
        static_cast<std::string*>(context)->append(bytes, size);
        return 0;
    } catch (...) {
        return 1;
    }
}

inline void checkAppended(int result) {
    if (result == QELCAL_STOPPED) throw std::bad_alloc();
    check(result);
}

}  // namespace detail

/// True when toUtf8 knows the character set; names are those of MIME, in either case.
inline bool isCharset(const std::string& name) {
    return qelcal_charset_known(name.c_str()) != 0;
}

/// A text in the character set `name` as UTF-8; what is invalid in the set becomes U+FFFD. Throws
/// Error for an unknown set.
inline std::string toUtf8(const std::string& name, const std::string& text) {
    std::string result;
    detail::checkAppended(qelcal_text_to_utf8(name.c_str(), text.data(), text.size(),
                                              &detail::appendTo, &result, nullptr));
    return result;
}

/// True when the bytes are UTF-8 (RFC 3629).
inline bool isUtf8(const std::string& text) {
    return qelcal_is_utf8(text.data(), text.size()) != 0;
}

/// What a file seems to be whose first bytes these are.
inline qelcal_kind recognise(const std::string& bytes) {
    return static_cast<qelcal_kind>(qelcal_recognise(bytes.data(), bytes.size()));
}

/// The text with control characters, those that turn the direction of text, and bytes that are not
/// UTF-8 as \\n, \\r, \\t or \\xNN; longer than `longest` bytes (0: no limit) it is cut and ends in
/// "...".
inline std::string printable(const std::string& text, std::size_t longest = 4096) {
    std::string result;
    detail::checkAppended(
        qelcal_printable(text.data(), text.size(), longest, &detail::appendTo, &result));
    return result;
}

}  // namespace qelcal

#endif
