// The host's repeat object: every function's operations in their order, and where a failure stops.
#include "QelUtility/RepeatConversion.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "recurrence/RepeatRecord.h"

namespace {

// A host that notes what is called; the operation named in `failing` refuses.
class Host final : public IRepeat {
  public:
    std::string calls;
    std::string failing;
    std::vector<short> days{1, 2, 0, 1, -1, 1, 1};

    long QELUTILITY_STDCALL GetDayOfMonth(short* value) override {
        return get("GetDayOfMonth", value, 31);
    }
    long QELUTILITY_STDCALL SetDayOfMonth(int value) override {
        return set("SetDayOfMonth", value);
    }
    long QELUTILITY_STDCALL GetMonthOfYear(short* value) override {
        return get("GetMonthOfYear", value, 12);
    }
    long QELUTILITY_STDCALL SetMonthOfYear(int value) override {
        return set("SetMonthOfYear", value);
    }
    long QELUTILITY_STDCALL GetDayOfWeek(short* value) override {
        return get("GetDayOfWeek", value, 7);
    }
    long QELUTILITY_STDCALL SetDayOfWeek(int value) override { return set("SetDayOfWeek", value); }
    long QELUTILITY_STDCALL GetInstance(short* value) override {
        return get("GetInstance", value, 5);
    }
    long QELUTILITY_STDCALL SetInstance(int value) override { return set("SetInstance", value); }
    long QELUTILITY_STDCALL SetDaysOfWeek(int* values) override {
        std::string text;
        for (int i = 0; i < 7; ++i) text += std::to_string(values[i]);
        return note("SetDaysOfWeek", text);
    }
    long QELUTILITY_STDCALL GetDaysOfWeek(short** values) override {
        *values = days.empty() ? nullptr : days.data();
        return note("GetDaysOfWeek", "");
    }

  private:
    long note(const std::string& name, const std::string& value) {
        calls += (calls.empty() ? "" : " ") + name + (value.empty() ? "" : "=" + value);
        // 0x80004005 as its 32 bits arrive in a wider long; 1 is a success that is not 0.
        return failing == name ? static_cast<long>(0x80004005UL) : 1;
    }
    long get(const std::string& name, short* value, short held) {
        *value = held;
        return note(name, "");
    }
    long set(const std::string& name, int value) { return note(name, std::to_string(value)); }
};

TEST(RepeatConversion, ReadsTheHostsPattern) {
    using Reader = long(QELUTILITY_STDCALL*)(IRepeat*, _repeat*);
    const struct {
        Reader read;
        const char* calls;
        const char* record;
    } rows[] = {
        {CRepeatConversion::ConstructWeekly_ZQTR_REPEAT_From_IRepeat, "GetDayOfWeek",
         "4 from 20050615 weekday 7"},
        {CRepeatConversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat, "GetDaysOfWeek",
         "4 from 20050615 days 1,4,6,7"},
        {CRepeatConversion::ConstructMonthly_ZQTR_REPEAT_From_IRepeat, "GetDayOfMonth",
         "4 from 20050615 day 31"},
        {CRepeatConversion::ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat,
         "GetDayOfWeek GetInstance", "4 from 20050615 weekday 7 week 5"},
        {CRepeatConversion::ConstructYearly_ZQTR_REPEAT_From_IRepeat,
         "GetMonthOfYear GetDayOfMonth", "4 from 20050615 day 31 month 12"},
        {CRepeatConversion::ConstructYearlyByPos_ZQTR_REPEAT_From_IRepeat,
         "GetDayOfWeek GetMonthOfYear GetInstance", "4 from 20050615 month 12 weekday 7 week 5"},
    };
    for (const auto& row : rows) {
        Host host;
        ZQTR_REPEAT record = qel::test::Record("4 from 20050615").repeat;
        EXPECT_EQ(row.read(&host, &record), 1);
        EXPECT_EQ(host.calls, row.calls);
        EXPECT_EQ(qel::test::describe(record), row.record);
        EXPECT_EQ(row.read(nullptr, &record), -1);
        EXPECT_EQ(row.read(&host, nullptr), -1);
    }
}

TEST(RepeatConversion, WritesTheRecordsPattern) {
    using Writer = long(QELUTILITY_STDCALL*)(_repeat*, IRepeat*);
    const std::pair<Writer, const char*> rows[] = {
        {CRepeatConversion::ConstructWeekly_IRepeat_From_ZQTR_REPEAT, "SetDayOfWeek=-7"},
        {CRepeatConversion::ConstructWeeklyDays_IRepeat_From_ZQTR_REPEAT, "SetDaysOfWeek=0100010"},
        {CRepeatConversion::ConstructMonthly_IRepeat_From_ZQTR_REPEAT, "SetDayOfMonth=31"},
        {CRepeatConversion::ConstructMonthlyByPos_IRepeat_From_ZQTR_REPEAT,
         "SetDayOfWeek=-7 SetInstance=5"},
        {CRepeatConversion::ConstructYearly_IRepeat_From_ZQTR_REPEAT,
         "SetMonthOfYear=12 SetDayOfMonth=31"},
        {CRepeatConversion::ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT,
         "SetDayOfWeek=-7 SetMonthOfYear=12 SetInstance=5"},
    };
    ZQTR_REPEAT record = qel::test::Record("0 from 0 day 31 month 12 weekday -7 week 5").repeat;
    record.days[1] = 2;
    record.days[5] = -1;
    for (const auto& [write, calls] : rows) {
        Host host;
        EXPECT_EQ(write(&record, &host), 1);
        EXPECT_EQ(host.calls, calls);
        EXPECT_EQ(write(nullptr, &host), -1);
        EXPECT_EQ(write(&record, nullptr), -1);
    }
}

TEST(RepeatConversion, StopsAtTheFirstFailure) {
    Host host;
    host.failing = "GetInstance";
    ZQTR_REPEAT record = qel::test::Record("4 from 20050615 weekday 2 week 3").repeat;
    const long failure = static_cast<long>(0x80004005UL);
    EXPECT_EQ(CRepeatConversion::ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat(&host, &record),
              failure);
    EXPECT_EQ(qel::test::describe(record), "4 from 20050615 weekday 7 week 3");

    host.calls.clear();
    host.failing = "SetDayOfWeek";
    EXPECT_EQ(CRepeatConversion::ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT(&record, &host),
              failure);
    EXPECT_EQ(host.calls, "SetDayOfWeek=7");

    host.failing = "GetDaysOfWeek";
    EXPECT_EQ(CRepeatConversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(&host, &record),
              failure);
    host.failing.clear();
    host.days.clear();
    EXPECT_EQ(CRepeatConversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(&host, &record), -1);
    EXPECT_EQ(qel::test::describe(record), "4 from 20050615 weekday 7 week 3");
}

}  // namespace
