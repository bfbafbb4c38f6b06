// The jump to a date beside stepping to it, over random records: ordinary ones, and ones whose
// fields lie outside their ranges.
#include <gtest/gtest.h>

#include <random>

#include "dates/CivilDate.h"
#include "recurrence/RepeatRecord.h"
#include "recurrence/RptNextJump.h"

namespace {

class Random {
  public:
    short between(int low, int high) {
        return static_cast<short>(std::uniform_int_distribution<int>(low, high)(generator_));
    }
    int date() {
        return std::uniform_int_distribution<int>(0, qel::dates::kLastCodeDate)(generator_);
    }
    bool oneIn(int n) { return between(1, n) == 1; }

  private:
    std::mt19937 generator_{20050615};
};

ZQTR_REPEAT randomRecord(Random& random, bool isOdd) {
    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    repeat.type = random.between(isOdd ? 0 : 1, 15);
    repeat.startDate = random.oneIn(4) ? random.date() : 36525 + random.between(0, 9000);
    repeat.endDate = -1;
    repeat.interval = random.oneIn(9) ? random.between(1, 32767) : random.between(1, 14);
    repeat.unitCount = 1;
    repeat.month = isOdd ? random.between(-1, 14) : random.between(1, 12);
    const bool isBefore = isOdd && random.oneIn(3);  // numbers below the first
    repeat.weekOfMonth = isBefore ? random.between(-2, 0)
                         : isOdd  ? random.between(1, 16)
                                  : random.between(1, 14);
    repeat.dayOfWeek = isOdd ? random.between(-9, 16) : random.between(1, 7);
    repeat.dayOfMonth = isBefore ? random.between(-2, 0)
                        : isOdd  ? random.between(1, 400)
                                 : random.between(1, 92);
    if (repeat.type == REPEAT_MONTHLY_KIND || repeat.type == REPEAT_YEARLY_KIND) {
        repeat.dayOfMonth = isOdd ? random.between(0, 6) : random.between(1, 5);
        repeat.dayOfWeek = isOdd ? random.between(7, 11) : random.between(8, 10);
    }
    const int rarity = random.between(1, 12);
    for (int i = 0; i < 7; ++i) repeat.days[i] = random.oneIn(rarity);
    for (int i = 0; i < 12; ++i) repeat.months[i] = random.oneIn(rarity);
    for (int i = 0; i < 5; ++i) repeat.weeks[i] = random.oneIn(rarity) ? random.between(0, 2) : 0;
    return repeat;
}

// The first occurrence at or after `date`; -1 when stepping fails or stands still before it.
int stepTo(ZQTR_REPEAT repeat, int date) {
    int next = repeat.startDate;
    int previous = -1;
    for (bool isFirst = true; isFirst || next < date; isFirst = false) {
        const int before = next;
        if (ZQRepeatNextDate(&repeat, &next, &previous) != 0) return -1;
        if (!isFirst && next <= before) return -1;
    }
    return next;
}

TEST(RepeatJump, ComesToWhereStepsCome) {
    constexpr int kRecords = 800;
    Random random;
    int jumps[16] = {};
    int declined[16] = {};
    for (int i = 0; i < kRecords; ++i) {
        const ZQTR_REPEAT repeat = randomRecord(random, i % 4 == 0);
        for (int j = 0; j < 4; ++j) {
            const int date = random.oneIn(20) ? random.date()
                                              : repeat.startDate +
                                                    random.between(-3, random.oneIn(2) ? 99 : 9999);
            const int expected = stepTo(repeat, date);
            int found = -2;
            if (qel::recurrence::jump(repeat, date, found)) {
                ++jumps[repeat.type];
                ASSERT_EQ(found, expected) << qel::test::describe(repeat) << " to " << date;
            } else if (i % 4 != 0 && expected >= 0 && date > repeat.startDate &&
                       date <= qel::dates::kLastCodeDate) {
                ++declined[repeat.type];
            }
        }
    }
    // Of ordinary records only those whose thirteenth weekday may leave the quarter are stepped.
    for (int type = 1; type <= 15; ++type) {
        EXPECT_TRUE(type == 9 || jumps[type] > kRecords / 10) << type;
        EXPECT_LE(declined[type], type == 14 ? jumps[type] / 4 : 0) << type;
    }
    // The exported function: there is nothing to jump to at the start.
    ZQTR_REPEAT weekly = qel::test::Record("12 from 20050301 days 3").repeat;
    int found = -7;
    EXPECT_EQ(ZQRepeatJump(&weekly, weekly.startDate, &found), -1);
    EXPECT_EQ(ZQRepeatJump(nullptr, weekly.startDate, &found), -1);
    EXPECT_EQ(found, -7);
    EXPECT_EQ(ZQRepeatJump(&weekly, weekly.startDate + 36500, &found), 0);
    EXPECT_EQ(found, weekly.startDate + 36505);
}

}  // namespace
