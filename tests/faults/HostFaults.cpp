// The trace, files and the host's settings without memory: a message is in the log whole or is
// dropped, a settings file is as it was or as it should be, and the next call works.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <vector>

#include "QelUtility/BxFileUtil.h"
#include "QelUtility/BxHost.h"
#include "QelUtility/BxTrace.h"
#include "QelUtility/IRMonitorManager.h"
#include "faults/Exhaustion.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "support/Environment.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"
#include "trace/BxFileUtilInternal.h"
#include "trace/TraceSystem.h"

namespace qel::test {

namespace {

namespace fs = std::filesystem;

// One folder for all attempts.
TempDir& folder() {
    static TempDir dir;
    return dir;
}

bool profileDirectory(char* buffer, unsigned long size) {
    return std::snprintf(buffer, size, "%s", folder().path().c_str()) > 0;
}

// All options, so that a load has none to fill in.
constexpr char kFilledIn[] =
    "MaxFileSize=5000000\nMaxBackupCount=3\nKeepLogFiles=1\nVTraceVerbosity=0\nTracingOptions=1\n"
    "LogManagerLevel=0\nLogManagerDetail=0\nRetroactiveTracingBufferSize=0\n"
    "SeparateLogForEachProcess=0\nKeepLogFileOpen=0\n";

std::uint32_t laterBy = 0;  // milliseconds by which the traces' clock is ahead of the system's

std::uint32_t ticks() {
    return platform::tickCount() + laterBy;
}

// A trace as it is when a process starts, its folder empty but for the options; the first option
// of a name counts. It is in use until it is destroyed, which closes its log.
class StartedTrace {
  public:
    explicit StartedTrace(const std::string& options, const char* more = kFilledIn) {
        for (const auto& entry : fs::directory_iterator(folder().path())) fs::remove(entry);
        setEnvironment("BX_ERR_LOG_FILE_PATH", folder().file("trace.log"));
        setEnvironment("BX_OPTIONS_FILE_PATH", "");
        writeFile(folder().file("BxOptions.opt"), "[LogSettings]\n" + options + more);
        trace::installTraceSystem(&system_);
        BxHost_SetProfileDirectorySource(&profileDirectory);
    }
    ~StartedTrace() {
        trace::installTraceSystem(nullptr);
        BxHost_SetProfileDirectorySource(nullptr);
        setEnvironment("BX_ERR_LOG_FILE_PATH", traceLogPath());
        setEnvironment("BX_OPTIONS_FILE_PATH", (fs::path(traceDirectory()) / "trace.opt").string());
    }
    StartedTrace(const StartedTrace&) = delete;
    StartedTrace& operator=(const StartedTrace&) = delete;

  private:
    trace::TraceSystem system_{&ticks};
};

// The lines of a file in the folder, without prefixes, that hold `word`; a line is whole when it
// ends in "!".
std::vector<std::string> linesWith(const std::string& word, const std::string& name = "trace.log") {
    std::istringstream in(readFile(folder().file(name)));
    std::vector<std::string> found;
    for (std::string line; std::getline(in, line);) {
        if (line.find(word) == std::string::npos) continue;
        EXPECT_EQ(line.back(), '!') << line;
        found.push_back(withoutPrefix(line));
    }
    return found;
}

// Each file in the folder is one that belongs there: no temporary one is left behind. A lock that
// is a file of its own stays where the disk fails under it; whoever locks next removes it.
void expectNoStrangers() {
    const std::vector<std::string> known = {
        "trace.bk0",    "BxOptions.opt",    "zqoptcfg.cfg",      "SyncML.log",
        "registry.ini", "SyncML_Input.log", "SyncML_Output.log", ".qelutility.lock"};
    for (const auto& entry : fs::directory_iterator(folder().path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(std::find(known.begin(), known.end(), name) != known.end() ||
                    name.rfind("trace", 0) == 0)
            << name;
    }
}

// A started trace. The call logs the word "during", with the result 0 when that was accepted;
// "before" is logged ahead of it and "after" behind.
struct Traced {
    std::optional<StartedTrace> started;
    const char* logName = nullptr;  // where "during" goes; null: the main log
    int result = 0;

    Outcome left(const Attempt&) {
        BxTrace_Trace00("after!");
        BxTrace_FlushRetroBuffers();
        const std::string mainLog = fs::path(BxTrace_GetLogFilePath()).filename().string();
        started.reset();
        expectNoStrangers();
        const auto times = [&](const std::string& word) { return linesWith(word, mainLog).size(); };
        const std::size_t written =
            logName == nullptr ? times("during") : linesWith("during", logName).size();
        return seen(together(result == 0, written), "before " + std::to_string(times("before")),
                    "after " + std::to_string(times("after")),
                    "saved " + std::to_string(linesWith("before", "trace.bk0").size()),
                    readFile(folder().file("BxOptions.opt")).substr(0, 61));
    }
};

int logged() {
    return BxTrace_Trace00("during!");
}

// Logs of the process's own, kept open.
constexpr char kKeptOpen[] = "SeparateLogForEachProcess=1\nKeepLogFileOpen=1\n";
constexpr char kFlushed[] = "SeparateLogForEachProcess=1\nKeepLogFileOpen=2\n";
constexpr char kRetroactive[] = "RetroactiveTracingBufferSize=4096\n";
constexpr char kOfTheUser[] = "MaxFileSize=1234567\nVTraceVerbosity=7\nOwn=text\n";

Operation onTrace(const char* name, const char* options, int (*log)(),
                  const Outcome& starved = {"0 0"}, void (*prepare)(Traced& made) = nullptr) {
    return {name, starved,
            [=](Attempt& attempt) {
                Traced made;
                made.started.emplace(options);
                BxTrace_Trace00("before!");
                if (prepare != nullptr) prepare(made);
                attempt.armed([&] { made.result = log(); });
                return made.left(attempt);
            }};
}

const Operation kTraces[] = {
    onTrace("Trace", "", logged),
    onTrace("Tracef", "", [] { return BxTrace_Tracef("%s %d during!", "text", 12); }),
    onTrace(
        "SyncML", "TracingOptions=7\n",
        [] { return BxTrace_OTrace_TS(BXTRACE_SYNCML_INPUT, "during!"); }, {"0 0"},
        [](Traced& made) { made.logName = "SyncML_Input.log"; }),
    onTrace("KeptOpen", kKeptOpen, [] { return BxTrace_VTrace(0, "during!"); }),
    onTrace("KeptOpenAndFlushed", kFlushed, logged),
    onTrace("KeptOpenAndTakenAway", kFlushed, logged, {"0 0"},
            [](Traced&) { fs::rename(BxTrace_GetLogFilePath(), folder().file("trace.bk0")); }),
    onTrace("Retroactive", kRetroactive, logged),
    // What there was no memory to write out is still there; what the disk refused is not.
    onTrace("RetroactiveFlush", kRetroactive,
            [] {
                logged();
                BxTrace_FlushRetroBuffers();
                return 0;
            },
            {})
        .orBroken({"1 0", "before 0"}),
    onTrace("WriteHex", "TracingOptions=7\n",
            [] {
                BxTrace_WriteHex(1, reinterpret_cast<const unsigned char*>("abc"), 3);
                return logged();
            }),
    // A log that cannot be looked at stays, which the result says where it is known.
    onTrace("Backups", "MaxBackupCount=1\nKeepLogFiles=0\n", BxTrace_ErrorLogDelete, {})
        .orBroken({"0 0", "before 1", "saved 0"}),
    // What the user has set is never replaced by a default.
    on<Traced>(
        "FirstLoad", {"1 0"}, [](auto&) { logged(); },
        [](auto& made) { made.started.emplace(kOfTheUser, ""); }),
    on<Traced>(
        "FirstLoadOfOwnLog", {"1 0"}, [](auto&) { logged(); },
        [](auto& made) { made.started.emplace(kFlushed); }),
    {"SyncMLAfterAStarvedLoad",
     {},
     [](Attempt& attempt) {
         // The first SyncML message puts the log's saved name back.
         const StartedTrace started("TracingOptions=7\n");
         attempt.armed([] { BxTrace_GetTracingOptions(); });
         BxTrace_GetTracingOptions();
         // An option that could not be read is read after a minute.
         laterBy += 60000;
         BxTrace_OTrace_TS(BXTRACE_SYNCML_INPUT, "document!");
         BxTrace_Trace00("after!");
         return seen(linesWith("document", "SyncML_Input.log").size(), linesWith("after").size());
     }},
    {"TracefLong",
     {"0", "1023"},
     [](Attempt& attempt) {
         // A long text is cut where there is no memory for it.
         const StartedTrace started("");
         const std::string text(3000, 'x');
         attempt.armed([&] { BxTrace_Tracef("%s", text.c_str()); });
         BxTrace_Trace00("after!");
         const std::string log = readFile(folder().file("trace.log"));
         return seen(std::count(log.begin(), log.end(), 'x'), "after", linesWith("after").size());
     }},
    {"Options",
     {"1", "A=12\nB=34\nC=ff\n"},
     [](Attempt& attempt) {
         const StartedTrace started("A=12\nB=34\nC=ff\n");
         BxTrace_GetTracingOptions();
         int a = 1;
         int c = 1;
         int added = 5;
         attempt.armed([&] {
             BxTrace_GetOptionValue("LogSettings", "A", a);
             BxTrace_GetHexOptionValue("LogSettings", "C", c);
             BxTrace_SetOptionValue("LogSettings", "B", 56);
             BxTrace_GetOptionValue("LogSettings", "D", added);
         });
         expectNoStrangers();
         return seen(a, c, added, readFile(folder().file("BxOptions.opt")).substr(14, 15));
     }},
    {"Places",
     {"0 0"},
     [](Attempt& attempt) {
         char state[512] = "";
         char here[512] = "";
         bool known[2] = {};
         attempt.armed([&] {
             known[0] = platform::userStateDirectory(state, sizeof state);
             known[1] = platform::currentDirectory(here, sizeof here);
         });
         return seen(together(known[0], state[0] != '\0'), together(known[1], here[0] != '\0'));
     }},
    {"Paths",
     {""},
     [](Attempt& attempt) {
         const StartedTrace started("");
         std::string run;
         run.reserve(300);
         attempt.armed([&] {
             run = BxTrace_GetRunDirWithTrailingBackslash();
             BxTrace_GetTracingOptions();
         });
         return seen(run, "in " + std::string(BxTrace_GetRunDirWithTrailingBackslash()),
                     BxTrace_GetOptionsFilePath());
     }},
};
INSTANTIATE_TEST_SUITE_P(Traces, Exhaustion, testing::ValuesIn(kTraces), operationName);

const Operation kFiles[] = {
    {"UserLog",
     {"0 0"},
     [](Attempt& attempt) {
         const StartedTrace started("");
         WriteToUserLog("before!");
         attempt.armed([&] { WriteToUserLog("during!"); });
         WriteToUserLog("after!");
         const std::string log = readFile(folder().file("SyncML.log"));
         const auto has = [&](const char* text) { return log.find(text) != std::string::npos; };
         EXPECT_TRUE(has("before! \n") && has("after! \n"));
         return seen(together(has("during"), has("during! \n")));
     }},
    {"LoadFile",
     {"2001 0 none", "2005 0 none", "2007 0 none"},
     [](Attempt& attempt) {
         const StartedTrace started("");
         const std::string path = folder().file("SyncML.log");
         writeFile(path, "content");
         unsigned char* data = nullptr;
         unsigned long size = 99;
         int result = -2;
         attempt.armed([&] { result = BxFile_LoadFile(path.c_str(), &data, &size); });
         const std::string is = together(result, size, data == nullptr ? "none" : "data");
         std::free(data);
         return seen(is);
     }},
    {"CopyFile",
     {"not copied"},
     [](Attempt& attempt) {
         const StartedTrace started("");
         const std::string from = folder().file("SyncML.log");
         const std::string to = folder().file("trace.bk0");
         writeFile(from, "content");
         int result = -2;
         attempt.armed([&] { result = BxFile_CopyFile(from.c_str(), to.c_str(), false); });
         const bool copied = readFile(to) == "content";
         EXPECT_EQ(readFile(from), "content");
         return seen(result != 0 && !copied ? "not copied" : together(result, copied));
     }},
    {"Transport",
     {"0"},
     [](Attempt& attempt) {
         const StartedTrace started("");
         IRMonitorManager* manager = nullptr;
         attempt.armed([&] {
             manager = IRMonitorManager::getManager();
             if (manager != nullptr) manager->selectIR();
         });
         expectNoStrangers();
         manager = IRMonitorManager::getManager();
         if (manager == nullptr) return seen(false);
         manager->selectIR();
         const bool selected = manager->isIRSelected();
         manager->Release();
         return seen(selected);
     }},
};
INSTANTIATE_TEST_SUITE_P(Files, Exhaustion, testing::ValuesIn(kFiles), operationName);

}  // namespace

}  // namespace qel::test
