// Month grids: columns under the right weekday, marks, several months side by side.
#include "base/MonthGrid.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "base/Moment.h"

namespace {

using namespace qel::cli;

int dayNumber(int year, int month, int day) {
    return codeDateOf(Time{{year, month, day, 0, 0, 0, 1, QELCAL_FLOATING}});
}

std::string grid(const std::vector<MarkedDay>& days, const MonthGridLayout& layout) {
    std::ostringstream out;
    writeMonths(out, days, layout);
    return out.str();
}

TEST(MonthGrid, ShowsMarkedDaysUnderTheirWeekday) {
    MonthGridLayout monday;
    monday.firstDayOfWeek = std::chrono::Monday;
    // A month that starts on the week's last day needs six weeks.
    EXPECT_EQ(grid({{dayNumber(2023, 10, 16), true},
                    {dayNumber(2023, 10, 17), false},
                    {dayNumber(2023, 10, 31), false}},
                   monday),
              "        October 2023\n"
              " Mo  Tu  We  Th  Fr  Sa  Su\n"
              "                          1\n"
              "  2   3   4   5   6   7   8\n"
              "  9  10  11  12  13  14  15\n"
              "(16)[17] 18  19  20  21  22\n"
              " 23  24  25  26  27  28  29\n"
              " 30 [31]\n");
}

TEST(MonthGrid, PutsMonthsSideBySideAsThePageTakesThem) {
    const std::vector<MarkedDay> days = {{dayNumber(2024, 2, 29), false},
                                         {dayNumber(2024, 3, 1), false},
                                         {dayNumber(2024, 3, 31), false},
                                         {dayNumber(2025, 2, 28), false}};
    MonthGridLayout page;
    page.width = 58;
    EXPECT_EQ(grid(days, page),
              "       February 2024                   March 2024\n"
              " Su  Mo  Tu  We  Th  Fr  Sa    Su  Mo  Tu  We  Th  Fr  Sa\n"
              "                  1   2   3                       [ 1]  2\n"
              "  4   5   6   7   8   9  10     3   4   5   6   7   8   9\n"
              " 11  12  13  14  15  16  17    10  11  12  13  14  15  16\n"
              " 18  19  20  21  22  23  24    17  18  19  20  21  22  23\n"
              " 25  26  27  28 [29]           24  25  26  27  28  29  30\n"
              "                              [31]\n"
              "\n"
              "       February 2025\n"
              " Su  Mo  Tu  We  Th  Fr  Sa\n"
              "                          1\n"
              "  2   3   4   5   6   7   8\n"
              "  9  10  11  12  13  14  15\n"
              " 16  17  18  19  20  21  22\n"
              " 23  24  25  26  27 [28]\n");
    // A page narrower than a month, and highlighting, whose escape sequences take no columns.
    page.width = -5;
    page.highlight = true;
    const std::string shown = grid({{dayNumber(2024, 3, 1), false}}, page);
    EXPECT_EQ(shown.find("         March 2024\n"), 0U) << shown;
    EXPECT_NE(shown.find(" \x1b[7m 1\x1b[0m   2\n"), std::string::npos) << shown;
    EXPECT_EQ(shown.find('['), shown.find("\x1b[") + 1);
}

}  // namespace
