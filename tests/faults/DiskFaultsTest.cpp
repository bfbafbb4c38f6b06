// Files that cannot be written, or not to their end, or that go away or are replaced: what was
// accepted is there, what was refused is said to be, and the next call finds its way back.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "QelUtility/BxTrace.h"
#include "support/TempDir.h"
#include "trace/BxFileUtilInternal.h"
#include "trace/FreshTrace.h"

namespace {

namespace fs = std::filesystem;
using qel::test::FreshTrace;
using qel::test::writeFile;

// A disk that is full for every file of so many bytes.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limited{bytes, old_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit old_{};
    void (*handler_)(int);
};

// A directory that may be read but not written, for root too.
class ReadOnlyDirectory {
  public:
    explicit ReadOnlyDirectory(fs::path path) : path_(std::move(path)), root_(geteuid() == 0) {
        chmod(path_.c_str(), 0555);
        // Files that are there stay writable, for whoever.
        for (const auto& entry : fs::directory_iterator(path_)) chmod(entry.path().c_str(), 0666);
        if (root_) limited_ = seteuid(65534) == 0;
    }
    ~ReadOnlyDirectory() {
        if (root_ && limited_) limited_ = seteuid(0) != 0;
        chmod(path_.c_str(), 0755);
    }
    ReadOnlyDirectory(const ReadOnlyDirectory&) = delete;
    ReadOnlyDirectory& operator=(const ReadOnlyDirectory&) = delete;

    [[nodiscard]] bool works() const { return access(path_.c_str(), R_OK) == 0 && geteuid() != 0; }

  private:
    fs::path path_;
    bool root_;
    bool limited_ = false;
};

std::string message(int number) {
    return "message " + std::to_string(number) + " " + std::string(80, 'p') + "!";
}

int timesIn(const std::string& text, const std::string& wanted) {
    int times = 0;
    for (std::size_t at = text.find(wanted); at != std::string::npos;
         at = text.find(wanted, at + 1))
        ++times;
    return times;
}

// Everything that is in the folder's logs.
std::string allLogs(const FreshTrace& trace) {
    std::string text;
    for (const std::string& name : trace.files())
        if (name.rfind("trace", 0) == 0) text += trace.text(name);
    return text;
}

// Traces `count` messages; returns which were accepted.
std::vector<bool> traceMessages(int first, int count) {
    std::vector<bool> accepted;
    for (int i = first; i < first + count; ++i)
        accepted.push_back(BxTrace_Trace00(message(i).c_str()) == 0);
    return accepted;
}

void expectAccepted(const FreshTrace& trace, int first, const std::vector<bool>& accepted) {
    const std::string text = allLogs(trace);
    for (std::size_t i = 0; i < accepted.size(); ++i) {
        const int number = first + static_cast<int>(i);
        EXPECT_EQ(timesIn(text, ": " + message(number) + "\n"), accepted[i] ? 1 : 0) << number;
    }
}

// Opened for each message, and kept open with each way of buffering.
TEST(DiskFaults, AFullDiskLosesWhatItRefusesAndNothingElse) {
    for (const char* open : {"0", "1", "2", "5"}) {
        SCOPED_TRACE(open);
        FreshTrace trace({"SeparateLogForEachProcess=1", std::string("KeepLogFileOpen=") + open});
        FreshTrace::setTicks(1000);  // stands still: what is looked up once in a tick is not
        BxTrace_GetTracingOptions();
        std::vector<bool> accepted;
        {
            const FullDisk disk(20000);
            accepted = traceMessages(0, 600);
        }
        EXPECT_GT(std::count(accepted.begin(), accepted.end(), false), 50);
        EXPECT_GT(std::count(accepted.begin(), accepted.end(), true), 50);
        const std::vector<bool> later = traceMessages(600, 10);
        EXPECT_EQ(std::count(later.begin(), later.end(), true), 10);
        accepted.insert(accepted.end(), later.begin(), later.end());
        trace.restart();
        // Each on a line of its own, behind a prefix.
        std::map<std::string, int> lines;
        for (const std::string& name : trace.files())
            if (name.rfind("trace", 0) == 0)
                for (const std::string& line : trace.messages(name)) ++lines[line];
        for (std::size_t i = 0; i < accepted.size(); ++i)
            EXPECT_EQ(lines[message(static_cast<int>(i))], accepted[i] ? 1 : 0) << i;
    }
}

// Whoever wrote the part of a line: the next message does not go on with it.
TEST(DiskFaults, ACutLineIsEndedByTheNextMessage) {
    for (const char* open : {"0", "1"}) {
        FreshTrace trace({"SeparateLogForEachProcess=1", std::string("KeepLogFileOpen=") + open});
        BxTrace_GetTracingOptions();
        writeFile(BxTrace_GetLogFilePath(), "[0001] a line that was cut");
        EXPECT_EQ(traceMessages(0, 1), std::vector<bool>{true});
        trace.restart();
        EXPECT_EQ(allLogs(trace).rfind("[0001] a line that was cut\n[", 0), 0U) << allLogs(trace);
    }
}

TEST(DiskFaults, AFullDiskLeavesSettingsAsTheyWere) {
    const FreshTrace trace({"VTraceVerbosity=3", "Own=" + std::string(3000, 'x')});
    BxTrace_GetTracingOptions();
    const std::string before = trace.text("BxOptions.opt");
    const std::vector<std::string> files = trace.files();
    {
        const FullDisk disk(1000);
        BxTrace_SetOptionValue("LogSettings", "VTraceVerbosity", 9);
        int value = 7;
        BxTrace_GetOptionValue("LogSettings", "VTraceVerbosity", value);
        EXPECT_EQ(value, 3);
        value = 7;
        BxTrace_GetOptionValue("LogSettings", "Missing", value);
        EXPECT_EQ(value, 7);
    }
    EXPECT_EQ(trace.text("BxOptions.opt"), before);
    EXPECT_EQ(trace.files(), files) << "no temporary file is left";
    BxTrace_SetOptionValue("LogSettings", "VTraceVerbosity", 9);
    EXPECT_NE(trace.text("BxOptions.opt").find("VTraceVerbosity=9"), std::string::npos);
}

TEST(DiskFaults, ADirectoryThatBecomesReadOnlyStopsRotationAlone) {
    const FreshTrace trace({"MaxFileSize=2000", "MaxBackupCount=2"});
    std::vector<bool> accepted = traceMessages(0, 5);
    const std::string options = trace.text("BxOptions.opt");
    {
        const ReadOnlyDirectory directory(fs::path(trace.file("x")).parent_path());
        if (!directory.works()) GTEST_SKIP() << "this user may write everywhere";
        // Past the size at which it would be rotated, and past the test for that.
        const std::vector<bool> during = traceMessages(5, 600);
        accepted.insert(accepted.end(), during.begin(), during.end());
        EXPECT_EQ(BxTrace_MusicalBackups(nullptr, 2), -1);
        BxTrace_SetOptionValue("LogSettings", "MaxBackupCount", 9);
    }
    EXPECT_EQ(trace.text("BxOptions.opt"), options);
    EXPECT_EQ(std::count(accepted.begin(), accepted.end(), false), 0);
    expectAccepted(trace, 0, accepted);
    EXPECT_EQ(BxTrace_MusicalBackups(nullptr, 2), 0);
    expectAccepted(trace, 0, accepted);
}

TEST(DiskFaults, APipeHasNoSize) {
    std::FILE* const pipe = popen("true", "r");
    EXPECT_EQ(BxFile_GetFileSize(pipe), ULONG_MAX);
    pclose(pipe);
}

TEST(DiskFaults, FilesThatVanishAreMadeAnew) {
    const FreshTrace trace({"MaxFileSize=5000000", "VTraceVerbosity=4"});
    FreshTrace::setTicks(1000);
    EXPECT_EQ(traceMessages(0, 1), std::vector<bool>{true});
    // The log, then the options, which come back with the values in use.
    fs::remove(trace.file("trace.log"));
    fs::remove(trace.file("BxOptions.opt"));
    FreshTrace::setTicks(100000);
    EXPECT_EQ(traceMessages(1, 1), std::vector<bool>{true});
    expectAccepted(trace, 1, {true});
    EXPECT_EQ(trace.settings().verbosity, 4);
    EXPECT_NE(trace.text("BxOptions.opt").find("VTraceVerbosity=4"), std::string::npos);
    // The whole folder, as when a drive is taken out and put back.
    const fs::path folder = fs::path(trace.file("x")).parent_path();
    const fs::path away = folder.string() + ".away";
    fs::rename(folder, away);
    FreshTrace::setTicks(200000);
    EXPECT_EQ(traceMessages(2, 2), (std::vector<bool>{false, false}));
    EXPECT_EQ(BxTrace_MusicalBackups(nullptr, 2), 0) << "nothing to rotate";
    fs::rename(away, folder);
    EXPECT_EQ(traceMessages(4, 1), std::vector<bool>{true});
    expectAccepted(trace, 1, {true, false, false, true});
    EXPECT_NE(trace.text().find("The previous 2 logging attempts"), std::string::npos);
}

}  // namespace
