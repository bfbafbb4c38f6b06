// The fields of a date-time text that is written as it should be, "20050615T083000": what nearly
// every text is, and what both readers of such texts try first. For the library's own use, from any
// thread.
#ifndef QEL_DATES_DATETIMEFIELDS_H
#define QEL_DATES_DATETIMEFIELDS_H

namespace qel::dates {

struct DateTimeFields {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Reads two digits and moves past them; false, with `text` where it was, when they are not both.
inline bool takePair(const char*& text, int& value) {
    const auto tens = static_cast<unsigned>(text[0]) - '0';
    if (tens > 9) return false;
    const auto ones = static_cast<unsigned>(text[1]) - '0';
    if (ones > 9) return false;
    text += 2;
    value = static_cast<int>(tens * 10 + ones);
    return true;
}

// The fields of an ordinary text, in which every one has all its digits; false for any other.
inline bool takeDateTime(const char* text, DateTimeFields& fields) {
    int century = 0;
    if (!takePair(text, century) || !takePair(text, fields.year)) return false;
    fields.year += century * 100;
    if (!takePair(text, fields.month) || !takePair(text, fields.day) || *text++ != 'T')
        return false;
    return takePair(text, fields.hour) && takePair(text, fields.minute) &&
           takePair(text, fields.second);
}

}  // namespace qel::dates

#endif
