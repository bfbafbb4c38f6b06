#include "recurrence/RRuleLists.h"

#include <bit>

#include "recurrence/RRuleText.h"

namespace qel::recurrence {

namespace {

// Puts the separator between items, never before the first or after the last.
class ItemWriter {
  public:
    ItemWriter(RRuleOutput& out, char separator) : out_(out), separator_(separator) {}

    // Where the next item is to be written.
    RRuleOutput& next() {
        if (!first_) out_.add(separator_);
        first_ = false;
        return out_;
    }

    void number(int value) { next().add(value); }

  private:
    RRuleOutput& out_;
    char separator_;
    bool first_ = true;
};

// Calls `use` with the number of each bit of `set` that is set, ascending, from 1 to `last`.
// REQUIRES: last <= 62
template <typename Use>
void eachBit(unsigned long long set, int last, Use use) {
    for (set &= (2ULL << last) - 2; set != 0; set &= set - 1) use(std::countr_zero(set));
}

}  // namespace

void RRule_AppendDays(const _rruleRepeat& rule, RRuleOutput& out, char separator) {
    ItemWriter items(out, separator);
    eachBit(rule.byDay, 7, [&](int day) {
        const std::string_view code = kDayCodes[static_cast<std::size_t>(day)];
        items.next().add(code[0]);
        out.add(code[1]);
    });
}

void RRule_AppendMonthDays(const _rruleRepeat& rule, RRuleOutput& out, char separator) {
    ItemWriter items(out, separator);
    eachBit(rule.byMonthDay, 31, [&items](int day) { items.number(day); });
    eachBit(rule.byMonthDayNeg, 31, [&](int day) {
        if (separator != ' ') return items.number(-day);
        items.number(day);
        out.add('-');
    });
}

void RRule_AppendYearDays(const _rruleRepeat& rule, RRuleOutput& out, char separator) {
    constexpr int kLast = 366;
    ItemWriter items(out, separator);
    for (int day = 1; day <= kLast; ++day)
        if ((rule.byYearDay[day / 64] >> day % 64 & 1) != 0) items.number(day);
    for (int day = 1; day <= kLast; ++day)
        if ((rule.byYearDayNeg[day / 64] >> day % 64 & 1) != 0) items.number(-day);
}

void RRule_AppendWeekNumbers(const _rruleRepeat& rule, RRuleOutput& out) {
    ItemWriter items(out, ',');
    eachBit(
        rule.byWeekNo, 53, [&items](int week) { items.number(week); });
    eachBit(rule.byWeekNoNeg, 53, [&items](int week) { items.number(-week); });
}

void RRule_AppendMonths(const _rruleRepeat& rule, RRuleOutput& out, char separator) {
    ItemWriter items(out, separator);
    eachBit(rule.byMonth, 12, [&items](int month) { items.number(month); });
}

void RRule_AppendSetPositions(const _rruleRepeat& rule, RRuleOutput& out) {
    ItemWriter items(out, ',');
    for (int slot = 0; slot < kPositionSlots; ++slot) {
        const short position = rule.setPos[slot];  // by value: a packed field may lie anywhere
        if (position != 0) items.number(position);
    }
}

}  // namespace qel::recurrence
