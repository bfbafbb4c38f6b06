// A process that is killed at every system call of a rotation, of a message and of a change of the
// options: whatever it had been told was written is there, and the others go on at once.
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "QelUtility/BxTrace.h"
#include "support/TempDir.h"
#include "trace/FreshTrace.h"

namespace {

namespace fs = std::filesystem;
using qel::test::FreshTrace;
using qel::test::writeFile;

using Options = std::vector<std::string>;

// With all options there, so that a load has none to fill in.
Options filledIn(Options options) {
    for (const char* name :
         {"MaxFileSize=5000000", "MaxBackupCount=3", "KeepLogFiles=1", "VTraceVerbosity=0",
          "TracingOptions=1", "LogManagerLevel=0", "LogManagerDetail=0",
          "RetroactiveTracingBufferSize=0", "SeparateLogForEachProcess=0", "KeepLogFileOpen=0"})
        options.emplace_back(name);
    return options;
}

enum class Ended { kItself, kKilled, kUntraceable };

// Runs `work` in a child and kills that at its `stop`-th halt, before or after a system call.
// `told` is what the child wrote to its pipe.
Ended runUntil(int stop, const std::function<void(int pipe)>& work, std::string& told) {
    int ends[2];
    if (pipe(ends) != 0) return Ended::kUntraceable;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(9);
        std::raise(SIGSTOP);
        work(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    int status = 0;
    Ended ended = Ended::kItself;
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) ended = Ended::kUntraceable;
    for (int halt = 0; ended == Ended::kItself; ++halt) {
        if (halt == stop) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            ended = Ended::kKilled;
            break;
        }
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
        if (WIFEXITED(status) || WIFSIGNALED(status)) break;
    }
    told.clear();
    char block[4096];
    for (ssize_t count = 0; (count = read(ends[0], block, sizeof block)) > 0;)
        told.append(block, static_cast<std::size_t>(count));
    close(ends[0]);
    EXPECT_TRUE(ended != Ended::kItself || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
    return ended;
}

void tell(int pipe, const std::string& text) {
    static_cast<void>(!write(pipe, (text + "\n").c_str(), text.size() + 1));
}

// How often a line with exactly this text is in the folder's logs. Every line there is whole.
int linesOf(const FreshTrace& trace, const std::string& wanted) {
    int times = 0;
    for (const std::string& name : trace.files()) {
        if (name.rfind("trace", 0) != 0) continue;
        for (const std::string& line : trace.messages(name)) {
            const bool whole = line.empty() || line.back() == '!' ||
                               line.rfind("Process ID", 0) == 0 || line.rfind(" -- ", 0) == 0;
            EXPECT_TRUE(whole) << name << ": " << line;
            times += line == wanted ? 1 : 0;
        }
    }
    return times;
}

// Calls `attempt` for stop 0, 1, ... until the child ends by itself, after more than `least` kills.
void killEverywhere(int least, const std::function<Ended(int stop)>& attempt) {
    Ended ended = Ended::kKilled;
    int stop = 0;
    for (; ended == Ended::kKilled && !testing::Test::HasFailure(); ++stop) {
        SCOPED_TRACE("killed at halt " + std::to_string(stop));
        ASSERT_LT(stop, 5000) << "it never ends";
        ended = attempt(stop);
    }
    if (ended == Ended::kUntraceable) GTEST_SKIP() << "processes may not be traced here";
    EXPECT_GT(stop, least);
    std::printf("killed at %d places\n", stop - 1);
}

TEST(Interrupted, ARotationLosesTheOldestBackupAlone) {
    killEverywhere(
        20,
        [](int stop) {
            const FreshTrace trace(filledIn({}));
            BxTrace_Trace00("live!");
            for (const char* name : {"bk0", "bk1", "bk2"})
                writeFile(trace.file(std::string("trace.") + name), std::string(name) + "!\n");
            std::string told;
            const Ended ended = runUntil(
                stop, [](int) { BxTrace_MusicalBackups(nullptr, 3); }, told);
            if (ended == Ended::kUntraceable) return ended;
            for (const char* text : {"live!", "bk0!", "bk1!"}) EXPECT_EQ(linesOf(trace, text), 1);
            EXPECT_LE(linesOf(trace, "bk2!"), ended == Ended::kItself ? 0 : 1);
            // Nobody has to wait for the dead, and what it left half done is no obstacle.
            EXPECT_EQ(BxTrace_Trace00("after!"), 0);
            EXPECT_EQ(BxTrace_MusicalBackups(nullptr, 3), 0);
            EXPECT_EQ(linesOf(trace, "after!"), 1);
            EXPECT_EQ(linesOf(trace, "live!"), 1);
            return ended;
        });
}

// Messages of a child that rotates by size on the way; it tells which of them were accepted. The
// parent writes `before` messages first: an ordinary log's size is examined at the 501st.
void messagesInterrupted(const Options& options, int before) {
    killEverywhere(
        50,
        [&options, before](int stop) {
            const FreshTrace trace(filledIn(options));
            BxTrace_GetTracingOptions();
            for (int i = 0; i < before; ++i) BxTrace_Trace00("before!");
            std::string told;
            const Ended ended = runUntil(
                stop,
                [](int pipe) {
                    for (int i = 0; i < 4; ++i) {
                        const std::string text =
                            "message " + std::to_string(i) + std::string(60, 'p') + "!";
                        if (BxTrace_Trace00(text.c_str()) == 0) tell(pipe, text);
                    }
                },
                told);
            if (ended == Ended::kUntraceable) return ended;
            EXPECT_EQ(BxTrace_Trace00("after!"), 0);
            std::istringstream lines(told);
            int count = 0;
            for (std::string line; std::getline(lines, line); ++count)
                EXPECT_EQ(linesOf(trace, line), 1);
            EXPECT_EQ(linesOf(trace, "after!"), 1);
            if (ended == Ended::kItself) {
                EXPECT_EQ(count, 4);
                EXPECT_GE(trace.files().size(), 4U) << "it was rotated";
            }
            return ended;
        });
}

TEST(Interrupted, MessagesThatWereAcceptedStayInTheLog) {
    messagesInterrupted({"MaxFileSize=150", "MaxBackupCount=9"}, 499);
}

TEST(Interrupted, MessagesOfALogThatIsKeptOpenAndFlushedStayToo) {
    messagesInterrupted(
        {"MaxFileSize=150", "MaxBackupCount=9", "SeparateLogForEachProcess=1", "KeepLogFileOpen=2"},
        0);
}

TEST(Interrupted, OptionsAreTheOldOrTheNewOnes) {
    killEverywhere(
        10,
        [](int stop) {
            const FreshTrace trace(filledIn({"VTraceVerbosity=3", "Own=text"}));
            BxTrace_GetTracingOptions();
            const std::string before = trace.text("BxOptions.opt");
            std::string after = before;
            after.replace(after.find("VTraceVerbosity=3"), 17, "VTraceVerbosity=9");
            std::string told;
            const Ended ended = runUntil(
                stop, [](int) { BxTrace_SetOptionValue("LogSettings", "VTraceVerbosity", 9); },
                told);
            if (ended == Ended::kUntraceable) return ended;
            const std::string now = trace.text("BxOptions.opt");
            EXPECT_TRUE(now == after || (ended == Ended::kKilled && now == before)) << now;
            BxTrace_SetOptionValue("LogSettings", "VTraceVerbosity", 9);
            EXPECT_EQ(trace.text("BxOptions.opt"), after);
            return ended;
        });
}

}  // namespace
