// What the trace functions write, where, and when they do not.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/Platform.h"
#include "support/Contains.h"
#include "support/TraceCapture.h"
#include "trace/BxTraceInternal.h"
#include "trace/FreshTrace.h"
#include "trace/TraceState.h"

namespace {

using qel::test::contains;
using qel::test::FreshTrace;
using qel::test::maskStamps;
using Lines = std::vector<std::string>;

TEST(BxTrace, EveryLineHasAPrefixAndTheLastAnEnd) {
    const FreshTrace trace;
    BxTrace_Trace00("banner first");
    const std::size_t start = trace.text().size();
    EXPECT_EQ(BxTrace_Trace00("two\nlines"), 0);
    EXPECT_EQ(BxTrace_Trace00("ended\n"), 0);
    EXPECT_EQ(BxTrace_Trace00(""), 0);
    EXPECT_EQ(BxTrace_Trace00("\n\nx"), 0);
    EXPECT_EQ(BxTrace_Trace00(nullptr), 0);
    EXPECT_EQ(maskStamps(trace.text().substr(start)),
              "<prefix>: two\n<prefix>: lines\n<prefix>: ended\n<prefix>: \n<prefix>: \n"
              "<prefix>: x\n<prefix>: (null)\n");
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
    EXPECT_EQ(BxTrace_Tracef("%I64d %I64x %I32d %% I64 %5.1f|%-4s|%s", 1234567890123LL,
                             0xABCDEF0123LL, 7, 1.25, "ab", static_cast<const char*>(nullptr)),
              0);
    EXPECT_EQ(trace.messages().back(), "1234567890123 abcdef0123 7 % I64   1.2|ab  |(null)");
    const std::string huge(200000, 'h');
    EXPECT_EQ(BxTrace_Tracef("%s", huge.c_str()), 0);
    EXPECT_EQ(trace.messages().back(), huge.substr(0, 99999));
    EXPECT_EQ(BxTrace_Tracef("%s", huge.substr(0, 1024).c_str()), 0);
    EXPECT_EQ(trace.messages().back(), huge.substr(0, 1024));
    EXPECT_EQ(BxTrace_Tracef(nullptr), 0);
    EXPECT_EQ(trace.messages().back(), "(null)");
    EXPECT_EQ(BxTrace_Trace1("File", 9, huge.c_str()), 0);
    EXPECT_TRUE(contains(trace.messages().back(), ": " + huge.substr(0, 190) + " at File line 9"));
    EXPECT_EQ(BxTrace_Trace0(huge.c_str()), 0);
    EXPECT_EQ(trace.messages().back().size(), 22 + 2 + 490U);
}

TEST(BxTrace, LevelsAndMasksDecide) {
    const FreshTrace trace({"VTraceVerbosity=2", "TracingOptions=11"});
    EXPECT_EQ(BxTrace_VTrace(3, "too detailed"), 2);
    EXPECT_EQ(BxTrace_VTrace_TS(3, "too detailed"), 2);
    EXPECT_EQ(BxTrace_OTrace_TS(0x2, "not selected"), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(0, "never"), 0);
    BxTrace_WriteHex(0x2, reinterpret_cast<const unsigned char*>("x"), 1);
    EXPECT_FALSE(std::filesystem::exists(trace.file("trace.log")));
    EXPECT_EQ(BxTrace_VTrace(2, "level %d", 2), 0);
    EXPECT_EQ(BxTrace_VTrace_TS(-1, "level %d", -1), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(0x30, "mask %s", "0x30"), 0);
    EXPECT_EQ(trace.messages(), (Lines{"level 2", "level -1", "mask 0x30"}));
}

TEST(BxTrace, SyncMLMessagesHaveLogsOfTheirOwn) {
    const FreshTrace trace({"TracingOptions=7"});
    EXPECT_EQ(BxTrace_OTrace_TS(2, "%s", "<a>\n</a>"), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(4, "<b/>"), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(6, "<both/>\n"), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(1, "plain"), 0);
    const std::string banner = "<prefix>:  -- Halverd Log File, TracingOptions=7 --\n<prefix>: \n";
    EXPECT_EQ(maskStamps(trace.text("SyncML_Input.log")),
              banner + "<stamp>: SyncML Input:\n<a>\n</a>\n<stamp>: SyncML Input:\n<both/>\n\n");
    EXPECT_EQ(maskStamps(trace.text("SyncML_Output.log")),
              banner + "<stamp>: SyncML Output:\n<b/>\n");
    EXPECT_EQ(trace.messages(), Lines{"plain"});
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("trace.log"));

    // In the main log it is still a block.
    qel::trace::settings().tracingOptions = 0x08000007;
    EXPECT_EQ(BxTrace_OTrace_TS(4, "<c/>"), 0);
    const std::string text = maskStamps(trace.text());
    EXPECT_TRUE(contains(text, "\n<stamp>: SyncML Output:\n<c/>\n"));
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
    const Lines lines = trace.messages();
    ASSERT_EQ(lines.size(), 1 + 2048 / 16U);
    EXPECT_EQ(lines[1 + 7],
              "0070: 70 71 72 73 74 75 76 77  78 79 7A 7B 7C 7D 7E 7F |pqrstuvwxyz{|}~.|");
    EXPECT_EQ(lines.back().substr(0, 9), "07F0: F0 ");
    BxTrace_WriteHex(1, nullptr, 100);
    BxTrace_WriteHex(1, few, 0);
    EXPECT_EQ(trace.messages().size(), lines.size());
}

// --- Retroactive tracing ------------------------------------------------------------------------

TEST(BxTraceRetro, OnlyAnErrorWritesTheHistoryOut) {
    const FreshTrace trace({"RetroactiveTracingBufferSize=1000"});
    EXPECT_EQ(BxTrace_Trace00("first\n"), 0);
    EXPECT_EQ(BxTrace_Trace00(std::string(1001, 'Q').c_str()), 0);
    EXPECT_EQ(BxTrace_Trace00("\nafter a line that was never kept\n"), 0);
    EXPECT_FALSE(std::filesystem::exists(trace.file("trace.log")));
    EXPECT_EQ(BxTrace_Error("S", 1, 2, 3), 3);
    const std::string text = trace.text();
    EXPECT_EQ(text.find('Q'), std::string::npos);
    const std::size_t first = text.find("first\n");
    const std::size_t error = text.find("Error 2.3 at S line 1\n");
    ASSERT_NE(first, std::string::npos) << text;
    ASSERT_NE(error, std::string::npos) << text;
    EXPECT_LT(first, text.find("after a line"));
    EXPECT_LT(text.find("after a line"), error);
    // What was written out is gone from memory.
    BxTrace_FlushRetroBuffers();
    EXPECT_EQ(trace.text(), text);
    BxTrace_Trace00("more\n");
    BxTrace_FlushRetroBuffers();
    EXPECT_EQ(trace.messages().back(), "more");
}

TEST(BxTraceRetro, TheBuffersHoldTheMostRecentText) {
    const FreshTrace trace({"RetroactiveTracingBufferSize=50"});
    BxTrace_LoadSettings();
    {
        const qel::trace::WriterLock lock;
        ASSERT_TRUE(lock);
        for (int i = 0; i < 100; ++i) {
            char piece[16];
            const int length = std::snprintf(piece, sizeof piece, "%03d\n", i);
            BxTrace_RetroAppend(piece, length);
        }
        BxTrace_RetroAppend("x", 0);
        BxTrace_RetroAppend("x", -1);
        BxTrace_RetroAppend(std::string(51, 'x').c_str(), 51);
    }
    BxTrace_FlushRetroBuffers();
    // 400 characters in buffers of 50: the last one is full, so the two hold the last 100. Each is
    // ended by a line end when it is written out, here in the middle of line 87.
    Lines lines = trace.messages();
    ASSERT_EQ(lines.size(), 26U);
    EXPECT_EQ(lines[0], "075");
    EXPECT_EQ(lines[12] + lines[13], "087");
    EXPECT_EQ(lines.back(), "099");
    // A piece is split between the buffers without losing a character.
    {
        const qel::trace::WriterLock lock;
        BxTrace_RetroAppend(std::string(48, 'a').c_str(), 48);
        BxTrace_RetroAppend("bcdef", 5);
    }
    BxTrace_FlushRetroBuffers();
    EXPECT_EQ(trace.text().substr(trace.text().size() - 55), std::string(48, 'a') + "bc\ndef\n");
}

TEST(BxTraceRetro, CanBeTurnedOnAndOffAndIgnoresSizesThatCannotBe) {
    const FreshTrace trace;
    BxTrace_LoadSettings();
    for (const int size : {100, 0, 7, -3, 100}) {
        BxTrace_SetOptionValue("LogSettings", "RetroactiveTracingBufferSize", size);
        static std::uint32_t now = 0;
        FreshTrace::setTicks(now += 100000);
        BxTrace_LoadSettings();
        EXPECT_EQ(qel::trace::settings().retroBufferSize, std::max(size, 0));
        EXPECT_EQ(BxTrace_Tracef("size %d\n", size), 0);
        FreshTrace::setTicks(now + 1);
    }
    EXPECT_EQ(trace.messages(), (Lines{"size 0", "size -3"}));
    EXPECT_EQ(BxTrace_Error("S", 1, 2, 3), 3);
    const std::string text = trace.text();
    EXPECT_FALSE(contains(text, "size 7"));
    EXPECT_TRUE(contains(text, "size 100\n"));
}

}  // namespace
