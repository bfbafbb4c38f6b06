// Strings and arrays as one text, for tables of expected values: "(null)" is a null string,
// "(empty)" an allocated one without characters, "ab(5)" one whose length is not that of its text.
#ifndef QEL_TESTS_STRINGS_SHOWN_H
#define QEL_TESTS_STRINGS_SHOWN_H

#include <cstring>
#include <string>

#include "QelUtility/VStrArray.h"

namespace qel::test {

inline bool isNull(const VStr& s) {
    return s.Compare(nullptr) == 0;
}

inline std::string shown(const VStr& s) {
    const char* const text = s;
    const int length = s.GetLength();
    if (length == 0) return isNull(s) ? "(null)" : "(empty)";
    if (length == static_cast<int>(std::strlen(text))) return text;
    return text + ("(" + std::to_string(length) + ")");
}

// "a,(null),c"
template <class Array>
std::string shownAll(Array& array) {
    std::string text;
    for (int i = 0; i < array.GetSize(); ++i) text += (i == 0 ? "" : ",") + shown(array[i]);
    return text;
}

}  // namespace qel::test

#endif
