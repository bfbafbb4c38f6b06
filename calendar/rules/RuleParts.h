// What the readers and the writers of the rule forms share. Any thread.
#ifndef QEL_CALENDAR_RULES_RULEPARTS_H
#define QEL_CALENDAR_RULES_RULEPARTS_H

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace qel::calendar {

inline constexpr std::array<std::string_view, 8> kDayCodes = {"",   "SU", "MO", "TU",
                                                              "WE", "TH", "FR", "SA"};

// 1 Sunday .. 7 Saturday for a two-letter code in either case, else 0.
[[nodiscard]] int weekdayOfCode(std::string_view code);

// "1,15,-1"
[[nodiscard]] std::string joined(const std::vector<int>& numbers, char separator = ',');

template <class Item>
void addOnce(std::vector<Item>& list, const Item& item) {
    if (std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
}

}  // namespace qel::calendar

#endif
