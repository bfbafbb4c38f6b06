// What the error and trace functions write, where, and when they do not.
#include "QelUtility/BxTrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/Files.h"
#include "support/Contains.h"
#include "support/TraceCapture.h"
#include "trace/BxTraceInternal.h"
#include "trace/ErrorId.h"
#include "trace/FreshTrace.h"
#include "trace/RetroBuffers.h"
#include "trace/Stamp.h"

namespace {

using qel::test::contains;
using qel::test::FreshTrace;
using qel::test::maskStamps;
using qel::test::TraceCapture;
using Lines = std::vector<std::string>;

TEST(BxTraceErrors, EachFormWritesItsDetailsAndReturnsTheCode) {
    const std::string huge(5000, 'x');
    const TraceCapture trace;
    EXPECT_EQ(BxTrace_Error("RptNext", 12, 5, 2001), 2001);
    EXPECT_EQ(BxTrace_Error_L("S", 2, -2, 2015), 2015);
    EXPECT_EQ(BxTrace_Error_S("S", 3, "text", -1), -1);
    EXPECT_EQ(BxTrace_Error_SS(nullptr, 4, "a", nullptr, 7), 7);
    EXPECT_EQ(BxTrace_Error_SL("S", 5, "%s%n", 2147483647L, 8), 8);
    EXPECT_EQ(BxTrace_Error_SI64L("S", 7, "a", -1, 3L, 10), 10);
    constexpr int kLeast = -2147483647 - 1;
    EXPECT_EQ(BxTrace_Error_SSL(huge.c_str(), kLeast, huge.c_str(), huge.c_str(), kLeast, kLeast),
              kLeast);
    EXPECT_EQ(
        trace.errors(),
        (Lines{"Error 5.2001 at RptNext line 12", "Error 0xfffffffe.-2.2015 at S line 2",
               "Error text.-1 at S line 3", "Error a.(null).7 at (null) line 4",
               "Error %s%n.2147483647.8 at S line 5", "Error a.ffffffffffffffff.3.10 at S line 7",
               "Error " + huge.substr(0, 350) + "." + huge.substr(0, 350) +
                   ".-2147483648.-2147483648 at " + huge.substr(0, 256) + " line -2147483648"}));
}

// An identifier behind each error that does not name it itself.
TEST(BxTraceErrors, CarryTheErrorIdOnce) {
    using namespace qel::trace;
    const FreshTrace trace;
    char id[qel::trace::ErrorId::kRoom] = "old";
    EXPECT_FALSE(BxTrace_GetErrorID(id, sizeof id));
    BxTrace_SetErrorID((std::string(64, 'i') + "cut").c_str());
    EXPECT_TRUE(BxTrace_GetErrorID(id, sizeof id));
    EXPECT_EQ(id, std::string(64, 'i'));
    EXPECT_FALSE(BxTrace_GetErrorID(id, 0));
    EXPECT_FALSE(BxTrace_GetErrorID(nullptr, sizeof id));
    BxTrace_SetErrorID("sync 7");
    EXPECT_EQ(BxTrace_ErrorIfFailure("S", 5, 1, 2015), 2015);
    EXPECT_EQ(BxTrace_Error_S("S", 6, "in sync 7", 2001), 2001);
    BxTrace_SetErrorID(nullptr);
    for (const int success : {0, 2014, 2018, 2037, 2042}) {
        EXPECT_EQ(BxTrace_IsFailureCode(success), success & ~0xFF);
        EXPECT_EQ(BxTrace_ErrorIfFailure("S", 7, 1, success), success);
    }
    for (const int failure : {1, -1, 2015, 2043})
        EXPECT_EQ(BxTrace_IsFailureCode(failure), (failure & ~0xFF) + 1);
    Lines lines = trace.messages();
    for (std::string& line : lines) line.erase(0, line.find("Error"));
    EXPECT_EQ(lines,
              (Lines{"Error 1.2015 at S line 5, ID= sync 7", "Error in sync 7.2001 at S line 6"}));
}

TEST(BxTrace, EveryLineHasAPrefixAndTheLastAnEnd) {
    const FreshTrace trace;
    BxTrace_Trace00("banner first");
    const std::size_t start = trace.text().size();
    for (const char* text : {"two\nlines", "ended\n", "", "\n\nx"})
        EXPECT_EQ(BxTrace_Trace00(text), 0);
    EXPECT_EQ(BxTrace_Trace00(nullptr), 0);
    EXPECT_EQ(maskStamps(trace.text().substr(start)),
              "<prefix>: two\n<prefix>: lines\n<prefix>: ended\n<prefix>: \n<prefix>: \n"
              "<prefix>: x\n<prefix>: (null)\n");
}

// Where the options say so, a message that cannot be written is shown to the user.
TEST(BxTrace, AFailureIsShownWhereTheOptionsSaySo) {
    if (qel::platform::kPathSeparator == '\\') GTEST_SKIP() << "a box that waits for a click";
    for (const bool shown : {false, true}) {
        FreshTrace trace({shown ? "TracingOptions=80000001" : "TracingOptions=1"});
        std::filesystem::create_directory(trace.file("trace.log"));
        testing::internal::CaptureStderr();
        EXPECT_EQ(BxTrace_Trace00("lost"), -1);
        EXPECT_EQ(contains(testing::internal::GetCapturedStderr(), "OpenLogFile failed"), shown);
    }
}

TEST(BxTrace, StampsOfOneMillisecondAreNumbered) {
    // Two stamps made at once mostly share their millisecond.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string one = qel::trace::makeStamp().text;
        const std::string two = qel::trace::makeStamp().text;
        if (one.substr(0, 18) != two.substr(0, 18)) continue;
        EXPECT_EQ(std::stoi(two.substr(19)), std::stoi(one.substr(19)) + 1);
        return;
    }
    ADD_FAILURE() << "no two stamps within a millisecond";
}

TEST(BxTrace, FormatsAreBoundedAndKnow64Bits) {
    const FreshTrace trace;
    const std::string huge(200000, 'h');
    // As variables, because compilers take what they see in a format for the C library's.
    const char* format = "%I64d %I64x %I32d %% I64 %5.1f|%-4s|%s";
    const char* none = nullptr;
    EXPECT_EQ(BxTrace_Tracef(format, 1234567890123LL, 0xABCDEF0123LL, 7, 1.25, "ab",
                             static_cast<const char*>(nullptr)),
              0);
    EXPECT_EQ(BxTrace_Tracef("%s", huge.c_str()), 0);
    EXPECT_EQ(BxTrace_Tracef("%s", huge.substr(0, 1024).c_str()), 0);
    EXPECT_EQ(BxTrace_Tracef(none, 0), 0);
    EXPECT_EQ(trace.messages(), (Lines{"1234567890123 abcdef0123 7 % I64   1.2|ab  |(null)",
                                       huge.substr(0, 99999), huge.substr(0, 1024), "(null)"}));
    EXPECT_EQ(BxTrace_Trace1("File", 9, huge.c_str()), 0);
    EXPECT_TRUE(contains(trace.messages().back(), ": " + huge.substr(0, 190) + " at File line 9"));
}

TEST(BxTrace, NullTextsAreShown) {
    const FreshTrace trace;
    EXPECT_EQ(BxTrace_Trace1(nullptr, 3, nullptr), 0);
    EXPECT_TRUE(trace.messages().back().ends_with(": (null) at (null) line 3"));
}

TEST(BxTrace, LevelsAndMasksDecide) {
    const FreshTrace trace({"VTraceVerbosity=2", "TracingOptions=11"});
    EXPECT_EQ(BxTrace_VTrace(3, "too detailed"), 2);
    EXPECT_EQ(BxTrace_OTrace_TS(0x2, "not selected"), 0);
    BxTrace_WriteHex(0x2, reinterpret_cast<const unsigned char*>("x"), 1);
    EXPECT_FALSE(std::filesystem::exists(trace.file("trace.log")));
    EXPECT_EQ(BxTrace_VTrace(2, "level %d", 2), 0);
    EXPECT_EQ(BxTrace_VTrace_TS(-1, "level %d", -1), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(0x30, "mask %s", "0x30"), 0);
    EXPECT_EQ(trace.messages(), (Lines{"level 2", "level -1", "mask 0x30"}));
}

TEST(BxTrace, SyncMLMessagesHaveLogsOfTheirOwn) {
    {
        const FreshTrace trace({"TracingOptions=7"});
        EXPECT_EQ(BxTrace_OTrace_TS(2, "%s", "<a>\n</a>"), 0);
        EXPECT_EQ(BxTrace_OTrace_TS(4, "<b/>"), 0);
        EXPECT_EQ(BxTrace_OTrace_TS(6, "<both/>\n"), 0);
        EXPECT_EQ(BxTrace_OTrace_TS(1, "plain"), 0);
        const std::string banner =
            "<prefix>:  -- Halverd Log File, TracingOptions=7 --\n<prefix>: \n";
        EXPECT_EQ(
            maskStamps(trace.text("SyncML_Input.log")),
            banner + "<stamp>: SyncML Input:\n<a>\n</a>\n<stamp>: SyncML Input:\n<both/>\n\n");
        EXPECT_EQ(maskStamps(trace.text("SyncML_Output.log")),
                  banner + "<stamp>: SyncML Output:\n<b/>\n");
        EXPECT_EQ(trace.messages(), Lines{"plain"});
    }
    const FreshTrace trace({"TracingOptions=8000007"});
    EXPECT_EQ(BxTrace_OTrace_TS(4, "<c/>"), 0);
    EXPECT_TRUE(contains(maskStamps(trace.text()), "\n<stamp>: SyncML Output:\n<c/>\n"))
        << "a block in the main log too";
}

TEST(BxTrace, HexDumpShowsBytesAndText) {
    const FreshTrace trace;
    const unsigned char few[] = {0x41, 0x0A, 0x42};
    BxTrace_WriteHex(1, few, sizeof few);
    EXPECT_EQ(trace.messages().back(), "0000: 41 0A 42 " + std::string(5 * 3 + 1 + 8 * 3, ' ') +
                                           "|A.B" + std::string(13, ' ') + "|");
    unsigned char many[3000];
    for (std::size_t i = 0; i < sizeof many; ++i) many[i] = static_cast<unsigned char>(i);
    BxTrace_WriteHex(1, many, sizeof many);
    BxTrace_WriteHex(1, nullptr, 100);
    const Lines lines = trace.messages();
    ASSERT_EQ(lines.size(), 1 + 2048 / 16U);
    EXPECT_EQ(lines[1 + 7],
              "0070: 70 71 72 73 74 75 76 77  78 79 7A 7B 7C 7D 7E 7F |pqrstuvwxyz{|}~.|");
    EXPECT_EQ(lines.back().substr(0, 9), "07F0: F0 ");
}

// --- Retroactive tracing ------------------------------------------------------------------------

TEST(BxTraceRetro, OnlyAnErrorWritesTheHistoryOut) {
    const FreshTrace trace({"RetroactiveTracingBufferSize=1000"});
    EXPECT_EQ(BxTrace_Trace00("first\n"), 0);
    EXPECT_EQ(BxTrace_Trace00(std::string(1001, 'Q').c_str()), 0);
    EXPECT_EQ(BxTrace_Trace00("\nafter a line that was never kept\n"), 0);
    EXPECT_FALSE(std::filesystem::exists(trace.file("trace.log")));
    EXPECT_EQ(BxTrace_Error("S", 1, 2, 3), 3);
    const std::string text = maskStamps(trace.text());
    EXPECT_EQ(text.find('Q'), std::string::npos);
    EXPECT_TRUE(contains(text,
                         "<prefix>: first\n<prefix>: <prefix>: \n"
                         "<prefix>: after a line that was never kept\n"))
        << text;
    EXPECT_LT(text.find("after"), text.find("Error 2.3 at S line 1\n"));
    BxTrace_FlushRetroBuffers();
    EXPECT_EQ(maskStamps(trace.text()), text) << "what was written is gone from memory";
}

TEST(BxTraceRetro, TheBuffersHoldTheMostRecentText) {
    qel::trace::RetroBuffers buffers;
    const auto drained = [&buffers] {
        std::string all;
        buffers.drain([&all](const char* text) { all += std::string(text) + "|"; });
        return all;
    };
    buffers.resize(50);
    for (int i = 100; i < 200; ++i) buffers.append((std::to_string(i) + ",").c_str(), 4);
    buffers.append("x", 0);
    buffers.append(std::string(51, 'x').c_str(), 51);
    // 400 characters in buffers of 50: both are full with the last 100.
    std::string last;
    for (int i = 175; i < 200; ++i) last += std::to_string(i) + ",";
    EXPECT_EQ(drained(), last.substr(0, 50) + "|" + last.substr(50) + "|");
    EXPECT_EQ(drained(), "");
    buffers.append(std::string(48, 'a').c_str(), 48);
    buffers.append("bcdef", 5);
    EXPECT_EQ(drained(), std::string(48, 'a') + "bc|def|") << "a text is split between the two";
}

TEST(BxTraceRetro, CanBeTurnedOnAndOffAndIgnoresSizesThatCannotBe) {
    FreshTrace trace;
    BxTrace_GetTracingOptions();
    std::uint32_t now = 0;
    for (const int size : {100, 0, 7, -3, 100}) {
        BxTrace_SetOptionValue("LogSettings", "RetroactiveTracingBufferSize", size);
        FreshTrace::setTicks(now += 100000);
        EXPECT_EQ(BxTrace_Tracef("size %d\n", size), 0);
        EXPECT_EQ(trace.system().log().retroSize(), std::max(size, 0));
        FreshTrace::setTicks(now + 1);
    }
    EXPECT_EQ(trace.messages(), (Lines{"size 0", "size -3"}));
    EXPECT_EQ(BxTrace_Error("S", 1, 2, 3), 3);
    EXPECT_FALSE(contains(trace.text(), "size 7"));
    EXPECT_TRUE(contains(trace.text(), "size 100\n"));
}

}  // namespace
