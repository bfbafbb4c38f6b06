// Date texts, date-time texts and durations, from arbitrary text and from arbitrary numbers.
#include "Fuzz.h"
#include "QelUtility/ZQDate.h"
#include "QelUtility/ZQDateTime.h"
#include "QelUtility/ZQDuration.h"
#include "dates/ZQDateInternal.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(dates) {
    const int number = in.take<int>();
    const auto seconds = in.take<std::int64_t>();
    const std::string first = in.line();
    const std::string second = in.text();
    const VStr a(first.c_str());
    const VStr b(second.c_str());

    char text[16];
    ZQ_CodeDateToAlpha(number, text);
    FUZZ_CHECK(std::strlen(text) == 8);
    if (0 <= number && number <= 219145) FUZZ_CHECK(ZQ_AlphaToCodeDate(text) == number);
    ZQ_CodeTimeToAlpha(number, text);
    FUZZ_CHECK(std::strlen(text) == 6);
    int month = 0;
    int day = 0;
    int year = 0;
    ZQ_AlphaToDate(first.c_str(), &month, &day, &year);
    FUZZ_CHECK(ZQ_AlphaToCodeDate(first.c_str()) >= 0);
    FUZZ_CHECK(ZQ_AlphaToCodeTime(first.c_str()) >= 0);
    if (qel::dates::ZQ_IsValidAlphaDate(first.c_str()) && year <= 2499)
        FUZZ_CHECK(ZQ_AlphaToCodeDate(first.c_str()) > 0 ||
                   (year == 1900 && month == 1 && day == 1));

    VStr out;
    ZQ_SecondsToDateTime(seconds, out, false);
    if (0 <= seconds && seconds < 219146LL * 86400)
        FUZZ_CHECK(ZQ_DateTimeToSeconds(out) == seconds);
    (void)ZQ_DateTimeToSeconds(a);
    (void)ZQ_DateTimeToUnixTime(a);

    int duration = 0;
    if (ZQ_SecondsToDuration(number, out) == 0 && number != INT32_MIN) {
        FUZZ_CHECK(ZQ_DurationToSeconds(out, &duration) == 0);
        FUZZ_CHECK(duration == number);
    }
    if (ZQ_DurationToSeconds(a, &duration) == 0 && duration != 0)
        FUZZ_CHECK(ZQ_NormalizeDuration(a, out) == 0);
    ZQ_DurationBetween(a, b, out);
    VStr sum;
    ZQ_AddDuration(a, b, sum);
    ZQ_AddSeconds(a, number, sum);
    ZQ_DateTimeDifference(a, b, &duration);
}
