// The list writers that the rule writers share.
#include <charconv>
#include <iterator>

#include "recurrence/RRuleInternal.h"

namespace qel {

namespace {

// Puts the separator between items, never before the first or after the last.
class ItemWriter {
  public:
    ItemWriter(std::string& out, char separator) : out_(out), separator_(separator) {}

    void text(const char* item) {
        if (!first_) out_ += separator_;
        first_ = false;
        out_ += item;
    }

    void number(int value, const char* before = "", const char* after = "") {
        text(before);
        RRule_AppendNumber(value, out_);
        out_ += after;
    }

  private:
    std::string& out_;
    char separator_;
    bool first_ = true;
};

bool hasBit(unsigned long long set, int bit) {
    return (set >> bit & 1) != 0;
}

}  // namespace

void RRule_AppendNumber(int value, std::string& out) {
    char text[16];
    out.append(text, std::to_chars(text, std::end(text), value).ptr);
}

void RRule_AppendDays(const _rruleRepeat& rule, std::string& out, char separator) {
    ItemWriter items(out, separator);
    for (int day = 1; day <= 7; ++day) {
        if (hasBit(rule.byDay, day)) items.text(kDayCodes[static_cast<std::size_t>(day)]);
    }
}

void RRule_AppendMonthDays(const _rruleRepeat& rule, std::string& out, char separator) {
    ItemWriter items(out, separator);
    for (int day = 1; day <= 31; ++day) {
        if (hasBit(rule.byMonthDay, day)) items.number(day);
    }
    const bool trailing = separator == ' ';
    for (int day = 1; day <= 31; ++day) {
        if (hasBit(rule.byMonthDayNeg, day))
            items.number(day, trailing ? "" : "-", trailing ? "-" : "");
    }
}

void RRule_AppendYearDays(const _rruleRepeat& rule, std::string& out, char separator) {
    ItemWriter items(out, separator);
    for (int day = 1; day <= 366; ++day) {
        if (hasBit(rule.byYearDay[day / 64], day % 64)) items.number(day);
    }
    for (int day = 1; day <= 366; ++day) {
        if (hasBit(rule.byYearDayNeg[day / 64], day % 64)) items.number(day, "-");
    }
}

void RRule_AppendWeekNumbers(const _rruleRepeat& rule, std::string& out) {
    ItemWriter items(out, ',');
    for (int week = 1; week <= 53; ++week) {
        if (hasBit(rule.byWeekNo, week)) items.number(week);
    }
    for (int week = 1; week <= 53; ++week) {
        if (hasBit(rule.byWeekNoNeg, week)) items.number(week, "-");
    }
}

void RRule_AppendMonths(const _rruleRepeat& rule, std::string& out, char separator) {
    ItemWriter items(out, separator);
    for (int month = 1; month <= 12; ++month) {
        if (hasBit(rule.byMonth, month)) items.number(month);
    }
}

void RRule_AppendSetPositions(const _rruleRepeat& rule, std::string& out) {
    ItemWriter items(out, ',');
    for (int slot = 0; slot < kPositionSlots; ++slot) {
        const short position = rule.setPos[slot];  // by value: a packed field may lie anywhere
        if (position != 0) items.number(position);
    }
}

}  // namespace qel
