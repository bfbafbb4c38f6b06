// The engine and the listing over a record of arbitrary bytes.
#include "Fuzz.h"
#include "QelUtility/RptExpand.h"
#include "QelUtility/RptNext.h"

using namespace qel::fuzz;

namespace {

constexpr int kLastDay = 219145;  // 31 December 2499

// Half of the records have fields near their ranges; arbitrary bytes are mostly refused at once.
void bring(short& value, short low, short high) {
    const int span = high - low + 1;
    value = static_cast<short>(low + ((value % span) + span) % span);
}
void bringIntoRange(ZQTR_REPEAT& repeat) {
    bring(repeat.type, 0, 15);
    bring(repeat.interval, 1, 40);
    bring(repeat.unitCount, 1, 5);
    bring(repeat.dayOfMonth, 0, 32);
    bring(repeat.month, 0, 13);
    bring(repeat.dayOfWeek, 0, 11);
    bring(repeat.weekOfMonth, 0, 15);
    repeat.startDate = static_cast<int>(static_cast<unsigned>(repeat.startDate) % 180000U);
    if (repeat.endDate != -1)
        repeat.endDate = static_cast<int>(static_cast<unsigned>(repeat.endDate) % 200000U);
}

}  // namespace

QEL_FUZZ_TARGET(repeat_engine) {
    const bool sane = in.flag();
    int exclusions[8];
    auto repeat = in.take<ZQTR_REPEAT>();
    if (sane) bringIntoRange(repeat);
    for (int& each : exclusions) each = in.take<int>();
    repeat.exclusions = in.flag() ? exclusions : nullptr;
    repeat.exclusionCount = repeat.exclusions == nullptr ? short{0} : short{8};

    int next = in.take<int>();
    int previous = in.flag() ? in.take<int>() : -1;
    for (int step = 0; step < 50; ++step) {
        ZQTR_REPEAT before;
        std::memcpy(&before, &repeat, sizeof(before));
        const int result = ZQRepeatNextDate(&repeat, &next, &previous);
        FUZZ_CHECK(result == 0 || result == 4008);
        FUZZ_CHECK(std::memcmp(&before, &repeat, sizeof(before)) == 0);
        if (result != 0) break;
        FUZZ_CHECK(next == previous);
        // The others add days and do not look at the calendar's end, nor does a weekday that is
        // none.
        const int type = repeat.type;
        const bool oddWeekday = (type == REPEAT_MONTHLY_WEEKDAY || type == REPEAT_YEARLY_WEEKDAY) &&
                                (repeat.dayOfWeek < 1 || repeat.dayOfWeek > 7);
        if (((type >= REPEAT_MONTHLY_DAY && type <= REPEAT_DAY_OF_MONTHS) ||
             type == REPEAT_MONTHLY_KIND || type == REPEAT_YEARLY_KIND ||
             type == REPEAT_QUARTERLY_DAY) &&
            !oddWeekday)
            FUZZ_CHECK(next <= kLastDay);
    }

    DateBlock list{};
    FUZZ_CHECK(DateBlock_Init(&list, 0, DATEBLOCK_STEP, DATEBLOCK_MAXIMUM) == 0);
    int valid = -1;
    int total = -1;
    const int wanted = in.take<short>();
    const int anchor = in.take<int>();
    const int from = in.take<int>();
    const int to = in.take<int>();
    const int result = Unfold_Repeat(&repeat, wanted, anchor, from, to, &list, &valid, &total);
    if (result == 0) {
        FUZZ_CHECK(0 <= valid && valid <= total && total * 4L <= DATEBLOCK_MAXIMUM);
        // Occurrences of several days may overlap.
        for (int i = 1; i < total && repeat.unitCount == 1; ++i)
            FUZZ_CHECK(std::abs(list.data[i - 1]) <= std::abs(list.data[i]));
    }
    DateBlock_Free(&list);
    Unfold_HasOccurrence(from, to, anchor, &repeat);

    // A jump comes to where steps come.
    const auto date =
        static_cast<int>(static_cast<unsigned>(repeat.startDate) + in.take<unsigned short>());
    int found = 0;
    if (ZQRepeatJump(&repeat, date, &found) == 0) {
        previous = -1;
        next = -1;
        for (int step = 0; step < 1000 && (step == 0 || next < date); ++step)
            FUZZ_CHECK(ZQRepeatNextDate(&repeat, &next, &previous) == 0);
        FUZZ_CHECK(next < date || next == found);
    }
}
