// The engine and the listing beside an independent calendar library: random records that both can
// express must have the same days. Where this system's days are others by its own rule, the days
// are compared after that rule is applied to the peer's.
#include <gtest/gtest.h>
#include <libical/ical.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptExpand.h"
#include "QelUtility/ZQDate.h"
#include "recurrence/RepeatRecord.h"

namespace {

using qel::test::describe;
using qel::test::occurrences;

constexpr std::size_t kDays = 40;
constexpr int kLastDay = 69000;  // in 2088; the engine's types 7 and 15 look no further than 2080

class Random {
  public:
    int between(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(generator_);
    }
    // Some of `count` flags, never none.
    void choose(short* flags, int count) {
        for (int i = 0; i < count; ++i) flags[i] = static_cast<short>(between(0, 2) == 0);
        flags[between(0, count - 1)] = 1;
    }

  private:
    std::mt19937 generator_{20050615};
};

// A record whose rule text means to the peer what it means here.
ZQTR_REPEAT randomRecord(Random& random) {
    static constexpr short kTypes[] = {1, 2, 3, 4, 5, 6, 7, 10, 11, 12};
    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    repeat.type = kTypes[random.between(0, 9)];
    repeat.startDate = random.between(36525, 47000);  // 2000 to 2028
    repeat.endDate = random.between(0, 3) == 0 ? repeat.startDate + random.between(0, 4000) : -1;
    repeat.interval = static_cast<short>(random.between(1, 5));
    repeat.unitCount = 1;
    repeat.month = static_cast<short>(random.between(1, 12));
    repeat.dayOfWeek = static_cast<short>(random.between(1, 7));
    repeat.weekOfMonth = static_cast<short>(random.between(1, 5));
    repeat.dayOfMonth = static_cast<short>(random.between(1, 31));
    if (repeat.type == REPEAT_DAY_OF_MONTHS) {
        repeat.interval = 1;
        random.choose(repeat.months, 12);
    } else if (repeat.type == REPEAT_WEEKLY_DAYS) {
        random.choose(repeat.days, 7);
    } else if (repeat.type == REPEAT_MONTHLY_KIND || repeat.type == REPEAT_YEARLY_KIND) {
        repeat.dayOfMonth = static_cast<short>(random.between(1, 5));
        // "Any day" is a day of the month like another, or the last.
        repeat.dayOfWeek = static_cast<short>(random.between(REPEAT_WORKDAY, REPEAT_WEEKEND_DAY));
    }
    return repeat;
}

std::string ruleText(ZQTR_REPEAT repeat) {
    _rruleRepeat rule;
    BxUtil_InitializeRRULE(&rule);
    VStr exclusions;
    VStr start;
    int flags = 0;
    if (BxUtil_BxRepeatToRRule(&repeat, &rule, exclusions, start, 1, &flags) != 0) return "";
    VStr text;
    const char* const written = BxUtil_RRULEtoIETF(&rule, text, false);
    // Weeks run from Sunday here; the text never says so.
    return written == nullptr ? "" : std::string(written) + ";WKST=SU";
}

std::vector<int> peerDays(const std::string& text, int start) {
    icalrecurrencetype rule = icalrecurrencetype_from_string(text.c_str());
    char day[9];
    icalrecur_iterator* const each =
        icalrecur_iterator_new(rule, icaltime_from_string(ZQ_CodeDateToAlpha(start, day)));
    std::vector<int> days;
    if (each == nullptr) return days;
    for (icaltimetype next = icalrecur_iterator_next(each);
         !icaltime_is_null_time(next) && days.size() < kDays + 20;
         next = icalrecur_iterator_next(each)) {
        unsigned code = 0;
        ZQ_DateEncode(next.month, next.day, next.year, &code);
        if (static_cast<int>(code) > kLastDay) break;
        days.push_back(static_cast<int>(code));
    }
    icalrecur_iterator_free(each);
    return days;
}

// A day that a month lacks is its last day here, and none to the peer.
bool isClamped(const ZQTR_REPEAT& repeat, int code) {
    const bool byDay = repeat.type == REPEAT_MONTHLY_DAY || repeat.type == REPEAT_YEARLY_DATE ||
                       repeat.type == REPEAT_DAY_OF_MONTHS;
    int month = 0;
    int day = 0;
    int year = 0;
    ZQ_DateDecode(code, &month, &day, &year);
    return byDay && day != repeat.dayOfMonth;
}

std::vector<int> ownDays(const ZQTR_REPEAT& repeat, std::map<std::string, int>& reasons) {
    std::vector<int> days;
    for (const int code : occurrences(repeat, -1, kDays)) {
        if ((repeat.endDate >= 0 && code > repeat.endDate) || code > kLastDay) break;
        if (isClamped(repeat, code))
            ++reasons["days that the month lacks, taken as its last"];
        else
            days.push_back(code);
    }
    return days;
}

TEST(PeerCalendar, RandomRecordsHaveTheSameDays) {
    Random random;
    std::map<std::string, int> reasons;
    std::map<int, int> agreed;
    for (int round = 0; round < 3000; ++round) {
        const ZQTR_REPEAT repeat = randomRecord(random);
        const std::string text = ruleText(repeat);
        ASSERT_FALSE(text.empty()) << describe(repeat);
        std::vector<int> own = ownDays(repeat, reasons);
        // The peer counts intervals from its start's own period; here they count from the first
        // occurrence, which is where the peer is therefore told to start.
        const std::vector<int> first = occurrences(repeat, -1, 1);
        if (own.empty() || first.empty() || own[0] != first[0]) {
            ++reasons["no occurrence that both know"];
            continue;
        }
        std::vector<int> peer = peerDays(text, own[0]);
        const std::size_t both = std::min(own.size(), peer.size());
        ASSERT_GT(both, 0U) << describe(repeat) << " " << text;
        // Fewer than asked for: both ends must be the series' own.
        EXPECT_TRUE(own.size() >= kDays || repeat.endDate < 0 || own.size() == both);
        own.resize(both);
        peer.resize(both);
        ASSERT_EQ(qel::test::dates(own), qel::test::dates(peer)) << describe(repeat) << " " << text;
        ++agreed[repeat.type];

        // The listing of the same days.
        ZQTR_REPEAT listed = repeat;
        DateBlock block{};
        ASSERT_EQ(DateBlock_Init(&block, 0, DATEBLOCK_STEP, DATEBLOCK_MAXIMUM), 0);
        int valid = 0;
        int total = 0;
        ASSERT_EQ(Unfold_ListDates(&listed, 2000, own.front(), own.back(), &block, &valid, &total),
                  0)
            << describe(repeat);
        std::vector<int> list(block.data, block.data + total);
        DateBlock_Free(&block);
        std::erase_if(list, [&](int code) { return isClamped(repeat, code); });
        ASSERT_EQ(qel::test::dates(list), qel::test::dates(own)) << describe(repeat);
    }
    for (const auto& [type, count] : agreed) std::printf("type %d: %d agree\n", type, count);
    for (const auto& [reason, count] : reasons) std::printf("%d %s\n", count, reason.c_str());
}

}  // namespace
