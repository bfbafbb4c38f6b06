// Forks in the middle of what other threads trace: the child traces too, and nothing that waits in
// memory is written by both.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "QelUtility/BxTrace.h"
#include "trace/FreshTrace.h"

namespace {

using qel::test::FreshTrace;

// What a child does; it ends without what belongs to the test program.
[[noreturn]] void traceInChild(FreshTrace& trace, int number) {
    alarm(10);
    const bool written = BxTrace_Tracef("child %d\n", number) == 0;
    BxTrace_Error("S", number, 0, 2001);
    trace.system().log().flushKept();
    std::fflush(nullptr);
    _exit(written ? 0 : 1);
}

TEST(Forks, AChildTracesAndWritesNothingOfItsParent) {
    const std::vector<std::vector<std::string>> settings{
        {},
        {"SeparateLogForEachProcess=1", "KeepLogFileOpen=1"},
        {"RetroactiveTracingBufferSize=100000"}};
    for (const std::vector<std::string>& options : settings) {
        FreshTrace trace(options);
        std::atomic<bool> done{false};
        std::vector<std::thread> running;
        for (int thread = 0; thread < 3; ++thread)
            running.emplace_back([&done, thread] {
                for (int i = 0; !done; ++i) {
                    BxTrace_Tracef("thread %d line %d.\n", thread, i);
                    if (i % 8 == 0) BxTrace_SetOptionValue("Other", "Key", i);
                }
            });
        constexpr int kChildren = 60;
        int worked = 0;
        for (int child = 0; child < kChildren; ++child) {
            const pid_t id = fork();
            if (id == 0) traceInChild(trace, child);
            int status = -1;
            if (waitpid(id, &status, 0) == id && status == 0) ++worked;
            if (worked <= child) break;  // the others would take as long
        }
        done = true;
        for (std::thread& each : running) each.join();
        EXPECT_EQ(worked, kChildren);
        BxTrace_Error("S", 1, 1, 2001);
        trace.restart();
        std::map<std::string, int> lines;
        for (const std::string& name : trace.files())
            if (name.rfind("trace", 0) == 0)
                for (const std::string& line : trace.messages(name)) ++lines[line];
        // A line is cut in two where one retroactive buffer ends; only whole ones are counted.
        for (const auto& [line, times] : lines)
            if (line.rfind("thread ", 0) == 0 && line.back() == '.') ASSERT_EQ(times, 1) << line;
        for (int child = 0; child < kChildren; ++child)
            EXPECT_EQ(lines["child " + std::to_string(child)], 1);
    }
}

}  // namespace
