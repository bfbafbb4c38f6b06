// The host's repeat object: every function's operations in their order, and where a failure stops.
#include "QelUtility/RepeatConversion.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recurrence/RepeatRecord.h"

namespace {

using Conversion = CRepeatConversion;
using qel::test::describe;
using qel::test::Record;

// A host that notes what is called ("?" is a question); the operation named in `failing` refuses.
class Host final : public IRepeat {
  public:
    std::string calls;
    std::string failing;
    std::vector<short> days{1, 2, 0, 1, -1, 1, 1};

    long QELUTILITY_STDCALL GetDayOfMonth(short* v) override { return get("DayOfMonth", v, 31); }
    long QELUTILITY_STDCALL SetDayOfMonth(int v) override { return set("DayOfMonth", v); }
    long QELUTILITY_STDCALL GetMonthOfYear(short* v) override { return get("Month", v, 12); }
    long QELUTILITY_STDCALL SetMonthOfYear(int v) override { return set("Month", v); }
    long QELUTILITY_STDCALL GetDayOfWeek(short* v) override { return get("DayOfWeek", v, 7); }
    long QELUTILITY_STDCALL SetDayOfWeek(int v) override { return set("DayOfWeek", v); }
    long QELUTILITY_STDCALL GetInstance(short* v) override { return get("Instance", v, 5); }
    long QELUTILITY_STDCALL SetInstance(int v) override { return set("Instance", v); }
    long QELUTILITY_STDCALL SetDaysOfWeek(int* values) override {
        std::string text;
        for (int i = 0; i < 7; ++i) text += std::to_string(values[i]);
        return note("Days=" + text);
    }
    long QELUTILITY_STDCALL GetDaysOfWeek(short** values) override {
        *values = days.empty() ? nullptr : days.data();
        return note("Days?");
    }

  private:
    long note(const std::string& call) {
        calls += (calls.empty() ? "" : " ") + call;
        // 0x80004005 as its 32 bits arrive in a wider long; 1 is a success that is not 0.
        return failing == call ? static_cast<long>(0x80004005UL) : 1;
    }
    long get(const std::string& name, short* value, short held) {
        *value = held;
        return note(name + "?");
    }
    long set(const std::string& name, int value) {
        return note(name + "=" + std::to_string(value));
    }
};

TEST(RepeatConversion, CopiesTheShapesOwnFields) {
    const struct {
        long(QELUTILITY_STDCALL* read)(IRepeat*, _repeat*);
        const char* asked;
        const char* record;
        long(QELUTILITY_STDCALL* write)(_repeat*, IRepeat*);
        const char* told;
    } rows[] = {
        {Conversion::ConstructWeekly_ZQTR_REPEAT_From_IRepeat, "DayOfWeek?", "weekday 7",
         Conversion::ConstructWeekly_IRepeat_From_ZQTR_REPEAT, "DayOfWeek=-7"},
        {Conversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat, "Days?", "days 1,4,6,7",
         Conversion::ConstructWeeklyDays_IRepeat_From_ZQTR_REPEAT, "Days=0100010"},
        {Conversion::ConstructMonthly_ZQTR_REPEAT_From_IRepeat, "DayOfMonth?", "day 31",
         Conversion::ConstructMonthly_IRepeat_From_ZQTR_REPEAT, "DayOfMonth=30"},
        {Conversion::ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat, "DayOfWeek? Instance?",
         "weekday 7 week 5", Conversion::ConstructMonthlyByPos_IRepeat_From_ZQTR_REPEAT,
         "DayOfWeek=-7 Instance=4"},
        {Conversion::ConstructYearly_ZQTR_REPEAT_From_IRepeat, "Month? DayOfMonth?",
         "day 31 month 12", Conversion::ConstructYearly_IRepeat_From_ZQTR_REPEAT,
         "Month=11 DayOfMonth=30"},
        {Conversion::ConstructYearlyByPos_ZQTR_REPEAT_From_IRepeat, "DayOfWeek? Month? Instance?",
         "month 12 weekday 7 week 5", Conversion::ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT,
         "DayOfWeek=-7 Month=11 Instance=4"},
    };
    ZQTR_REPEAT given = Record("0 from 0 day 30 month 11 weekday -7 week 4 days 2:2,6:-1").repeat;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.record);
        Host asked;
        ZQTR_REPEAT record = Record("4 from 20050615").repeat;
        EXPECT_EQ(row.read(&asked, &record), 1);
        EXPECT_EQ(asked.calls, row.asked);
        EXPECT_EQ(describe(record), std::string("4 from 20050615 ") + row.record);
        Host told;
        EXPECT_EQ(row.write(&given, &told), 1);
        EXPECT_EQ(told.calls, row.told);
        for (const long result : {row.read(nullptr, &record), row.read(&asked, nullptr),
                                  row.write(nullptr, &told), row.write(&given, nullptr)})
            EXPECT_EQ(result, -1);
    }
}

TEST(RepeatConversion, StopsAtTheFirstFailure) {
    Host host;
    ZQTR_REPEAT record = Record("4 from 20050615 weekday 2 week 3").repeat;
    const long failure = static_cast<long>(0x80004005UL);
    host.failing = "Instance?";
    EXPECT_EQ(Conversion::ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat(&host, &record), failure);
    EXPECT_EQ(describe(record), "4 from 20050615 weekday 7 week 3");
    host.calls.clear();
    host.failing = "DayOfWeek=7";
    EXPECT_EQ(Conversion::ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT(&record, &host), failure);
    EXPECT_EQ(host.calls, "DayOfWeek=7");
    host.failing = "Days?";
    EXPECT_EQ(Conversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(&host, &record), failure);
    host.failing.clear();
    host.days.clear();
    EXPECT_EQ(Conversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(&host, &record), -1);
    EXPECT_EQ(describe(record), "4 from 20050615 weekday 7 week 3");
}

}  // namespace
