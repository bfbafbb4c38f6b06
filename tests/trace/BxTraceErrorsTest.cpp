#include <gtest/gtest.h>

#include <string>

#include "support/TraceCapture.h"
#include "trace/BxTraceInternal.h"

namespace {

using qel::test::TraceCapture;

TEST(BxTraceErrors, EachFormWritesItsDetailsAndReturnsTheCode) {
    const TraceCapture trace;
    EXPECT_EQ(BxTrace_Error("RptNext", 12, 5, 2001), 2001);
    EXPECT_EQ(BxTrace_Error_L("S", 2, -2, 2015), 2015);
    EXPECT_EQ(BxTrace_Error_S("S", 3, "text", -1), -1);
    EXPECT_EQ(BxTrace_Error_SS("S", 4, "a", nullptr, 7), 7);
    EXPECT_EQ(BxTrace_Error_SL("S", 5, "%s%n", 2147483647L, 8), 8);
    EXPECT_EQ(BxTrace_Error_SSL("S", 6, "a", "b", -5L, 9), 9);
    EXPECT_EQ(BxTrace_Error_SI64L("S", 7, "a", -1, 3L, 10), 10);
    EXPECT_EQ(BxTrace_Error_III("S", 8, 1, -2, 11), 11);
    EXPECT_EQ(BxTrace_Error_I64(nullptr, 9, 0x123456789ABCLL, 1, 2, 12), 12);
    EXPECT_EQ(trace.errors(),
              (std::vector<std::string>{
                  "Error 5.2001 at RptNext line 12", "Error 0xfffffffe.-2.2015 at S line 2",
                  "Error text.-1 at S line 3", "Error a.(null).7 at S line 4",
                  "Error %s%n.2147483647.8 at S line 5", "Error a.b.-5.9 at S line 6",
                  "Error a.ffffffffffffffff.3.10 at S line 7", "Error 1.-2.11 at S line 8",
                  "Error 123456789abc.1.2.12 at (null) line 9"}));
    EXPECT_TRUE(trace.hasError("5.2001", "RptNext", 12));
    EXPECT_FALSE(trace.hasError("5.2001", "RptNext", 1));
}

TEST(BxTraceErrors, TextsAreCutAndTheIdIsAppendedOnce) {
    const std::string huge(5000, 'x');
    const TraceCapture trace;
    BxTrace_Error_SSL(huge.c_str(), -2147483647 - 1, huge.c_str(), huge.c_str(), -2147483647L - 1,
                      -2147483647 - 1);
    BxTrace_SetErrorID(("id " + huge).c_str());
    BxTrace_Error("S", 1, 2, 3);
    BxTrace_Error_S("S", 2, ("id " + huge.substr(0, 61)).c_str(), 3);
    BxTrace_SetErrorID("");
    BxTrace_Error("S", 3, 2, 3);
    BxTrace_SetErrorID("job 7");
    char id[65];
    EXPECT_TRUE(BxTrace_GetErrorID(id, sizeof id));
    EXPECT_STREQ(id, "job 7");
    BxTrace_SetErrorID(nullptr);
    EXPECT_FALSE(BxTrace_GetErrorID(id, sizeof id));
    EXPECT_EQ(trace.errors(),
              (std::vector<std::string>{
                  "Error " + huge.substr(0, 350) + "." + huge.substr(0, 350) +
                      ".-2147483648.-2147483648 at " + huge.substr(0, 256) + " line -2147483648",
                  "Error 2.3 at S line 1, ID= id " + huge.substr(0, 61),
                  "Error id " + huge.substr(0, 61) + ".3 at S line 2",
                  "Error 2.3 at S line 3",
              }));
}

TEST(BxTraceErrors, FiveCodesAreNoFailures) {
    const TraceCapture trace;
    for (const int code : {0, 2014, 2018, 2037, 2042}) {
        EXPECT_EQ(BxTrace_IsFailureCode(code), code & ~0xFF);
        EXPECT_EQ(BxTrace_ErrorIfFailure("S", 1, 2, code), code);
    }
    EXPECT_TRUE(trace.lines().empty());
    EXPECT_EQ(BxTrace_IsFailureCode(2015), 0x701);
    EXPECT_EQ(BxTrace_IsFailureCode(-1), -255);
    EXPECT_EQ(BxTrace_ErrorIfFailure("S", 7, 2, 2015), 2015);
    EXPECT_TRUE(trace.hasError("2.2015", "S", 7));
}

}  // namespace
