// Several threads and several processes on one log, with rotation: every line that was accepted is
// there once, whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "QelUtility/BxTrace.h"
#include "platform/Files.h"
#include "platform/LockResult.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "support/Process.h"
#include "trace/FreshTrace.h"

namespace {

using qel::test::FreshTrace;

// The size of the run: `./dev load` sets QEL_LOAD_LINES for the large one.
struct Load {
    int processes = 4;
    int threads = 3;
    int lines = 500;

    Load() {
        const char* const wanted = std::getenv("QEL_LOAD_LINES");
        if (wanted == nullptr) return;
        processes = 8;
        threads = 4;
        lines = std::atoi(wanted);
    }
    // An option for logs of which `logs` share the lines: several rotations, none that drops a
    // file.
    [[nodiscard]] std::string maxFileSize(int logs) const {
        constexpr int kLongestLine = 130;
        constexpr int kFilesToFill = 10;  // of the 16 backups and the log
        const long long bytes = 1LL * processes * threads * lines * kLongestLine / logs;
        return "MaxFileSize=" + std::to_string(bytes / kFilesToFill);
    }
};

// The length of the padding that a line of the probe carries.
bool isWhole(const std::string& line) {
    const std::size_t dot = line.rfind('.', line.find(' '));
    const std::size_t blank = line.find(' ');
    if (dot == std::string::npos || blank == std::string::npos) return false;
    const int number = std::stoi(line.substr(dot + 1));
    const auto padding = static_cast<std::size_t>(number % 5000 == 7 ? 40000 : number % 57);
    return line.substr(blank) == " " + std::string(padding, 'p') + "|";
}

// Runs the probes side by side and compares what they say with what is in the folder.
void runProbes(const FreshTrace& trace, const Load& load) {
    std::vector<std::string> dropped(static_cast<std::size_t>(load.processes));
    std::vector<std::thread> running;
    for (std::size_t i = 0; i < dropped.size(); ++i) {
        running.emplace_back([&trace, &load, &dropped, i] {
            qel::test::ProcessOptions options;
            options.environment["BX_ERR_LOG_FILE_PATH"] = trace.file("trace.log");
            options.environment["BX_OPTIONS_FILE_PATH"] = trace.file("BxOptions.opt");
            const qel::test::ProcessResult result = qel::test::runProcess(
                TRACE_PROBE_PROGRAM,
                {"p" + std::to_string(i), std::to_string(load.threads), std::to_string(load.lines)},
                options);
            EXPECT_EQ(result.exitCode, 0);
            dropped[i] = result.out;
            std::erase(dropped[i], '\r');
        });
    }
    for (std::thread& each : running) each.join();
    const std::string filledIn = trace.text("BxOptions.opt");
    EXPECT_EQ(std::count(filledIn.begin(), filledIn.end(), '='), 10) << filledIn;

    std::map<std::string, int> found;
    for (const std::string& name : trace.files()) {
        if (name.compare(0, 5, "trace") != 0) continue;
        for (const std::string& line : trace.messages(name)) {
            if (line.compare(0, 11, "Process ID ") == 0 || line.empty()) continue;
            EXPECT_TRUE(isWhole(line)) << name << ": " << line;
            ++found[line.substr(0, line.find(' '))];
        }
    }
    std::size_t drops = 0;
    for (std::size_t i = 0; i < dropped.size(); ++i) {
        std::istringstream in(dropped[i]);
        const std::set<std::string> refused{std::istream_iterator<std::string>(in), {}};
        drops += refused.size();
        const std::string process = "p" + std::to_string(i) + ".";
        for (int thread = 0; thread < load.threads; ++thread)
            for (int line = 0; line < load.lines; ++line) {
                const std::string id =
                    process + std::to_string(thread) + "." + std::to_string(line);
                ASSERT_EQ(found[id], refused.count(id) == 0 ? 1 : 0) << id;
            }
    }
    std::printf("%zu lines, %zu dropped and reported, in %zu files\n", found.size(), drops,
                trace.files().size());
}

TEST(BxTraceProcesses, ShareALogThatIsOpenedForEachMessage) {
    const Load load;
    const FreshTrace trace({load.maxFileSize(1), "MaxBackupCount=16"});
    runProbes(trace, load);
    EXPECT_GE(trace.files().size(), 5U) << "there were rotations";
}

TEST(BxTraceProcesses, KeepLogsOfTheirOwnOpen) {
    const Load load;
    const FreshTrace trace({load.maxFileSize(load.processes), "MaxBackupCount=16",
                            "SeparateLogForEachProcess=1", "KeepLogFileOpen=1"});
    runProbes(trace, load);
    EXPECT_GE(trace.files().size(), 10U);
}

// Every entry point at once, with the settings read again all the time: no race, no deadlock.
TEST(BxTraceThreads, UseEverythingAtOnce) {
    const FreshTrace trace({"TracingOptions=7", "MaxFileSize=4000", "VTraceVerbosity=1"});
    BxTrace_GetTracingOptions();
    std::atomic<std::uint32_t> now{0};
    std::atomic<int> accepted{0};
    const auto work = [&now, &accepted](int thread) {
        for (int i = 0; i < 60; ++i) {
            FreshTrace::setTicks(now += 70000);
            if (BxTrace_Tracef("thread %d line %d", thread, i) == 0) ++accepted;
            BxTrace_Error("S", i, thread, 2001);
            BxTrace_OTrace_TS(i % 2 == 0 ? 2 : 4, "<SyncML %d/>", i);
            BxTrace_VTrace(1, "%s", std::string(static_cast<std::size_t>(i) * 50, 'v').c_str());
            EXPECT_LT(std::strlen(BxTrace_GetLogFilePath()), 512U);
            EXPECT_LT(std::strlen(BxTrace_GetRunDirWithTrailingBackslash()), 512U);
            switch (thread) {
                case 0:
                    BxTrace_SetOptionValue("LogSettings", "RetroactiveTracingBufferSize",
                                           i % 3 == 0 ? 500 : 0);
                    break;
                case 1:
                    BxTrace_BackupLogFile();
                    BxTrace_FlushRetroBuffers();
                    break;
                default:
                    BxTrace_WriteHex(1, reinterpret_cast<const unsigned char*>("bytes"), 5);
            }
        }
    };
    std::vector<std::thread> running;
    for (int thread = 0; thread < 4; ++thread) running.emplace_back(work, thread);
    for (std::thread& each : running) each.join();
    EXPECT_GT(accepted, 0);
}

TEST(BxTraceThreads, AMessageThatCannotGetTheMutexInTimeIsDropped) {
    FreshTrace trace;
    BxTrace_Trace00("before");
    std::atomic<bool> held{false};
    std::atomic<bool> done{false};
    std::thread holder([&trace, &held, &done] {
        const qel::trace::MessageLog::Lock lock(trace.system().log());
        held = true;
        while (!done) qel::platform::sleepMilliseconds(1);
    });
    while (!held) qel::platform::sleepMilliseconds(1);
    const std::uint32_t start = qel::platform::tickCount();
    EXPECT_EQ(BxTrace_Trace00("dropped"), -1);
    const std::uint32_t waited = qel::platform::tickCount() - start;
    EXPECT_GE(waited, 190U);
    EXPECT_LT(waited, 5000U);
    EXPECT_EQ(BxTrace_BackupLogFile(), -1);
    done = true;
    holder.join();
    EXPECT_EQ(BxTrace_Trace00("after"), 0);
    EXPECT_EQ(trace.messages(), (std::vector<std::string>{"before", "after"}));
}

// Where the system gives a mutex back whose thread has ended, the next message is written in full.
TEST(BxTraceThreads, AThreadThatEndsInsideItsMessageBlocksNoOther) {
    if (qel::platform::kPathSeparator != '\\') GTEST_SKIP() << "such a mutex stays locked";
    FreshTrace trace;
    BxTrace_Trace00("before");
    qel::trace::MessageLog& log = trace.system().log();
    std::thread([&log] {
        static const auto* neverReleased = new qel::trace::MessageLog::Lock(log);
        ASSERT_TRUE(*neverReleased);
    }).join();
    EXPECT_EQ(BxTrace_Trace00("two\nlines"), 0);
    EXPECT_FALSE(log.heldHere());
    EXPECT_EQ(trace.messages(), (std::vector<std::string>{"before", "two", "lines"}));
}

// A log whose lock another holds is not rotated under the other's hands; it is written to where
// that cannot harm the other's line, else the message is dropped.
TEST(BxTraceThreads, ALockedLogIsNotRotated) {
    const FreshTrace trace({"MaxFileSize=1"});
    // The size is examined from the 501st message on.
    std::vector<std::string> expected(500, "before");
    for (const std::string& text : expected) BxTrace_Trace00(text.c_str());
    std::atomic<bool> held{false};
    std::atomic<bool> done{false};
    std::thread holder([&trace, &held, &done] {
        qel::platform::PathLock lock;
        EXPECT_EQ(lock.acquire(trace.file("trace.log").c_str(), 1000),
                  qel::platform::LockResult::kLocked);
        held = true;
        while (!done) qel::platform::sleepMilliseconds(1);
    });
    while (!held) qel::platform::sleepMilliseconds(1);
    if (qel::platform::appendsAreAtomic()) expected.emplace_back("appended");
    EXPECT_EQ(BxTrace_Trace00("appended"), expected.size() == 501 ? 0 : -1);
    EXPECT_EQ(BxTrace_MusicalBackups(nullptr, 3), -1);
    EXPECT_EQ(trace.messages(), expected);
    done = true;
    holder.join();
    EXPECT_EQ(BxTrace_Trace00("rotated"), 0);
    EXPECT_EQ(trace.messages(), std::vector<std::string>{"rotated"});
    EXPECT_EQ(trace.messages("trace.bk0"), expected);
}

}  // namespace
