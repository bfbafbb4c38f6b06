// What the rule readers share: items, numbers, day codes, the end date, the failure report.
#include <algorithm>
#include <climits>
#include <cstdio>

#include "QelUtility/BxTrace.h"
#include "dates/ZQDateInternal.h"
#include "recurrence/RRuleInternal.h"

namespace qel {

namespace {

constexpr char kSourceName[] = "RRule";
constexpr std::size_t kDateLength = 8;    // "YYYYMMDD"
constexpr std::size_t kReportRoom = 512;  // the error line shows less of a text than this

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

bool RRuleItems::next(std::string_view& item) {
    while (!ended_) {
        const std::size_t end = rest_.find(separator_);
        item = rest_.substr(0, end);
        if (end == std::string_view::npos) {
            ended_ = true;
        } else {
            rest_.remove_prefix(end + 1);
        }
        if (keepEmpty_ || !item.empty()) return true;
    }
    return false;
}

int RRule_Number(std::string_view item) {
    std::size_t at = 0;
    while (at < item.size() && isSpace(item[at])) ++at;
    bool negative = false;
    if (at < item.size() && (item[at] == '+' || item[at] == '-')) negative = item[at++] == '-';
    long long value = 0;  // [0, -INT_MIN]
    constexpr long long kLimit = -static_cast<long long>(INT_MIN);
    for (; at < item.size() && item[at] >= '0' && item[at] <= '9'; ++at) {
        value = std::min(value * 10 + (item[at] - '0'), kLimit);
    }
    return static_cast<int>(negative ? -value : std::min<long long>(value, INT_MAX));
}

bool RRule_EqualNoCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

int RRule_DayOfCode(std::string_view text) {
    if (text.size() != 2) return 0;
    for (int day = 1; day <= 7; ++day) {
        const char* code = kDayCodes[static_cast<std::size_t>(day)];
        if (text[0] == code[0] && text[1] == code[1]) return day;
    }
    return 0;
}

int RRule_DayOfCodeNoCase(std::string_view text) {
    if (text.size() != 2) return 0;
    for (int day = 1; day <= 7; ++day) {
        const char* code = kDayCodes[static_cast<std::size_t>(day)];
        if (lower(text[0]) == lower(code[0]) && lower(text[1]) == lower(code[1])) return day;
    }
    return 0;
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

}  // namespace qel
