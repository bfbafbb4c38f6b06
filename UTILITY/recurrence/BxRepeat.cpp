// The date conversions between the repeat record and the rule record.
#include "QelUtility/BxRepeat.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "QelUtility/VStr.h"
#include "QelUtility/ZQDate.h"
#include "dates/CivilDate.h"

namespace {

int saturate(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

}  // namespace

__int64 QELUTILITY_CALL ConvertZQTRDateTimeToRRule(int codeDate) {
    return codeDate == -1 ? -1 : std::int64_t{codeDate} * qel::dates::kSecondsPerDay;
}

int QELUTILITY_CALL ZQTRDateTimeToRRule(int codeDate) {
    if (codeDate == -1) return -1;
    return saturate((std::int64_t{codeDate} - qel::dates::kUnixEpochCodeDate) *
                    qel::dates::kSecondsPerDay);
}

int QELUTILITY_CALL RRuleToZQTRDateTime(__int64 seconds) {
    return seconds == -1 ? -1 : saturate(seconds / qel::dates::kSecondsPerDay);
}

int QELUTILITY_CALL ZQTRDateTimeToUTCDate(int codeDate, VStr& out) {
    char digits[9];
    out = static_cast<const char*>(ZQ_CodeDateToAlpha(codeDate, digits));
    return QEL_OK;
}

int QELUTILITY_CALL UTCDateToZQTRDateTime(const char* text, int* codeDate) {
    // Only the first eight characters are read, so a "T" and a time after them need not be cut off.
    if (codeDate != nullptr) *codeDate = ZQ_AlphaToCodeDate(text);
    return QEL_OK;
}
