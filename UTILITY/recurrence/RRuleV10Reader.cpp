// The reader of vCalendar 1.0 rules.
#include <string_view>

#include "QelUtility/RRule.h"
#include "recurrence/RRuleText.h"

namespace qel::recurrence {

namespace {

constexpr std::size_t kDateLength = 8;  // "YYYYMMDD"

// Reads "W2", "MP1", ...; false when the first letter is no frequency's. In "M" or "Y" alone there
// is no second letter and no interval.
bool readFrequency(std::string_view token, _rruleRepeat& rule) {
    const char first = token.empty() ? '\0' : token[0];
    const char second = token.size() < 2 ? '\0' : token[1];
    std::size_t codeLength = 2;
    switch (first) {
        case 'D':
            rule.freq = RRULE_FREQ_DAILY;
            codeLength = 1;
            break;
        case 'W':
            rule.freq = RRULE_FREQ_WEEKLY;
            codeLength = 1;
            break;
        case 'M':
            rule.freq = RRULE_FREQ_MONTHLY;
            rule.type |= second == 'P' ? RRULE_TYPE_BYDAY : RRULE_TYPE_BYMONTHDAY;
            break;
        case 'Y':
            rule.freq = RRULE_FREQ_YEARLY;
            rule.type |= second == 'M' ? RRULE_TYPE_BYMONTH : RRULE_TYPE_BYYEARDAY;
            break;
        default:
            return false;
    }
    token.remove_prefix(token.size() < codeLength ? token.size() : codeLength);
    const int interval = RRule_Number(token);
    if (interval > 0) rule.interval = static_cast<short>(interval);
    return true;
}

// Reads the last token as the end of the rule; false when it is not an end.
bool readEnd(std::string_view token, _rruleRepeat& rule, int* flags) {
    if (!token.empty() && token[0] == '#') {
        rule.count = static_cast<short>(RRule_Number(token.substr(1)));
        return true;
    }
    if (token.size() < kDateLength) return false;
    rule.until = RRule_ReadUntil(token, flags);
    return true;
}

void readDay(std::string_view token, _rruleRepeat& rule) {
    if (const int day = RRule_DayOfCode(token); day != 0)
        rule.byDay |= static_cast<unsigned char>(1U << day);
}

// "1+", "2-": only the first slot is used, so that of several positions the last one is kept.
void readPosition(std::string_view token, _rruleRepeat& rule) {
    rule.type |= RRULE_TYPE_BYSETPOS;
    const bool positive = token.find('+') != std::string_view::npos;
    const long long n = RRule_Number(token.substr(0, token.size() - 1));
    rule.setPos[0] = static_cast<short>(positive ? n : -n);
}

// A number below 1 sets the bit of its own low five bits, not of its magnitude: -1 sets bit 31.
void readMonthDay(std::string_view token, _rruleRepeat& rule) {
    const int n = RRule_Number(token);
    const unsigned bit = 1U << (static_cast<unsigned>(n) % 32);
    if (n >= 1)
        rule.byMonthDay |= bit;
    else
        rule.byMonthDayNeg |= bit;
}

// A number below 1 is placed by its two's complement: 0 in the first word of byYearDayNeg, -64 to
// -1 in the word before it, which in the record's order is byWeekNo. What lies outside is ignored.
void readYearDay(std::string_view token, _rruleRepeat& rule) {
    const int n = RRule_Number(token);
    const unsigned long long bit = 1ULL << (static_cast<unsigned>(n) % 64);
    if (n >= 1) {
        if (n / 64 < kYearDayWords) rule.byYearDay[n / 64] |= bit;
    } else if (n == 0) {
        rule.byYearDayNeg[0] |= bit;
    } else if (n >= -64) {
        rule.byWeekNo |= bit;
    }
}

void readModifier(std::string_view token, _rruleRepeat& rule) {
    switch (rule.freq) {
        case RRULE_FREQ_MONTHLY:
            if ((rule.type & RRULE_TYPE_BYMONTHDAY) != 0)
                readMonthDay(token, rule);
            else if (token.find_first_of("+-") != std::string_view::npos)
                readPosition(token, rule);
            else
                readDay(token, rule);
            break;
        case RRULE_FREQ_WEEKLY:
            rule.type |= RRULE_TYPE_BYDAY;
            readDay(token, rule);
            break;
        case RRULE_FREQ_YEARLY:
            if ((rule.type & RRULE_TYPE_BYMONTH) == 0)
                readYearDay(token, rule);
            else if (const int n = RRule_Number(token); n >= 1 && n <= 12)
                rule.byMonth |= static_cast<unsigned short>(1U << n);
            break;
        default:
            break;  // a daily rule has no modifiers: they are ignored
    }
}

}  // namespace

}  // namespace qel::recurrence

namespace recurrence = qel::recurrence;

int BxUtil_PositionalV10toRRULE(const char* text, _rruleRepeat* rule, int* flags) {
    recurrence::RRule_Start(rule, flags);
    if (rule == nullptr) return QEL_FAILED;
    recurrence::RRuleItems tokens(text != nullptr ? text : "", ' ',
                                  recurrence::RRuleItems::Empty::kKeep);
    std::string_view token;
    tokens.next(token);
    if (!recurrence::readFrequency(token, *rule)) return recurrence::RRule_BadFrequency(token);
    while (tokens.next(token)) {
        if (tokens.atEnd() && recurrence::readEnd(token, *rule, flags)) break;
        recurrence::readModifier(token, *rule);
    }
    return QEL_OK;
}
