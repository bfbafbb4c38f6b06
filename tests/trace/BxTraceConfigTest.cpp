// Where the log and the options are, and how the options are read, kept and written.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <string>

#include "QelUtility/BxHost.h"
#include "platform/Platform.h"
#include "support/Contains.h"
#include "support/Environment.h"
#include "support/TraceCapture.h"
#include "trace/BxTraceInternal.h"
#include "trace/FreshTrace.h"
#include "trace/TraceState.h"

namespace {

using qel::test::contains;
using qel::test::FreshTrace;
using Lines = std::vector<std::string>;

std::string withSeparator(const std::string& directory) {
    return directory + qel::platform::kPathSeparator;
}

TEST(BxTraceConfig, FirstLoadFindsItsFilesAndFillsInTheDefaults) {
    const FreshTrace trace;
    EXPECT_STREQ(BxTrace_GetLogFilePath(), "");
    EXPECT_STREQ(BxTrace_GetOptionsFilePath(), "");
    EXPECT_EQ(BxTrace_GetTracingOptions(), 1);
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("trace.log"));
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("BxOptions.opt"));
    EXPECT_EQ(BxTrace_GetRunDirWithTrailingBackslash(), trace.file(""));
    EXPECT_EQ(trace.text("BxOptions.opt"),
              "[LogSettings]\nMaxFileSize=5000000\nMaxBackupCount=3\nKeepLogFiles=1\n"
              "VTraceVerbosity=0\nTracingOptions=1\nLogManagerLevel=0\nLogManagerDetail=0\n"
              "RetroactiveTracingBufferSize=0\nSeparateLogForEachProcess=0\nKeepLogFileOpen=0\n");
    EXPECT_EQ(trace.text("zqoptcfg.cfg"),
              "[zqwin]\nMultiJobTraceLog=1\n[General]\nErrLogMaxSize=5000000\nErrLogBackups=3\n");
    EXPECT_EQ(trace.files(), (Lines{"BxOptions.opt", "zqoptcfg.cfg"})) << "no log before a message";
}

TEST(BxTraceConfig, ExtensionIsAddedToALogNameWithoutIt) {
    for (const auto& [name, log] : {std::pair{"trace", "trace.log"},
                                    {"t.LOG", "t.LOG"},
                                    {"ab", "ab.log"},
                                    {"x.log.txt", "x.log.txt.log"}}) {
        const FreshTrace trace({}, name);
        BxTrace_LoadSettings();
        EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file(log));
    }
    const FreshTrace trace;
    BxTrace_SetLogFileName(trace.file("other").c_str());
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("other.log"));
    EXPECT_STREQ(qel::trace::path(qel::trace::Path::kLogName), "other.log");
    BxTrace_LoadSettings();
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("other.log")) << "a name set before stays";
    BxTrace_SetLogFileName("bare");
    EXPECT_STREQ(qel::trace::path(qel::trace::Path::kSyncInput), "SyncML_Input.log");
    EXPECT_STREQ(BxTrace_GetRunDirWithTrailingBackslash(), "");
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("BxOptions.opt"));
    BxTrace_SetLogFileName(nullptr);
    EXPECT_STREQ(BxTrace_GetLogFilePath(), "bare.log");
}

std::string profileOfTheTest;

bool profileSource(char* buffer, unsigned long size) {
    BxTrace_Trace00("a host that traces while it is asked must not hang");
    return !profileOfTheTest.empty() && static_cast<unsigned long>(std::snprintf(
                                            buffer, size, "%s", profileOfTheTest.c_str())) < size;
}

TEST(BxTraceConfig, WithoutTheEnvironmentTheHostsProfileDirectoryCounts) {
    const FreshTrace trace;
    qel::test::setEnvironment("BX_ERR_LOG_FILE_PATH", "");
    BxHost_SetProfileDirectorySource(&profileSource);
    profileOfTheTest = trace.file("");
    profileOfTheTest.pop_back();
    BxTrace_LoadSettings();
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("BxTrace.log"));
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("BxOptions.opt"));

    // Without it, the folder of this module; the options file keeps this test from writing there.
    qel::trace::resetForTest();
    qel::test::setEnvironment("BX_OPTIONS_FILE_PATH", trace.file("elsewhere.opt"));
    profileOfTheTest.clear();
    BxTrace_LoadSettings();
    char program[512];
    ASSERT_TRUE(qel::platform::processPath(program, sizeof program));
    EXPECT_EQ(BxTrace_GetLogFilePath(),
              withSeparator(std::filesystem::path(program).parent_path().string()) + "BxTrace.log");
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("elsewhere.opt"));

    // A host that throws has none either.
    qel::trace::resetForTest();
    BxHost_SetProfileDirectorySource([](char*, unsigned long) -> bool { throw 7; });
    EXPECT_NO_THROW(EXPECT_EQ(BxTrace_GetTracingOptions(), 1));
    EXPECT_EQ(BxTrace_GetLogFilePath(),
              withSeparator(std::filesystem::path(program).parent_path().string()) + "BxTrace.log");
    BxHost_SetProfileDirectorySource(nullptr);
}

TEST(BxTraceConfig, OptionsAreReadWithTheirSignsBasesAndLimits) {
    const FreshTrace trace({"VTraceVerbosity= -7 ", "TracingOptions=0x8000000F",
                            "MaxFileSize=12abc", "MaxBackupCount=99999999999",
                            "KeepLogFiles=", "LogManagerLevel=xyz", "LogManagerDetail=FFFFFFFFF"});
    EXPECT_EQ(static_cast<std::uint32_t>(BxTrace_GetTracingOptions()), 0x8000000FU);
    EXPECT_LT(BxTrace_GetTracingOptions(), 0) << "32 bits, sign-extended";
    const qel::trace::Settings& s = qel::trace::settings();
    EXPECT_EQ(s.verbosity, -7);
    EXPECT_EQ(s.maxFileSize, 12);
    EXPECT_EQ(s.maxBackupCount, INT_MAX);
    EXPECT_EQ(s.keepLogFiles, 1) << "an empty value is filled in";
    EXPECT_EQ(s.logManagerLevel, 0);
    EXPECT_EQ(s.logManagerDetail, -1);
    EXPECT_TRUE(contains(trace.text("BxOptions.opt"), "KeepLogFiles=1"));
    EXPECT_TRUE(contains(trace.text("BxOptions.opt"), "TracingOptions=0x8000000F"));
    int value = -2;
    BxTrace_GetHexOptionValue("Other", "New", value);
    BxTrace_GetOptionValue("Other", "New decimal", value);
    EXPECT_EQ(value, -2);
    EXPECT_TRUE(contains(trace.text("BxOptions.opt"), "[Other]\nNew=fffffffe\nNew decimal=-2"));
    BxTrace_GetOptionValue(nullptr, "x", value);
    BxTrace_SetOptionValue("x", nullptr, 1);
    EXPECT_EQ(value, -2);
}

TEST(BxTraceConfig, OptionsAreReadAgainAfterAMinuteAndWhenTheClockWraps) {
    const FreshTrace trace({"VTraceVerbosity=1"});
    const auto verbosityAt = [](std::uint32_t ticks, int written) {
        BxTrace_SetOptionValue("LogSettings", "VTraceVerbosity", written);
        FreshTrace::setTicks(ticks);
        BxTrace_LoadSettings();
        return qel::trace::settings().verbosity.load();
    };
    FreshTrace::setTicks(1000);
    BxTrace_LoadSettings();
    EXPECT_EQ(verbosityAt(1001, 2), 1);
    EXPECT_EQ(verbosityAt(60999, 3), 1);
    EXPECT_EQ(verbosityAt(61000, 4), 4);
    EXPECT_EQ(verbosityAt(61000, 5), 5) << "not greater than the last load";
    EXPECT_EQ(verbosityAt(0xFFFFFFFFU, 6), 6);
    EXPECT_EQ(verbosityAt(5, 7), 7) << "wrapped";
    // What is settled once stays.
    BxTrace_SetOptionValue("LogSettings", "SeparateLogForEachProcess", 1);
    BxTrace_SetOptionValue("LogSettings", "MaxBackupCount", 9);
    FreshTrace::setTicks(100000);
    BxTrace_LoadSettings();
    EXPECT_EQ(qel::trace::settings().separateLogs, 0);
    EXPECT_EQ(qel::trace::settings().effectiveBackupCount, 3);
    EXPECT_EQ(qel::trace::settings().maxBackupCount, 9);
}

TEST(BxTraceConfig, EachProcessCanHaveItsLogWhileTheOthersStayShared) {
    const FreshTrace trace({"SeparateLogForEachProcess=1", "KeepLogFileOpen=0"}, "BxTrace.LOG");
    BxTrace_LoadSettings();
    const std::string own =
        "BxTrace_" + std::to_string(static_cast<int>(qel::platform::processId())) + ".log";
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file(own));
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("BxOptions.opt"));
    EXPECT_EQ(BxTrace_Trace00("hello"), 0);
    const Lines lines = trace.messages(own);
    ASSERT_EQ(lines.size(), 2U);
    char program[512];
    ASSERT_TRUE(qel::platform::processPath(program, sizeof program));
    EXPECT_EQ(lines[0], "Process ID is " +
                            std::to_string(static_cast<int>(qel::platform::processId())) +
                            ", running '" + program + "'");
    EXPECT_EQ(lines[1], "hello");

    // The first SyncML message turns the process over to the shared name.
    qel::trace::settings().tracingOptions = 3;
    EXPECT_EQ(BxTrace_OTrace_TS(2, "<SyncML/>"), 0);
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("BxTrace.LOG"));
    EXPECT_EQ(BxTrace_Trace00("shared"), 0);
    EXPECT_EQ(trace.messages("BxTrace.LOG").back(), "shared");
}

TEST(BxTraceConfig, KeptOpenNeedsALogForEachProcess) {
    const FreshTrace trace({"KeepLogFileOpen=3"});
    BxTrace_LoadSettings();
    EXPECT_EQ(qel::trace::settings().keepLogFileOpen, 0);
}

TEST(BxTraceConfig, AnUnusableOptionsFileLeavesTheDefaultsAndTracingWorks) {
    const auto expectDefaults = [](const FreshTrace& trace) {
        qel::trace::resetForTest();
        EXPECT_EQ(BxTrace_Trace00("still here"), 0);
        EXPECT_EQ(trace.messages().back(), "still here");
        EXPECT_EQ(qel::trace::settings().maxFileSize, 5000000);
        EXPECT_EQ(BxTrace_GetTracingOptions(), 1);
        int value = 5;
        BxTrace_GetOptionValue("LogSettings", "MaxFileSize", value);
        EXPECT_TRUE(value == 5 || value == 5000000) << value;
    };
    {
        const FreshTrace trace;
        std::filesystem::create_directory(trace.file("BxOptions.opt"));
        expectDefaults(trace);
        EXPECT_TRUE(std::filesystem::is_directory(trace.file("BxOptions.opt")));
    }
    const FreshTrace trace;
    qel::test::setEnvironment("BX_OPTIONS_FILE_PATH", trace.file("no/such/folder/x.opt"));
    expectDefaults(trace);
}

TEST(BxTraceConfig, OverlongPathsAreCutAndHarmNothing) {
    const FreshTrace trace;
    for (const std::size_t length : {505U, 511U, 512U, 600U, 5000U}) {
        const std::string folder = trace.file(std::string(length, 'd'));
        qel::test::setEnvironment("BX_ERR_LOG_FILE_PATH", folder);
        qel::trace::resetForTest();
        EXPECT_EQ(BxTrace_Trace00("lost"), -1);
        EXPECT_LE(std::strlen(BxTrace_GetLogFilePath()), 511U);
        EXPECT_LE(std::strlen(BxTrace_GetOptionsFilePath()), 511U);
        BxTrace_SetLogFileName(folder.c_str());
        EXPECT_LE(std::strlen(BxTrace_GetLogFilePath()), 511U);
        EXPECT_EQ(BxTrace_MusicalBackups((folder + ".log").c_str(), 3), length < 460U ? 0 : -1);
    }
}

}  // namespace
