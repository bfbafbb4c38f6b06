// Opening the log, its banners and its backups.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "QelUtility/BxTrace.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "support/Contains.h"
#include "trace/FreshTrace.h"

namespace {

using qel::test::contains;
using qel::test::FreshTrace;
using qel::test::writeFile;
using Lines = std::vector<std::string>;
namespace fs = std::filesystem;

std::string ownLog() {
    return "trace_" + std::to_string(static_cast<int>(qel::platform::processId())) + ".log";
}

// The log's name and backups, each with its content: "b.bk0=one b.log=two".
std::string family(const FreshTrace& trace, const std::string& start) {
    std::string all;
    for (const std::string& name : trace.files())
        if (name.compare(0, start.size(), start) == 0)
            all += (all.empty() ? "" : " ") + name + "=" + trace.text(name);
    return all;
}

TEST(BxTraceBackups, MoveUpByOneAndReplaceTheExtension) {
    const FreshTrace trace;
    const std::string log = trace.file("b.log");
    for (const char* content : {"one", "two", "three", "four", "five"}) {
        writeFile(log, content);
        EXPECT_EQ(BxTrace_MusicalBackups(log.c_str(), 3), 0);
    }
    EXPECT_EQ(family(trace, "b."), "b.bk0=five b.bk1=four b.bk2=three");
    // Without a live file the backups move all the same, over a gap too.
    EXPECT_EQ(BxTrace_MusicalBackups(log.c_str(), 2), 0);
    writeFile(log, "six");
    EXPECT_EQ(BxTrace_MusicalBackups(log.c_str(), -5), 0) << "no backup: deleted";
    EXPECT_EQ(family(trace, "b."), "b.bk1=five b.bk2=three");
}

TEST(BxTraceBackups, AreCappedAtSixteenAndNeedAnExtension) {
    const FreshTrace trace;
    writeFile(trace.file("c.x.log"), "live");
    writeFile(trace.file("c.x.bke"), "e");
    writeFile(trace.file("c.x.bkf"), "f");
    writeFile(trace.file("c.x.bk10"), "untouched");
    EXPECT_EQ(BxTrace_MusicalBackups(trace.file("c.x.log").c_str(), 20), 0);
    EXPECT_EQ(family(trace, "c."), "c.x.bk0=live c.x.bk10=untouched c.x.bkf=e");
    fs::create_directory(trace.file("dotted.dir"));
    const std::string plain = trace.file("dotted.dir") + qel::platform::kPathSeparator + "plain";
    writeFile(plain, "kept");
    EXPECT_EQ(BxTrace_MusicalBackups(plain.c_str(), 3), -1);
    EXPECT_EQ(BxTrace_MusicalBackups("", 3), -1);
    EXPECT_EQ(qel::test::readFile(plain), "kept");
}

TEST(BxTraceBackups, AFailedRenameDeletesTheLiveFileAndNoOtherLog) {
    const FreshTrace trace;
    // A directory cannot be replaced, so the log cannot become .bk0.
    fs::create_directory(trace.file("e.bk0"));
    writeFile(trace.file("e.bk0/inside"), "kept");
    writeFile(trace.file("e.log"), "live");
    EXPECT_EQ(BxTrace_MusicalBackups(trace.file("e.log").c_str(), 1), 0)
        << "the live file's removal";
    EXPECT_FALSE(fs::exists(trace.file("e.log")));
    EXPECT_TRUE(fs::exists(trace.file("e.bk0/inside")));
}

TEST(BxTraceBackups, BackupAndDeleteFollowTheOptions) {
    for (const char* keepLogFiles : {"KeepLogFiles=1", "KeepLogFiles=0"}) {
        FreshTrace trace({"MaxBackupCount=0", "MaxFileSize=30", keepLogFiles});
        EXPECT_EQ(BxTrace_BackupLogFile(), 0) << "there is no log yet";
        writeFile(trace.file("trace.log"), std::string(30, 'x'));
        EXPECT_EQ(BxTrace_ErrorLogDelete(), 0);
        EXPECT_EQ(fs::exists(trace.file("trace.log")), trace.settings().keepLogFiles == 1);
        EXPECT_FALSE(fs::exists(trace.file("trace.bk0"))) << "deleted outright";
        // The size limit keeps one backup even so.
        qel::trace::MessageLog& log = trace.system().log();
        writeFile(trace.file("trace.log"), std::string(29, 'x'));
        EXPECT_EQ(log.limitSize(trace.file("trace.log").c_str()), -1);
        writeFile(trace.file("trace.log"), std::string(30, 'x'));
        EXPECT_EQ(log.limitSize(trace.file("trace.log").c_str()), 0);
        EXPECT_EQ(family(trace, "trace."), "trace.bk0=" + std::string(30, 'x'));
    }
}

TEST(BxTraceLog, BannerIsWrittenToNewLogsAndOncePerProcess) {
    const FreshTrace trace({"TracingOptions=1f"});
    const std::string banner = " -- Halverd Log File, TracingOptions=1f --\n[";
    for (const auto& [before, bannerDue] : {std::pair{std::string("by another process\n"), true},
                                            {std::string(19, '-') + "\n", false},
                                            {std::string(18, '-') + "\n", true}}) {
        writeFile(trace.file("trace.log"), before);
        BxTrace_Trace00("one");
        BxTrace_Trace00("two");
        const std::size_t at = trace.text().find(banner);
        EXPECT_EQ(at != std::string::npos, bannerDue) << trace.text();
        EXPECT_TRUE(!bannerDue || trace.text().find("Halverd", at + 10) == std::string::npos);
    }
}

TEST(BxTraceLog, FailedOpensAreCountedAndReportedOnce) {
    const FreshTrace trace;
    BxTrace_GetTracingOptions();
    fs::create_directory(trace.file("trace.log"));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(BxTrace_Trace00("lost"), -1);
    EXPECT_EQ(BxTrace_Error("S", 1, 2, 3), 3) << "an error's code comes back all the same";
    fs::remove(trace.file("trace.log"));
    EXPECT_EQ(BxTrace_Trace00("found"), 0);
    EXPECT_EQ(BxTrace_Trace00("again"), 0);
    const std::string text = trace.text();
    const std::string thwarted =
        "\n\n** The previous 4 logging attempts were thwarted by 'OpenLogFile' failures **\n\n[";
    const std::size_t at = text.find(thwarted);
    ASSERT_NE(at, std::string::npos) << text;
    EXPECT_EQ(text.find("thwarted", at + thwarted.size()), std::string::npos);
    EXPECT_LT(at, text.find("found"));
}

TEST(BxTraceLog, AnUnwritableDirectorySilencesTheProcessWithoutCounting) {
    const std::string log = std::string("missing") + qel::platform::kPathSeparator + "trace.log";
    const FreshTrace trace({}, log);
    EXPECT_EQ(BxTrace_Trace00("lost"), -1);
    fs::create_directory(trace.file("missing"));
    EXPECT_EQ(BxTrace_Trace00("decided once"), -1);
    EXPECT_EQ(BxTrace_Error("S", 1, 2, 3), 3);
    EXPECT_FALSE(fs::exists(trace.file(log)));
}

TEST(BxTraceKeptOpen, WritesItsOwnBannerAndRotatesByItsCount) {
    const FreshTrace trace({"SeparateLogForEachProcess=1", "KeepLogFileOpen=2", "MaxFileSize=300",
                            "MaxBackupCount=2"});
    const std::string log = ownLog();
    EXPECT_EQ(BxTrace_Trace00("first"), 0);
    EXPECT_TRUE(contains(trace.text(log), ":  -- Halverd Linkup Log File --\n")) << "flushed";
    EXPECT_FALSE(contains(trace.text(log), "Process ID"));
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(BxTrace_Tracef("message %d of a log that outgrows its limit", i), 0);
    const std::string base = log.substr(0, log.size() - 4);
    EXPECT_FALSE(fs::exists(trace.file(base + ".bk2")));
    for (const char* name : {".bk0", ".bk1"}) {
        const std::string text = trace.text(base + name);
        EXPECT_TRUE(contains(text, "Halverd Linkup"));
        EXPECT_GE(text.size(), 300U);
        EXPECT_LT(text.size(), 450U);
    }
    EXPECT_EQ(trace.messages(log).back(), "message 19 of a log that outgrows its limit");
}

TEST(BxTraceKeptOpen, BuffersUntilItIsClosed) {
    FreshTrace trace({"SeparateLogForEachProcess=1", "KeepLogFileOpen=1"});
    const std::string log = ownLog();
    EXPECT_EQ(BxTrace_Trace00("in the buffer"), 0);
    EXPECT_EQ(trace.text(log), "");
    // A message longer than the buffer arrives whole.
    EXPECT_EQ(BxTrace_Trace00(std::string(90000, 'y').c_str()), 0);
    trace.restart();
    EXPECT_EQ(trace.messages(log), (Lines{"in the buffer", std::string(90000, 'y')}));
}

TEST(BxTraceKeptOpen, ALogThatIsTakenAwayIsOpenedAgain) {
    const FreshTrace trace({"SeparateLogForEachProcess=1", "KeepLogFileOpen=2"});
    const std::string log = ownLog();
    const std::string base = log.substr(0, log.size() - 4);
    BxTrace_Trace00("one");
    EXPECT_EQ(BxTrace_BackupLogFile(), 0);
    BxTrace_Trace00("two");
    EXPECT_EQ(trace.messages(base + ".bk0"), Lines{"one"});
    EXPECT_EQ(trace.messages(log), Lines{"two"});
    // Someone else cannot rename it, or its successor is opened.
    const bool renamed =
        qel::platform::renameFile(trace.file(log).c_str(), trace.file("away.log").c_str()) == 0;
    EXPECT_EQ(trace.messages(renamed ? "away.log" : log), Lines{"two"});
    BxTrace_Trace00("three");
    EXPECT_EQ(trace.messages(log).back(), "three");
}

}  // namespace
