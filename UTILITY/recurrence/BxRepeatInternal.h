// What the two directions of the repeat conversion share. For the library's own use.
#ifndef QEL_RECURRENCE_BXREPEATINTERNAL_H
#define QEL_RECURRENCE_BXREPEATINTERNAL_H

#include "QelUtility/BxRepeat.h"
#include "QelUtility/BxTrace.h"

namespace qel::recurrence {

inline constexpr char kConversionSourceName[] = "BxRepeat";

// The lines that the conversions' failures are reported with.
enum ConversionLine {
    kLineExclusionDate = 249,
    kLineNoStartText = 326,
    kLineUnknownFrequency = 377,
    kLineWeekNumbers = 450,
    kLineEmptyByDay = 497,
    kLineByDayMissing = 582,
    kLineNoDayBits = 587,
    kLineUnexpectedType = 672,
    kLineCountFailed = 694,
    kLineTooManyWeeks = 1328,
    kLineTooManyMonthlyWeeks = 1373,
    kLineTooManyQuarterWeeks = 1440,
    kLineNegativeDaysOnly = 1581
};

inline int fail(int line, const char* text, int code) {
    return BxTrace_Error_S(kConversionSourceName, line, text, code);
}

inline void warn(int* flags, int warning) {
    if (flags != nullptr) *flags |= warning;
}

}  // namespace qel::recurrence

#endif
