// What the readers and writers of rule texts share: names, items, numbers, the end date. Stateless;
// any thread may call.
#ifndef QEL_RECURRENCE_RRULETEXT_H
#define QEL_RECURRENCE_RRULETEXT_H

#include <array>
#include <cstddef>
#include <string_view>

#include "QelUtility/RRule.h"

namespace qel::recurrence {

inline constexpr int kPositionSlots = 4;  // of _rruleRepeat::setPos
inline constexpr int kYearDayWords = 6;   // of _rruleRepeat::byYearDay and byYearDayNeg

// The two-letter day codes by weekday, 1 Sunday .. 7 Saturday; entry 0 is no day.
inline constexpr std::array<std::string_view, 8> kDayCodes = {"",   "SU", "MO", "TU",
                                                              "WE", "TH", "FR", "SA"};

// A frequency's bit and its RFC 2445 name; the order is the writers' order of precedence.
struct RRuleFrequencyName {
    unsigned char bit;
    std::string_view name;
};
inline constexpr std::array<RRuleFrequencyName, 4> kFrequencyNames = {
    {{RRULE_FREQ_YEARLY, "YEARLY"},
     {RRULE_FREQ_MONTHLY, "MONTHLY"},
     {RRULE_FREQ_WEEKLY, "WEEKLY"},
     {RRULE_FREQ_DAILY, "DAILY"}}};

// The first `c` from `at` on, or `end`. Rules are short: a call of memchr costs more than
// it saves.
inline const char* RRule_Find(const char* at, const char* end, char c) {
    while (at != end && *at != c) ++at;
    return at;
}

// The items of a text as CBxParseValues yields them for one separator (no escapes), without its
// array: that one grows by 128 items at a time, so that a hostile text of a million items would
// cost thousands of millions of moves. The text must outlive the cursor and its items.
class RRuleItems {
  public:
    enum class Empty { kDrop, kKeep };

    RRuleItems(std::string_view text, char separator, Empty empty)
        : at_(text.data()),
          end_(text.data() + text.size()),
          separator_(separator),
          keepEmpty_(empty == Empty::kKeep) {}

    // Reads the next item; false when there is none.
    bool next(std::string_view& item) {
        while (!ended_) {
            const char* const begin = at_;
            at_ = RRule_Find(begin, end_, separator_);
            item = {begin, static_cast<std::size_t>(at_ - begin)};
            ended_ = at_ == end_;
            if (!ended_) ++at_;
            if (keepEmpty_ || !item.empty()) return true;
        }
        return false;
    }

    // With empty items kept: whether the item just read was the last one.
    bool atEnd() const { return ended_; }

  private:
    const char* at_;
    const char* end_;
    char separator_;
    bool keepEmpty_;
    bool ended_ = false;
};

// The number at the start of an item: white space, a sign and digits as atoi reads them, anything
// else ends it, no digits give 0. Saturates at 32 bits.
int RRule_Number(std::string_view item);

// Whether `text` is `name` but for the case of its letters. REQUIRES: `name` of ASCII capitals
bool RRule_IsName(std::string_view text, std::string_view name);

// The weekday, 1 .. 7, whose code `text` is, or 0.
int RRule_DayOfCode(std::string_view text);
int RRule_DayOfCodeNoCase(std::string_view text);

// What every reader starts with: *flags (may be null) to 0, `rule` to its defaults.
void RRule_Start(_rruleRepeat* rule, int* flags);

// Takes `text`, an item of a text that ends in a NUL, as the end date: *flags gets
// RRULE_UNTIL_HAS_TIME when it is longer than 8 characters. Returns its seconds since 1 January
// 1900 (0 when it cannot be read).
__int64 RRule_ReadUntil(std::string_view text, int* flags);

// Reports an unknown frequency and returns the readers' result for it, -1.
int RRule_BadFrequency(std::string_view text);

}  // namespace qel::recurrence

#endif
