// Rule texts: each row is read into the record, and the record written in all three forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "recurrence/RRuleInternal.h"
#include "recurrence/RuleRecordText.h"

namespace {

using qel::test::describe;

using Reader = int (*)(const char*, _rruleRepeat*, int*);

struct Row {
    const char* text;
    const char* record;  // after " time": RRULE_UNTIL_HAS_TIME is set. The day number is of UNTIL
    const char* ical;    // written with the time
    const char* v10;
    const char* positional;  // without the ";" of the empty fields at its end
};

constexpr Row kV10Rows[] = {
    {"D1 #5", "DAILY count=5", "FREQ=DAILY;COUNT=5;INTERVAL=1", "D1 #5", "DAILY;;5;1"},
    {"W2 MO WE FR #10", "WEEKLY interval=2 count=10 parts=BYDAY days=2,4,6",
     "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR", "W2 MO WE FR #10",
     "WEEKLY;;10;2;;;;MO,WE,FR"},
    // Without an end token the last token is a modifier like the others; the writer adds "#0".
    {"W1 MO", "WEEKLY parts=BYDAY days=2", "FREQ=WEEKLY;INTERVAL=1;BYDAY=MO", "W1 MO #0",
     "WEEKLY;;;1;;;;MO"},
    {"W1 MO 20051231", "WEEKLY until=38715+0 parts=BYDAY days=2",
     "FREQ=WEEKLY;UNTIL=20051231T000000Z;INTERVAL=1;BYDAY=MO", "W1 MO 20051231T000000Z",
     "WEEKLY;20051231T000000Z;;1;;;;MO"},
    {"W1 MO 20051231T120000Z", "WEEKLY until=38715+43200 parts=BYDAY days=2 time",
     "FREQ=WEEKLY;UNTIL=20051231T120000Z;INTERVAL=1;BYDAY=MO", "W1 MO 20051231T120000Z",
     "WEEKLY;20051231T120000Z;;1;;;;MO"},
    // A last token of 8 characters is the end date whatever it says.
    {"D1 whenever", "DAILY until=0+0", "FREQ=DAILY;UNTIL=19000101T000000Z;INTERVAL=1",
     "D1 19000101T000000Z", "DAILY;19000101T000000Z;;1"},
    // A blank at the end makes an empty last token, and "#3" a modifier.
    {"W1 MO #3 ", "WEEKLY parts=BYDAY days=2", "FREQ=WEEKLY;INTERVAL=1;BYDAY=MO", "W1 MO #0",
     "WEEKLY;;;1;;;;MO"},
    {"W1  MO #3", "WEEKLY count=3 parts=BYDAY days=2", "FREQ=WEEKLY;COUNT=3;INTERVAL=1;BYDAY=MO",
     "W1 MO #3", "WEEKLY;;3;1;;;;MO"},
    // Day codes with regard to case; an unknown one still makes the list present.
    {"W1 mo #3", "WEEKLY count=3 parts=BYDAY", "FREQ=WEEKLY;COUNT=3;INTERVAL=1;BYDAY=", "W1 #3",
     "WEEKLY;;3;1"},
    {"MP1 1+ MO #0", "MONTHLY count=0 parts=BYDAY,BYSETPOS days=2 positions=1,0,0,0",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO;BYSETPOS=1", "MP1 1+ MO #0", "MONTHLY;;0;1;;;;MO;;;;;1"},
    {"MP1 2- 1+ TU #0", "MONTHLY count=0 parts=BYDAY,BYSETPOS days=3 positions=1,0,0,0",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=TU;BYSETPOS=1", "MP1 1+ TU #0", "MONTHLY;;0;1;;;;TU;;;;;1"},
    // The sign is sought anywhere, the last character dropped whatever it is.
    {"MP1 + WE #2", "MONTHLY count=2 parts=BYDAY,BYSETPOS days=4",
     "FREQ=MONTHLY;COUNT=2;INTERVAL=1;BYDAY=WE;BYSETPOS=", "MP1 0- WE #2", "MONTHLY;;2;1;;;;WE"},
    {"MD1 -1 #0", "MONTHLY count=0 parts=BYMONTHDAY monthdays-=31",
     "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=-31", "MD1 31- #0", "MONTHLY;;0;1;;;;;-31"},
    {"MD1 1- LD #0", "MONTHLY count=0 parts=BYMONTHDAY monthdays=1 monthdays-=0",
     "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=1", "MD1 1 #0", "MONTHLY;;0;1;;;;;1"},
    {"M", "MONTHLY parts=BYMONTHDAY", "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=", "MD1 #0",
     "MONTHLY;;;1"},
    {"YM1 6 13 0 -2 #0", "YEARLY count=0 parts=BYMONTH months=6",
     "FREQ=YEARLY;INTERVAL=1;BYMONTH=6", "YM1 6 #0", "YEARLY;;0;1;;;;;;;;6"},
    {"YD1 100 200 #0", "YEARLY count=0 parts=BYYEARDAY yeardays=100 yeardays=200",
     "FREQ=YEARLY;INTERVAL=1;BYYEARDAY=100,200", "YD1 BYYEARDAY=100 200 #0",
     "YEARLY;;0;1;;;;;;100,200"},
    // Negative year days land in the week numbers, which have no type bit and so are not written.
    {"YD1 -1 -64 0 #0", "YEARLY count=0 parts=BYYEARDAY yeardays-=0 weeks=0,63",
     "FREQ=YEARLY;INTERVAL=1;BYYEARDAY=", "YD1 BYYEARDAY= #0", "YEARLY;;0;1"},
    {"YD1 383 384 -65 -2147483648 #0", "YEARLY count=0 parts=BYYEARDAY yeardays=383",
     "FREQ=YEARLY;INTERVAL=1;BYYEARDAY=", "YD1 BYYEARDAY= #0", "YEARLY;;0;1"},
    // A daily rule's stray tokens are passed over, the end token still read.
    {"D2 MO 15 1+ #7", "DAILY interval=2 count=7", "FREQ=DAILY;COUNT=7;INTERVAL=2", "D2 #7",
     "DAILY;;7;2"},
    // Numbers saturate at 32 bits, then lose what 16 bits do not hold.
    {"W99999999999 #99999999999", "WEEKLY interval=-1", "FREQ=WEEKLY", "W1 #0", "WEEKLY;;;-1"},
    {"D65537 #65538", "DAILY count=2", "FREQ=DAILY;COUNT=2;INTERVAL=1", "D1 #2", "DAILY;;2;1"},
};

constexpr Row kICalendarRows[] = {
    {"INTERVAL=2;BYDAY=we,Mo;;COUNT=10;FREQ=weekly;",
     "WEEKLY interval=2 count=10 parts=BYDAY days=2,4",
     "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE", "W2 MO WE #10", "WEEKLY;;10;2;;;;MO,WE"},
    {"FREQ=MONTHLY;BYDAY=-1FR", "MONTHLY parts=BYDAY,BYSETPOS days=6 positions=-1,0,0,0",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=FR;BYSETPOS=-1", "MP1 1- FR #0", "MONTHLY;;;1;;;;FR;;;;;-1"},
    // BYDAY's ordinals and BYSETPOS share the slots: the first item of BYSETPOS is skipped.
    {"FREQ=MONTHLY;BYDAY=1MO;BYSETPOS=3,4", "MONTHLY parts=BYDAY,BYSETPOS days=2 positions=1,4,0,0",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO;BYSETPOS=1,4", "MP1 1+ MO #0", "MONTHLY;;;1;;;;MO;;;;;1,4"},
    {"FREQ=MONTHLY;BYDAY=1MO,2TU,3WE,4TH,5FR;BYSETPOS=9",
     "MONTHLY parts=BYDAY,BYSETPOS days=2,3,4,5,6 positions=1,2,3,4",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=1,2,3,4", "MP1 1+ MO TU WE TH FR #0",
     "MONTHLY;;;1;;;;MO,TU,WE,TH,FR;;;;;1,2,3,4"},
    {"FREQ=MONTHLY;BYDAY=SA;BYSETPOS=1,-1,2,3,4",
     "MONTHLY parts=BYDAY,BYSETPOS days=7 positions=1,-1,2,3",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=SA;BYSETPOS=1,-1,2,3", "MP1 1+ SA #0",
     "MONTHLY;;;1;;;;SA;;;;;1,-1,2,3"},
    // At most three characters are skipped before the day code; the ordinal is kept all the same.
    {"FREQ=MONTHLY;BYDAY=+2TU,-10MO,1234WE,5",
     "MONTHLY parts=BYDAY,BYSETPOS days=2,3 positions=2,-10,1234,5",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU;BYSETPOS=2,-10,1234,5", "MP1 2+ MO TU #0",
     "MONTHLY;;;1;;;;MO,TU;;;;;2,-10,1234,5"},
    {"FREQ=WEEKLY;BYDAY=,;WKST=MO", "WEEKLY", "FREQ=WEEKLY;INTERVAL=1", "W1 #0", "WEEKLY;;;1"},
    // The week start is read from BYWEEKST and never written here.
    {"FREQ=WEEKLY;BYDAY=MO;BYWEEKST=mo", "WEEKLY parts=BYDAY days=2 weekstart=1,2",
     "FREQ=WEEKLY;INTERVAL=1;BYDAY=MO", "W1 MO #0", "WEEKLY;;;1;;;;MO;;;;;;MO"},
    // The month days are read from BYMONTH, BYMONTHDAY not at all.
    {"FREQ=YEARLY;BYMONTHDAY=15", "YEARLY", "FREQ=YEARLY;INTERVAL=1", "YD1 #0", "YEARLY;;;1"},
    {"FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15", "YEARLY parts=BYMONTHDAY,BYMONTH monthdays=6 months=6",
     "FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=6;BYMONTH=6", "YM1 66 #0", "YEARLY;;;1;;;;;6;;;6"},
    {"FREQ=YEARLY;BYMONTH=0,13,15,16,-20",
     "YEARLY parts=BYMONTHDAY,BYMONTH monthdays=13,15,16 monthdays-=20 months=0,12,13,15",
     "FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=13,15,16,-20;BYMONTH=12", "YM1 13 15 16 20-12 #0",
     "YEARLY;;;1;;;;;13,15,16,-20;;;12"},
    {"FREQ=YEARLY;BYYEARDAY=1,366,-366,0,384,-2147483648;BYWEEKNO=1,53,-1,0,64,-64",
     "YEARLY parts=BYYEARDAY,BYWEEKNO yeardays=1 yeardays=366 yeardays-=366 weeks=1,53 weeks-=1",
     "FREQ=YEARLY;INTERVAL=1;BYYEARDAY=1,366,-366;BYWEEKNO=1,53,-1", "YD1 BYYEARDAY=1 366 -366 #0",
     "YEARLY;;;1;;;;;;1,366,-366;1,53,-1"},
    // UNTIL silences COUNT, even one that does not scan; an empty one does not.
    {"FREQ=DAILY;UNTIL=20051231T235959Z;COUNT=5", "DAILY until=38715+86399 time",
     "FREQ=DAILY;UNTIL=20051231T235959Z;INTERVAL=1", "D1 20051231T235959Z",
     "DAILY;20051231T235959Z;;1"},
    {"FREQ=DAILY;UNTIL=never;COUNT=5", "DAILY until=0+0",
     "FREQ=DAILY;UNTIL=19000101T000000Z;INTERVAL=1", "D1 19000101T000000Z",
     "DAILY;19000101T000000Z;;1"},
    {"FREQ=DAILY;UNTIL=;COUNT=5;INTERVAL=0", "DAILY count=5", "FREQ=DAILY;COUNT=5;INTERVAL=1",
     "D1 #5", "DAILY;;5;1"},
    // An hour of -1 on the first day is before the first second: no end, and COUNT is read.
    {"FREQ=DAILY;UNTIL=19000101T-1;COUNT=5", "DAILY count=5 time", "FREQ=DAILY;COUNT=5;INTERVAL=1",
     "D1 #5", "DAILY;;5;1"},
    // Of a name that comes twice the first value counts; names with regard to case.
    {"FREQ=DAILY;FREQ=WEEKLY;COUNT=;COUNT=5;interval=3;X=1=2;=;Y", "DAILY", "FREQ=DAILY;INTERVAL=1",
     "D1 #0", "DAILY;;;1"},
};

constexpr Row kPositionalRows[] = {
    {"DAILY", "DAILY", "FREQ=DAILY;INTERVAL=1", "D1 #0", "DAILY;;;1"},
    {"daily;20051231;7;3;1;2;3", "DAILY interval=3 until=38715+0",
     "FREQ=DAILY;UNTIL=20051231T000000Z;INTERVAL=3", "D3 20051231T000000Z",
     "DAILY;20051231T000000Z;;3"},
    {"MONTHLY;;;;;;;;-1,15;", "MONTHLY parts=BYMONTHDAY monthdays=15 monthdays-=1",
     "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=15,-1", "MD1 15 1- #0", "MONTHLY;;;1;;;;;15,-1"},
    // What the iCalendar reader cannot take: month days beside months, and the week start.
    {"YEARLY;;10;1;;;;;15,-1;;;6;;MO;surplus;fields",
     "YEARLY count=10 parts=BYMONTHDAY,BYMONTH monthdays=15 monthdays-=1 months=6 weekstart=1,2",
     "FREQ=YEARLY;COUNT=10;INTERVAL=1;BYMONTHDAY=15,-1;BYMONTH=6", "YM1 15 1-6 #10",
     "YEARLY;;10;1;;;;;15,-1;;;6;;MO"},
    {"MONTHLY;;;;;;;32,33TU;-32,0;;;;1,0,2",
     "MONTHLY parts=BYDAY,BYMONTHDAY,BYSETPOS days=3 monthdays-=0 positions=32,33,2,0",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=TU;BYMONTHDAY=;BYSETPOS=32,33,2", "MP1 32+ TU #0",
     "MONTHLY;;;1;;;;TU;;;;;32,33,2"},
};

std::string withoutEmptyTail(const std::string& positional) {
    return positional.substr(0, positional.find_last_not_of(';') + 1);
}

void check(const Row& row, Reader read) {
    SCOPED_TRACE(row.text);
    _rruleRepeat rule;
    int flags = 0x7777;
    ASSERT_EQ(read(row.text, &rule, &flags), 0);
    std::string record = describe(rule);
    if (flags != 0) {
        EXPECT_EQ(flags, RRULE_UNTIL_HAS_TIME);
        record += " time";
    }
    EXPECT_EQ(record, row.record);
    VStr out("what was there");
    EXPECT_STREQ(BxUtil_RRULEtoIETF(&rule, out, true), row.ical);
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(&rule, out, true), row.v10);
    const char* positional = qel::RRule_ToPositional(rule, out, true);
    ASSERT_NE(positional, nullptr);
    EXPECT_EQ(withoutEmptyTail(positional), row.positional);
    EXPECT_EQ(std::count(positional, positional + out.GetLength(), ';'), 14);
}

TEST(RuleText, IsReadIntoTheRecordAndWrittenInEveryForm) {
    for (const Row& row : kV10Rows) check(row, BxUtil_PositionalV10toRRULE);
    for (const Row& row : kICalendarRows) check(row, BxUtil_PositionalV20toRRULE);
    for (const Row& row : kPositionalRows) check(row, BxUtil_PositionaltoRRULE);
}

// Without the time the end keeps its eight digits, in every form.
TEST(RuleText, LeavesOutTheTimeOfTheEndOnRequest) {
    _rruleRepeat rule;
    ASSERT_EQ(BxUtil_PositionalV10toRRULE("W2 MO WE FR 20051231T120000Z", &rule, nullptr), 0);
    rule.count = 3;  // UNTIL wins
    VStr out;
    EXPECT_STREQ(BxUtil_RRULEtoIETF(&rule, out, false),
                 "FREQ=WEEKLY;UNTIL=20051231;INTERVAL=2;BYDAY=MO,WE,FR");
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(&rule, out, false), "W2 MO WE FR 20051231");
    EXPECT_STREQ(qel::RRule_ToPositional(rule, out, false),
                 "WEEKLY;20051231;;2;;;;MO,WE,FR;;;;;;;");
}

// Records that no reader makes: no frequency, several, values below 1, a time past what dates hold.
TEST(RuleText, WritersTakeAnyRecord) {
    _rruleRepeat rule;
    EXPECT_EQ(BxUtil_InitializeRRULE(&rule), 0);
    EXPECT_EQ(describe(rule), "");
    VStr out("x");
    EXPECT_EQ(BxUtil_RRULEtoIETF(&rule, out, true), nullptr);
    EXPECT_STREQ(out, "FREQ=");
    EXPECT_EQ(BxUtil_RRULEtoV10IETF(&rule, out, true), nullptr);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(qel::RRule_ToPositional(rule, out, true), nullptr);

    rule.freq = RRULE_FREQ_DAILY | RRULE_FREQ_MONTHLY;
    rule.interval = -3;
    rule.until = -2;
    rule.type = RRULE_TYPE_BYDAY;
    EXPECT_STREQ(BxUtil_RRULEtoIETF(&rule, out, true), "FREQ=MONTHLY;BYDAY=");
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(&rule, out, true), "MP1 #0");

    rule.until = 0x7fffffffffffffff;
    EXPECT_NE(BxUtil_RRULEtoIETF(&rule, out, false), nullptr);
    EXPECT_NE(BxUtil_RRULEtoV10IETF(&rule, out, false), nullptr);

    EXPECT_EQ(BxUtil_InitializeRRULE(nullptr), 0);
    EXPECT_EQ(BxUtil_RRULEtoIETF(nullptr, out, true), nullptr);
    EXPECT_EQ(BxUtil_RRULEtoV10IETF(nullptr, out, true), nullptr);
    EXPECT_EQ(BxUtil_PositionalV20toRRULE("FREQ=DAILY", nullptr, nullptr), -1);
}

// A packed record may lie at any address.
TEST(RuleText, TakesARecordAtAnOddAddress) {
    alignas(8) char storage[sizeof(_rruleRepeat) + 1];
    auto* rule = reinterpret_cast<_rruleRepeat*>(storage + 1);
    VStr out;
    ASSERT_EQ(BxUtil_PositionaltoRRULE("YEARLY;20051231T120000;;2;;;;MO;1,-1;1,-1;1,-1;6;2,-1;MO;",
                                       rule, nullptr),
              0);
    EXPECT_STREQ(BxUtil_RRULEtoIETF(rule, out, true),
                 "FREQ=YEARLY;UNTIL=20051231T120000Z;INTERVAL=2;BYDAY=MO;BYMONTHDAY=1,-1;"
                 "BYYEARDAY=1,-1;BYWEEKNO=1,-1;BYMONTH=6;BYSETPOS=2,-1");
    EXPECT_STREQ(qel::RRule_ToPositional(*rule, out, true),
                 "YEARLY;20051231T120000Z;;2;;;;MO;1,-1;1,-1;1,-1;6;2,-1;MO;");
    ASSERT_EQ(BxUtil_PositionalV10toRRULE("YD1 1 -1 #3", rule, nullptr), 0);
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(rule, out, true), "YD1 BYYEARDAY=1 #3");
}

}  // namespace
