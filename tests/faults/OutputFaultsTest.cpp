// qelutil convert when it is ended, or its disk is full, while it writes: whole results or none,
// nothing left beside them, and an end that says so.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/Contains.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

namespace fs = std::filesystem;

const std::string kHead = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\n";

std::string calendar(int entries, const std::string& summary = "One") {
    std::string text = kHead;
    for (int i = 0; i < entries; ++i)
        text += "BEGIN:VEVENT\r\nUID:" + std::to_string(i) + "\r\nSUMMARY:" + summary +
                "\r\nDTSTART:20050615T083000Z\r\nEND:VEVENT\r\n";
    return text + "END:VCALENDAR\r\n";
}

class OutputFaults : public testing::Test {
  protected:
    // Starts qelutil; `prepare` runs in it before.
    [[nodiscard]] pid_t start(std::vector<std::string> words,
                              const std::function<void()>& prepare = {}) const {
        const std::string err = state_.file("err");
        words.insert(words.begin(), QELUTIL_PROGRAM);
        std::vector<char*> pointers;
        for (std::string& each : words) pointers.push_back(each.data());
        pointers.push_back(nullptr);
        const pid_t child = fork();
        if (child != 0) return child;
        const int error = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(error, 2);
        // Some of them are ignored under nohup or in a shell's background.
        for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
            signal(number, SIG_DFL);
        if (prepare) prepare();
        execv(pointers[0], pointers.data());
        _exit(127);
    }

    // As a shell shows it.
    static int statusOf(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    [[nodiscard]] std::set<std::string> files(const std::string& folder) const {
        std::set<std::string> names;
        for (const auto& each : fs::directory_iterator(state_.path() / folder))
            names.insert(each.path().filename().string());
        return names;
    }

    [[nodiscard]] std::string messages() const { return readFile(state_.file("err")); }

    TempDir state_;
};

TEST_F(OutputFaults, ASignalLeavesNothingUnfinished) {
    fs::create_directory(state_.path() / "out");
    const std::string pipe = state_.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    writeFile(state_.file("out/all.ics"), "as it was");
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const pid_t child = start({"convert", pipe, "-o", state_.file("out/all.ics"), "--report",
                                   state_.file("out/report.html")});
        const int writer = open(pipe.c_str(), O_WRONLY);
        const std::string half = calendar(5000);
        ASSERT_GT(write(writer, half.data(), half.size() - 100), 0);
        // It has opened its files before it read the pipe.
        EXPECT_GT(files("out").size(), 1U);
        kill(child, number);
        EXPECT_EQ(statusOf(child), 128 + number);
        close(writer);
        EXPECT_EQ(files("out"), std::set<std::string>{"all.ics"});
        EXPECT_EQ(readFile(state_.file("out/all.ics")), "as it was");
    }
}

TEST_F(OutputFaults, AClosedPipeEndsItInSilence) {
    writeFile(state_.file("a.vcs"), calendar(5000));
    const pid_t child = start({"convert", state_.file("a.vcs")}, [] {
        int ends[2];
        if (pipe(ends) != 0) _exit(127);
        dup2(ends[1], 1);
        close(ends[0]);
    });
    EXPECT_EQ(statusOf(child), 128 + SIGPIPE);
    EXPECT_EQ(messages(), "");
}

TEST_F(OutputFaults, AFullDiskCostsTheFileThatItWasFullFor) {
    const std::string out = state_.file("out");
    writeFile(state_.file("a.vcs"), calendar(1));
    writeFile(state_.file("b.vcs"), calendar(5000));
    writeFile(state_.file("c.vcs"), calendar(1));
    const auto full = [] {
        const rlimit limit{100000, 100000};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    std::vector<std::string> words = {"convert", state_.file("a.vcs"), state_.file("b.vcs"),
                                      state_.file("c.vcs")};
    words.insert(words.end(), {"-d", out, "--report", state_.file("report.html")});
    EXPECT_EQ(statusOf(start(words, full)), 1);
    EXPECT_EQ(files("out"), (std::set<std::string>{"a.ics", "c.ics"}));
    EXPECT_TRUE(contains(messages(), "out/b.ics: cannot be written: "));
    EXPECT_TRUE(contains(messages(), "3 files (1 left out)"));
    // A report that there is no room for is named; the results stand.
    words.back() = state_.file("no room.html");
    words.push_back("--overwrite");
    writeFile(state_.file("c.vcs"), calendar(30, std::string(4000, 'c')));
    EXPECT_EQ(statusOf(start(words, full)), 1);
    EXPECT_FALSE(fs::exists(state_.file("no room.html")));
    EXPECT_TRUE(contains(messages(), "no room.html: cannot be written: "));
    EXPECT_TRUE(contains(messages(), "3 files (2 left out)"));
    // One result for all: none, and the old one stays.
    writeFile(state_.file("all.ics"), "as it was");
    EXPECT_EQ(
        statusOf(start({"convert", state_.file("b.vcs"), "-o", state_.file("all.ics")}, full)), 1);
    EXPECT_EQ(readFile(state_.file("all.ics")), "as it was");
    for (const std::string& name : files(".")) EXPECT_FALSE(name.starts_with(".qelutil")) << name;
}

TEST_F(OutputFaults, ResultsAreAsOpenAsWhatTheyReplace) {
    writeFile(state_.file("a.vcs"), calendar(1));
    const std::string longest = state_.file(std::string(251, 'n') + ".ics");
    const std::string old = state_.file("old.ics");
    writeFile(old, "old");
    chmod(old.c_str(), 0640);
    fs::create_symlink("old.ics", state_.file("link.ics"));
    fs::create_symlink("new.ics", state_.file("dangling.ics"));
    const auto mask = [] { umask(027); };
    for (const char* name : {"link.ics", "dangling.ics"})
        EXPECT_EQ(statusOf(start({"convert", state_.file("a.vcs"), "-o", state_.file(name)}, mask)),
                  0)
            << messages();
    EXPECT_EQ(statusOf(start({"convert", state_.file("a.vcs"), "-o", longest}, mask)), 0)
        << messages();
    const auto modeOf = [](const std::string& name) {
        struct stat facts {};
        stat(name.c_str(), &facts);
        return facts.st_mode & 0777;
    };
    EXPECT_EQ(modeOf(old), 0640U);
    EXPECT_EQ(modeOf(longest), 0640U);
    EXPECT_TRUE(fs::is_symlink(state_.file("link.ics")));
    EXPECT_GT(fs::file_size(state_.file("new.ics")), 100U);
}

TEST_F(OutputFaults, PipesAndDevicesNeverHang) {
    fs::create_directories(state_.path() / "phone");
    fs::create_directories(state_.path() / "out");
    for (const char* name : {"phone/pipe.vcs", "phone/pipe.zip", "phone/pipe", "out/a.ics", "pipe"})
        ASSERT_EQ(mkfifo(state_.file(name).c_str(), 0600), 0);
    writeFile(state_.file("phone/a.vcs"), calendar(1));
    writeFile(state_.file("phone/b.vcs"), calendar(1));
    const auto alarmed = [] { alarm(20); };
    EXPECT_EQ(
        statusOf(start({"convert", state_.file("phone"), "-d", state_.file("out"), "--overwrite"},
                       alarmed)),
        1);
    EXPECT_TRUE(contains(messages(), "phone/pipe.vcs: is a pipe or a device"));
    EXPECT_TRUE(contains(messages(), "phone/pipe.zip: is a pipe or a device"));
    EXPECT_TRUE(contains(messages(), "out/a.ics: "));
    EXPECT_GT(fs::file_size(state_.file("out/b.ics")), 100U);
    // What is named as the output is written as it is.
    const std::string phone = state_.file("phone/a.vcs");
    EXPECT_EQ(statusOf(start({"convert", phone, "-o", "/dev/null"}, alarmed)), 0) << messages();
    const pid_t child = start({"convert", phone, "-o", state_.file("pipe")}, alarmed);
    EXPECT_TRUE(contains(readFile(state_.file("pipe")), "END:VCALENDAR"));
    EXPECT_EQ(statusOf(child), 0) << messages();
    const pid_t appended = start({"convert", phone, "-o", "/dev/stdout"}, [this] {
        dup2(open(state_.file("phone/b.vcs").c_str(), O_WRONLY | O_APPEND), 1);
    });
    EXPECT_EQ(statusOf(appended), 0) << messages();
    EXPECT_TRUE(readFile(state_.file("phone/b.vcs")).starts_with(kHead));
}

TEST_F(OutputFaults, TwoRunsToOneNameAreBothWhole) {
    writeFile(state_.file("a.vcs"), calendar(3000, "first"));
    writeFile(state_.file("b.vcs"), calendar(3000, "second"));
    const std::string out = state_.file("all.ics");
    for (int i = 0; i < 5; ++i) {
        const pid_t one = start({"convert", state_.file("a.vcs"), "-o", out});
        const pid_t two = start({"convert", state_.file("b.vcs"), "-o", out});
        EXPECT_EQ(statusOf(one), 0);
        EXPECT_EQ(statusOf(two), 0);
        const std::string text = readFile(out);
        EXPECT_NE(bool{contains(text, "SUMMARY:first")}, bool{contains(text, "SUMMARY:second")});
        EXPECT_TRUE(text.ends_with("END:VCALENDAR\r\n"));
    }
}

}  // namespace
}  // namespace qel::test
