// What the rule readers share: items, numbers, day codes, the end date, the failure report.
#include "recurrence/RRuleText.h"

#include <algorithm>
#include <climits>
#include <cstdio>

#include "QelUtility/BxTrace.h"
#include "QelUtility/ZQDateTime.h"
#include "platform/AsciiText.h"

namespace qel::recurrence {

namespace {

constexpr char kSourceName[] = "RRule";
constexpr std::size_t kDateLength = 8;    // "YYYYMMDD"
constexpr std::size_t kReportRoom = 512;  // the error line shows less of a text than this

// Both letters of a day code in one number.
constexpr unsigned pairOf(char first, char second) {
    return static_cast<unsigned char>(first) * 256U + static_cast<unsigned char>(second);
}
constexpr unsigned pairOf(std::size_t day) {
    return pairOf(kDayCodes[day][0], kDayCodes[day][1]);
}

int dayOfPair(unsigned pair) {
    switch (pair) {
        case pairOf(1):
            return 1;
        case pairOf(2):
            return 2;
        case pairOf(3):
            return 3;
        case pairOf(4):
            return 4;
        case pairOf(5):
            return 5;
        case pairOf(6):
            return 6;
        case pairOf(7):
            return 7;
        default:
            return 0;
    }
}

}  // namespace

int RRule_Number(std::string_view item) {
    const char* at = item.data();
    const char* const end = at + item.size();
    while (at != end && platform::isAsciiSpace(*at)) ++at;
    bool negative = false;
    if (at != end && (*at == '+' || *at == '-')) negative = *at++ == '-';
    constexpr long long kLimit = -static_cast<long long>(INT_MIN);
    const auto value =
        platform::takeDecimal<long long, kLimit>(at, static_cast<std::size_t>(end - at));
    return static_cast<int>(negative ? -value : std::min<long long>(value, INT_MAX));
}

bool RRule_IsName(std::string_view text, std::string_view name) {
    return std::equal(
        text.begin(), text.end(), name.begin(), name.end(),
        [](char c, char letter) { return platform::asciiCapital(c) == letter; });
}

int RRule_DayOfCode(std::string_view text) {
    return text.size() == 2 ? dayOfPair(pairOf(text[0], text[1])) : 0;
}

int RRule_DayOfCodeNoCase(std::string_view text) {
    return text.size() == 2
               ? dayOfPair(pairOf(platform::asciiCapital(text[0]), platform::asciiCapital(text[1])))
               : 0;
}

void RRule_Start(_rruleRepeat* rule, int* flags) {
    if (flags != nullptr) *flags = 0;
    BxUtil_InitializeRRULE(rule);
}

__int64 RRule_ReadUntil(std::string_view text, int* flags) {
    if (flags != nullptr && text.size() > kDateLength) *flags |= RRULE_UNTIL_HAS_TIME;
    // No copy, which exhausted memory might lose: what ends an item in its text, a separator or the
    // terminator, ends the reading of a date as well.
    return ZQ_DateTimeToSeconds(text.data());
}

int RRule_BadFrequency(std::string_view text) {
    char message[kReportRoom];
    std::snprintf(message, sizeof message, "Bad FREQ%.*s",
                  static_cast<int>(std::min(text.size(), sizeof message)), text.data());
    return BxTrace_Error_SL(kSourceName, __LINE__, message, 0, QEL_FAILED);
}

}  // namespace qel::recurrence
