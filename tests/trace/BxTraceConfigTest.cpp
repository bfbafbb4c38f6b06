// Where the log and the options are, and how the options are read, kept and written.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <string>

#include "QelUtility/BxHost.h"
#include "QelUtility/BxTrace.h"
#include "platform/Process.h"
#include "support/Contains.h"
#include "support/Environment.h"
#include "support/TraceCapture.h"
#include "trace/BxTraceInternal.h"
#include "trace/FreshTrace.h"

namespace {

using qel::test::contains;
using qel::test::FreshTrace;
using Lines = std::vector<std::string>;

std::string programPath() {
    char program[512];
#ifdef QEL_PORTABLE_POSIX
    EXPECT_FALSE(qel::platform::processPath(program, sizeof program));  // POSIX does not know it
#else
    EXPECT_TRUE(qel::platform::processPath(program, sizeof program));
#endif
    return program;
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
    for (const auto& [name, log] : {std::pair{"ab", "ab.log"}, {"t.LOG", "t.LOG"}}) {
        const FreshTrace named({}, name);
        BxTrace_GetTracingOptions();
        EXPECT_EQ(BxTrace_GetLogFilePath(), named.file(log));
    }
}

// The name of the log changes what follows from it, but for the options that are loaded.
TEST(BxTraceConfig, TheLogCanBeGivenAnotherName) {
    using namespace qel::trace;
    const FreshTrace trace;
    EXPECT_TRUE(BxTrace_ForceInitialization());
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        BxTrace_SetLogFileName(none);
        EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("trace.log"));
    }
    for (const auto& [name, log] : {std::pair{"other", "other.log"},
                                    {"b.lOG", "b.lOG"},
                                    {"b.lag", "b.lag.log"},
                                    {"b.loc", "b.loc.log"},
                                    {"b.aog", "b.aog.log"},
                                    {"blog", "blog.log"}}) {
        BxTrace_SetLogFileName(trace.file(name).c_str());
        EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file(log));
        EXPECT_EQ(BxTrace_Trace00(name), 0);
        EXPECT_EQ(trace.messages(log), Lines{name});
    }
    // A name without a folder is in the current one.
    BxTrace_SetLogFileName("c.x");
    EXPECT_STREQ(BxTrace_GetLogFilePath(), "c.x.log");
    EXPECT_STREQ(BxTrace_GetRunDirWithTrailingBackslash(), "");
}

std::string profileOfTheTest;

bool profileSource(char* buffer, unsigned long size) {
    BxTrace_Trace00("a host that traces while it is asked must not hang");
    return !profileOfTheTest.empty() && static_cast<unsigned long>(std::snprintf(
                                            buffer, size, "%s", profileOfTheTest.c_str())) < size;
}

TEST(BxTraceConfig, WithoutTheEnvironmentTheHostsProfileDirectoryCounts) {
    FreshTrace trace;
    qel::test::setEnvironment("BX_ERR_LOG_FILE_PATH", "");
    BxHost_SetProfileDirectorySource(&profileSource);
    profileOfTheTest = trace.file("");
    BxTrace_GetTracingOptions();
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("BxTrace.log"));
    profileOfTheTest.pop_back();
    trace.restart();
    int option = 7;
    BxTrace_GetOptionValue("LogSettings", "MaxBackupCount", option);  // loads what it needs
    EXPECT_EQ(option, 3);
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("BxTrace.log"));
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("BxOptions.opt"));

    // Without a profile directory, or with a host that throws: the folder of this module. The
    // options file keeps this test from writing there.
    qel::test::setEnvironment("BX_OPTIONS_FILE_PATH", trace.file("elsewhere.opt"));
    profileOfTheTest.clear();
    const std::string besideTheProgram =
        (std::filesystem::path(programPath()).parent_path() / "BxTrace.log").string();
    trace.restart();
    BxTrace_GetTracingOptions();
    EXPECT_EQ(BxTrace_GetLogFilePath(), besideTheProgram);
    EXPECT_EQ(BxTrace_GetOptionsFilePath(), trace.file("elsewhere.opt"));
    trace.restart();
    BxHost_SetProfileDirectorySource([](char*, unsigned long) -> bool { throw 7; });
    EXPECT_NO_THROW(BxTrace_GetTracingOptions());
    EXPECT_EQ(BxTrace_GetLogFilePath(), besideTheProgram);
    BxHost_SetProfileDirectorySource(nullptr);
}

TEST(BxTraceConfig, OptionsAreReadWithTheirSignsBasesAndLimits) {
    const FreshTrace trace({"VTraceVerbosity= -7 ", "TracingOptions=0x8000000F",
                            "MaxFileSize=+12abc", "MaxBackupCount=99999999999", "KeepLogFiles=",
                            "LogManagerLevel=\" \v\t7z\"", "LogManagerDetail=FFFFFFFFF"});
    EXPECT_EQ(static_cast<std::uint32_t>(BxTrace_GetTracingOptions()), 0x8000000FU);
    EXPECT_LT(BxTrace_GetTracingOptions(), 0) << "32 bits, sign-extended";
    const qel::trace::Settings& s = trace.settings();
    EXPECT_EQ(s.verbosity, -7);
    EXPECT_EQ(s.maxFileSize, 12);
    EXPECT_EQ(s.maxBackupCount, INT_MAX);
    EXPECT_EQ(s.keepLogFiles, 1) << "an empty value is filled in";
    EXPECT_EQ(s.logManagerLevel, 7);
    EXPECT_EQ(s.logManagerDetail, -1);
    int value = -2;
    BxTrace_GetHexOptionValue("Other", "New", value);
    BxTrace_GetOptionValue("Other", "New decimal", value);
    BxTrace_GetOptionValue(nullptr, "x", value);
    BxTrace_GetOptionValue("x", nullptr, value);
    BxTrace_SetOptionValue("x", nullptr, 1);
    EXPECT_EQ(value, -2);
    BxTrace_SetHexOptionValue("Other", "Hex", 0xAB);
    const std::string text = trace.text("BxOptions.opt");
    EXPECT_TRUE(contains(text, "KeepLogFiles=1"));
    EXPECT_TRUE(contains(text, "TracingOptions=0x8000000F"));
    EXPECT_TRUE(contains(text, "[Other]\nNew=fffffffe\nNew decimal=-2\nHex=ab"));
}

TEST(BxTraceConfig, OptionsAreReadAgainAfterAMinuteAndWhenTheClockWraps) {
    const FreshTrace trace({"VTraceVerbosity=1"});
    const auto verbosityAt = [&trace](std::uint32_t ticks, int written) {
        BxTrace_SetOptionValue("LogSettings", "VTraceVerbosity", written);
        FreshTrace::setTicks(ticks);
        BxTrace_GetTracingOptions();
        return trace.settings().verbosity.load();
    };
    FreshTrace::setTicks(1000);
    BxTrace_GetTracingOptions();
    EXPECT_EQ(verbosityAt(1001, 2), 1);
    EXPECT_EQ(verbosityAt(60999, 3), 1);
    EXPECT_EQ(verbosityAt(61000, 4), 4);
    EXPECT_EQ(verbosityAt(61000, 5), 5) << "not greater than the last load";
    EXPECT_EQ(verbosityAt(0xFFFFFFFFU, 6), 6);
    // What is settled once stays.
    BxTrace_SetOptionValue("LogSettings", "SeparateLogForEachProcess", 1);
    BxTrace_SetOptionValue("LogSettings", "MaxBackupCount", 9);
    EXPECT_EQ(verbosityAt(5, 7), 7) << "wrapped";
    EXPECT_EQ(trace.settings().separateLogs, 0);
    EXPECT_EQ(trace.settings().effectiveBackupCount, 3);
}

TEST(BxTraceConfig, EachProcessCanHaveItsLogWhileTheOthersStayShared) {
    const FreshTrace trace({"SeparateLogForEachProcess=1", "TracingOptions=3"}, "BxTrace.LOG");
    EXPECT_EQ(BxTrace_Trace00("hello"), 0);
    const std::string id = std::to_string(static_cast<int>(qel::platform::processId()));
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("BxTrace_" + id + ".log"));
    EXPECT_EQ(trace.messages("BxTrace_" + id + ".log"),
              (Lines{"Process ID is " + id + ", running '" + programPath() + "'", "hello"}));
    // The first SyncML message makes the process use the shared name.
    EXPECT_EQ(BxTrace_OTrace_TS(2, "<SyncML/>"), 0);
    EXPECT_EQ(BxTrace_GetLogFilePath(), trace.file("BxTrace.LOG"));
    EXPECT_EQ(BxTrace_Trace00("shared"), 0);
    EXPECT_EQ(trace.messages("BxTrace.LOG").back(), "shared");

    const FreshTrace together({"KeepLogFileOpen=3"});
    BxTrace_GetTracingOptions();
    EXPECT_EQ(together.settings().keepLogFileOpen, 0) << "only with a log for each process";
}

TEST(BxTraceConfig, AnUnusableOptionsFileLeavesTheDefaultsAndTracingWorks) {
    FreshTrace trace;
    std::filesystem::create_directory(trace.file("BxOptions.opt"));
    for (const std::string& options : {std::string(), trace.file("no/such/folder/x.opt")}) {
        qel::test::setEnvironment("BX_OPTIONS_FILE_PATH", options);
        trace.restart();
        EXPECT_EQ(BxTrace_Trace00("still here"), 0);
        EXPECT_EQ(trace.messages().back(), "still here");
        EXPECT_EQ(trace.settings().maxFileSize, 5000000);
    }
    EXPECT_TRUE(std::filesystem::is_directory(trace.file("BxOptions.opt")));
}

TEST(BxTraceConfig, OverlongPathsAreCutAndHarmNothing) {
    FreshTrace trace;
    for (const std::size_t length : {505U, 512U, 5000U}) {
        const std::string folder = trace.file(std::string(length, 'd'));
        qel::test::setEnvironment("BX_ERR_LOG_FILE_PATH", folder);
        trace.restart();
        EXPECT_EQ(BxTrace_Trace00("lost"), -1);
        EXPECT_LE(std::strlen(BxTrace_GetLogFilePath()), 511U);
        EXPECT_LE(std::strlen(BxTrace_GetOptionsFilePath()), 511U);
        EXPECT_EQ(BxTrace_MusicalBackups((folder + ".log").c_str(), 3), -1);
    }
}

}  // namespace
