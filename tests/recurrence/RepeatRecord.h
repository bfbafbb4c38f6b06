// Repeat and rule records as one line of text, for tables of tests, with dates as the eight-digit
// numbers that a person reads.
#ifndef QEL_TESTS_REPEATRECORD_H
#define QEL_TESTS_REPEATRECORD_H

#include <string>
#include <vector>

#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"

namespace qel::test {

// 20050131 as a code date; what is no date (-1, a code below 19000101) stays as it is.
int code(int date);
// The inverse; a code that names no date stays as it is.
int date(int code);

// "20050131 20050228" of code dates, and back.
std::string dates(const std::vector<int>& codes);
std::vector<int> codes(const std::string& dates);

// A record from its text: the type, then the fields that do not hold their defaults (no end, 1 for
// "every" and "units", else 0); of sets the numbers that are selected, with another flag than 1
// behind a colon:
//   12 from 20050615 to 20051231 every 2 units 1 day 3 month 6 weekday 2 week 5
//      days 2,4,6 months 1,12 weeks 1,5:2 except 20050617,20050620
class Record {
  public:
    explicit Record(const std::string& text);
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    ZQTR_REPEAT repeat{};

  private:
    std::vector<int> exclusions_;  // what repeat.exclusions points to
};

std::string describe(const ZQTR_REPEAT& repeat);
// A rule record: the frequency, then every field that does not hold its default, sets as the
// numbers of their bits: "WEEKLY interval=2 count=10 parts=BYDAY days=2,4,6".
std::string describe(const _rruleRepeat& rule);

// The next `count` occurrences after `previous` (code dates, -1 = from the first), fewer when the
// engine fails.
std::vector<int> occurrences(const ZQTR_REPEAT& repeat, int previous, std::size_t count);

}  // namespace qel::test

#endif
