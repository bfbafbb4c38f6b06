// The trace, files and the host's settings without memory: a message is in the log whole or is
// dropped, a settings file is as it was or as it should be, and the next call works.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "QelUtility/BxFileUtil.h"
#include "QelUtility/BxHost.h"
#include "QelUtility/BxTrace.h"
#include "QelUtility/IRMonitorManager.h"
#include "faults/Exhaustion.h"
#include "support/Environment.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"
#include "trace/BxFileUtilInternal.h"
#include "trace/BxTraceInternal.h"
#include "trace/TraceState.h"

namespace qel::test {

namespace {

namespace fs = std::filesystem;

// One folder for all attempts: paths that the trace has known are kept for the process's life.
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

// The trace as it is when a process starts, its folder empty but for the options; the first option
// of a name counts.
class StartedTrace {
  public:
    explicit StartedTrace(const std::string& options, const char* more = kFilledIn) {
        for (const auto& entry : fs::directory_iterator(folder().path())) fs::remove(entry);
        setEnvironment("BX_ERR_LOG_FILE_PATH", folder().file("trace.log"));
        setEnvironment("BX_OPTIONS_FILE_PATH", "");
        writeFile(folder().file("BxOptions.opt"), "[LogSettings]\n" + options + more);
        trace::resetForTest();
        BxHost_SetProfileDirectorySource(&profileDirectory);
    }
    ~StartedTrace() {
        BxHost_SetProfileDirectorySource(nullptr);
        setEnvironment("BX_ERR_LOG_FILE_PATH", traceLogPath());
        setEnvironment("BX_OPTIONS_FILE_PATH", (fs::path(traceDirectory()) / "trace.opt").string());
        trace::resetForTest();
    }
    StartedTrace(const StartedTrace&) = delete;
    StartedTrace& operator=(const StartedTrace&) = delete;
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

// Each file in the folder is one that belongs there: no temporary one is left behind.
void expectNoStrangers() {
    const std::vector<std::string> known = {"trace.log",    "trace.bk0",        "BxOptions.opt",
                                            "zqoptcfg.cfg", "SyncML_Input.log", "SyncML_Output.log",
                                            "SyncML.log",   "registry.ini"};
    for (const auto& entry : fs::directory_iterator(folder().path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(std::find(known.begin(), known.end(), name) != known.end() ||
                    name.rfind("trace_", 0) == 0)
            << name;
    }
}

// Traces "before", then `log` with the gate armed, which logs the word "during" and returns 0 for a
// message that was written, then "after".
template <typename Log>
void traced(Attempt& attempt, const std::string& options, const std::string& logName, Log log) {
    const StartedTrace started(options);
    BxTrace_Trace00("before!");
    int result = -2;
    attempt.armed([&] { result = log(); });
    BxTrace_Trace00("after!");
    BxTrace_FlushRetroBuffers();
    BxTrace_FlushLog();
    std::string mainLog = "trace.log";
    for (const auto& entry : fs::directory_iterator(folder().path())) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("trace_", 0) == 0) mainLog = name;
    }
    EXPECT_EQ(linesWith("before", mainLog).size(), 1U);
    EXPECT_EQ(linesWith("after", mainLog).size(), 1U);
    const std::size_t written = linesWith("during", logName.empty() ? mainLog : logName).size();
    if (result == 0) {
        EXPECT_EQ(written, 1U);
    } else {
        EXPECT_TRUE(attempt.starved());
        EXPECT_EQ(written, 0U);
    }
    expectNoStrangers();
}

const Operation kTraces[] = {
    {"FirstLoad",
     [](Attempt& attempt) {
         const StartedTrace started("MaxFileSize=1234567\nVTraceVerbosity=7\nOwn=text\n", "");
         attempt.armed([&] { BxTrace_Trace00("during!"); });
         BxTrace_Trace00("after!");
         EXPECT_EQ(linesWith("after").size(), 1U);
         EXPECT_LE(linesWith("during").size(), 1U);
         // What the user has set is never replaced by a default.
         const std::string options = readFile(folder().file("BxOptions.opt"));
         EXPECT_EQ(
             options.rfind("[LogSettings]\nMaxFileSize=1234567\nVTraceVerbosity=7\nOwn=text\n", 0),
             0U)
             << options;
         expectNoStrangers();
     }},
    {"FirstLoadOfOwnLog",
     [](Attempt& attempt) {
         const StartedTrace started("SeparateLogForEachProcess=1\nKeepLogFileOpen=2\n");
         attempt.armed([&] { BxTrace_Trace00("during!"); });
         BxTrace_Trace00("after!");
         const std::string log = fs::path(BxTrace_GetLogFilePath()).filename().string();
         EXPECT_EQ(linesWith("after", log).size(), 1U);
     }},
    {"SyncMLAfterAStarvedLoad",
     [](Attempt& attempt) {
         // The first SyncML message puts the log's saved name back.
         const StartedTrace started("TracingOptions=7\n");
         attempt.armed([&] { BxTrace_LoadSettings(); });
         BxTrace_LoadSettings();
         // An option that could not be read is read within a minute.
         trace::settings().tracingOptions = 7;
         BxTrace_OTrace_TS(BXTRACE_SYNCML_INPUT, "document!");
         BxTrace_Trace00("after!");
         EXPECT_EQ(linesWith("document", "SyncML_Input.log").size(), 1U);
         EXPECT_EQ(linesWith("after").size(), 1U);
     }},
    {"Trace",
     [](Attempt& attempt) {
         traced(attempt, "MaxFileSize=5000000\n", "", [] { return BxTrace_Trace00("during!"); });
     }},
    {"Tracef",
     [](Attempt& attempt) {
         traced(attempt, "MaxFileSize=5000000\n", "",
                [] { return BxTrace_Tracef("%s %I64d during!", "text", 12LL); });
     }},
    {"TracefLong",
     [](Attempt& attempt) {
         // A long text is cut where there is no memory for it.
         const StartedTrace started("MaxFileSize=5000000\n");
         const std::string text(3000, 'x');
         BxTrace_Trace00("before!");
         attempt.armed([&] { BxTrace_Tracef("%s", text.c_str()); });
         BxTrace_Trace00("after!");
         const std::string log = readFile(folder().file("trace.log"));
         const auto count = std::count(log.begin(), log.end(), 'x');
         EXPECT_TRUE(count == 3000 || (attempt.starved() && (count == 1023 || count == 0)));
         EXPECT_EQ(linesWith("after").size(), 1U);
     }},
    {"SyncML",
     [](Attempt& attempt) {
         traced(attempt, "TracingOptions=7\n", "SyncML_Input.log",
                [] { return BxTrace_OTrace_TS(BXTRACE_SYNCML_INPUT, "during!"); });
     }},
    {"KeptOpen",
     [](Attempt& attempt) {
         traced(attempt, "SeparateLogForEachProcess=1\nKeepLogFileOpen=1\n", "",
                [] { return BxTrace_VTrace(0, "during!"); });
     }},
    {"KeptOpenAnew",
     [](Attempt& attempt) {
         // Someone has taken the log away.
         const StartedTrace started("SeparateLogForEachProcess=1\nKeepLogFileOpen=2\n");
         BxTrace_Trace00("before!");
         fs::rename(BxTrace_GetLogFilePath(), folder().file("trace.bk0"));
         int result = -2;
         attempt.armed([&] { result = BxTrace_Trace00("during!"); });
         BxTrace_Trace00("after!");
         const std::string log = fs::path(BxTrace_GetLogFilePath()).filename().string();
         EXPECT_EQ(linesWith("before", "trace.bk0").size(), 1U);
         EXPECT_EQ(linesWith("during", log).size(), result == 0 ? 1U : 0U);
         EXPECT_EQ(linesWith("after", log).size(), 1U);
         EXPECT_TRUE(result == 0 || attempt.starved());
     }},
    {"Errors",
     [](Attempt& attempt) {
         const StartedTrace started("MaxFileSize=5000000\n");
         int sum = 0;
         attempt.armed([&] {
             sum += BxTrace_Error("faults", 1, 5, 1);
             sum += BxTrace_Error_L("faults", 1, 5, 1);
             sum += BxTrace_Error_S("faults", 1, "text", 1);
             sum += BxTrace_Error_SS("faults", 1, "text", "text", 1);
             sum += BxTrace_Error_SL("faults", 1, "text", 5, 1);
             sum += BxTrace_Error_SSL("faults", 1, "text", "text", 5, 1);
             sum += BxTrace_Error_SI64L("faults", 1, "text", 5, 5, 1);
             BxTrace_Trace1("faults", 1, "text");
         });
         EXPECT_EQ(sum, 7);
     }},
    {"Retroactive",
     [](Attempt& attempt) {
         const StartedTrace started("RetroactiveTracingBufferSize=4096\n");
         BxTrace_Trace00("before!");
         attempt.armed([&] {
             BxTrace_Trace00("during!");
             BxTrace_FlushRetroBuffers();
         });
         // What could not be written out is still there.
         BxTrace_FlushRetroBuffers();
         EXPECT_EQ(linesWith("before").size(), 1U);
         EXPECT_EQ(linesWith("during").size(), 1U);
     }},
    {"RetroactiveSize",
     [](Attempt& attempt) {
         const StartedTrace started("RetroactiveTracingBufferSize=4096\n");
         attempt.armed([&] { BxTrace_Trace00("during!"); });
         BxTrace_Trace00("after!");
         BxTrace_FlushRetroBuffers();
         EXPECT_EQ(linesWith("after").size(), 1U);
     }},
    {"WriteHex",
     [](Attempt& attempt) {
         traced(attempt, "TracingOptions=7\n", "", [] {
             BxTrace_WriteHex(1, reinterpret_cast<const unsigned char*>("abc"), 3);
             return BxTrace_Trace00("during!");
         });
     }},
    {"Backups",
     [](Attempt& attempt) {
         const StartedTrace started("MaxBackupCount=1\nKeepLogFiles=0\n");
         BxTrace_Trace00("before!");
         int result = -2;
         attempt.armed([&] { result = BxTrace_ErrorLogDelete(); });
         BxTrace_Trace00("after!");
         EXPECT_EQ(result, 0);
         EXPECT_EQ(linesWith("before", "trace.bk0").size(), 1U);
         EXPECT_EQ(linesWith("after").size(), 1U);
     }},
    {"Options",
     [](Attempt& attempt) {
         const StartedTrace started("A=12\nB=34\nC=ff\n");
         BxTrace_LoadSettings();
         int a = 1;
         int c = 1;
         int added = 5;
         attempt.armed([&] {
             BxTrace_GetOptionValue("LogSettings", "A", a);
             BxTrace_GetHexOptionValue("LogSettings", "C", c);
             BxTrace_SetOptionValue("LogSettings", "B", 56);
             BxTrace_GetOptionValue("LogSettings", "D", added);
         });
         EXPECT_TRUE(a == 12 || (attempt.starved() && a == 1));
         EXPECT_TRUE(c == 255 || (attempt.starved() && c == 1));
         EXPECT_EQ(added, 5);
         const std::string options = readFile(folder().file("BxOptions.opt"));
         EXPECT_TRUE(
             options.rfind("[LogSettings]\nA=12\nB=56\nC=ff\n", 0) == 0 ||
             (attempt.starved() && options.rfind("[LogSettings]\nA=12\nB=34\nC=ff\n", 0) == 0))
             << options;
         expectNoStrangers();
     }},
    {"Paths",
     [](Attempt& attempt) {
         const StartedTrace started("");
         const char* run = nullptr;
         attempt.armed([&] {
             run = BxTrace_GetRunDirWithTrailingBackslash();
             BxTrace_GetTracingOptions();
         });
         EXPECT_TRUE(folder().file("") == run || (attempt.starved() && *run == '\0')) << run;
         EXPECT_EQ(folder().file(""), BxTrace_GetRunDirWithTrailingBackslash());
         EXPECT_EQ(folder().file("BxOptions.opt"), BxTrace_GetOptionsFilePath());
     }},
};
INSTANTIATE_TEST_SUITE_P(Traces, Exhaustion, testing::ValuesIn(kTraces), operationName);

const Operation kFiles[] = {
    {"UserLog",
     [](Attempt& attempt) {
         const StartedTrace started("");
         WriteToUserLog("before!");
         attempt.armed([&] { WriteToUserLog("during!"); });
         WriteToUserLog("after!");
         const std::string log = readFile(folder().file("SyncML.log"));
         const auto has = [&](const char* text) { return log.find(text) != std::string::npos; };
         EXPECT_TRUE(has("before! \n") && has("after! \n"));
         EXPECT_EQ(has("during"), has("during! \n"));
         EXPECT_TRUE(attempt.starved() || has("during"));
     }},
    {"LoadFile",
     [](Attempt& attempt) {
         const StartedTrace started("");
         const std::string path = folder().file("SyncML.log");
         writeFile(path, "content");
         unsigned char* data = nullptr;
         unsigned long size = 99;
         int result = -2;
         attempt.armed([&] { result = BxFile_LoadFile(path.c_str(), &data, &size); });
         EXPECT_EQ(size, result == 0 ? 7U : 0U);
         EXPECT_EQ(data == nullptr, result != 0);
         EXPECT_TRUE(result == 0 || result == QEL_OUT_OF_MEMORY || result == QEL_CANNOT_OPEN ||
                     result == QEL_SHORT_READ);
         EXPECT_TRUE(result == 0 || attempt.starved());
         std::free(data);
     }},
    {"CopyFile",
     [](Attempt& attempt) {
         const StartedTrace started("");
         const std::string from = folder().file("SyncML.log");
         const std::string to = folder().file("trace.bk0");
         writeFile(from, "content");
         int result = -2;
         attempt.armed([&] { result = BxFile_CopyFile(from.c_str(), to.c_str(), false); });
         EXPECT_TRUE(result == 0 || attempt.starved());
         EXPECT_EQ(readFile(from), "content");
         EXPECT_EQ(result == 0, readFile(to) == "content");
     }},
    {"CleanseFilename",
     [](Attempt& attempt) {
         VStr name;
         attempt.armed([&] {
             VStr made = CleanseFilename("N:70/x.cfg");
             name <<= made;
         });
         EXPECT_STREQ(name, attempt.starved() ? "" : "N_70_x.cfg");
     }},
    {"HostTexts",
     [](Attempt& attempt) {
         char text[300];
         bool given = false;
         attempt.armed([&] {
             BxHost_SetString(BXHOST_COMPANY, "Own");
             given = BxHost_GetString(BXHOST_COMPANY, text, sizeof text);
             BxHost_GetRegistryRoot(text, sizeof text);
             BxHost_SetString(BXHOST_COMPANY, nullptr);
         });
         EXPECT_TRUE(given);
         EXPECT_FALSE(attempt.starved());
     }},
    {"Transport",
     [](Attempt& attempt) {
         const StartedTrace started("");
         IRMonitorManager* manager = nullptr;
         attempt.armed([&] {
             manager = IRMonitorManager::getManager();
             if (manager == nullptr) return;
             manager->isIRInstalled();
             manager->startIrMon();
             manager->stopIrMon();
             manager->deselectIR();
             manager->selectIR();
             manager->isIRSelected();
         });
         expectNoStrangers();
         manager = IRMonitorManager::getManager();
         ASSERT_NE(manager, nullptr);
         // What was stored is stored whole.
         const std::string stored = readFile(folder().file("registry.ini"));
         std::istringstream in(stored);
         for (std::string line; std::getline(in, line);) {
             EXPECT_TRUE(line.empty() || line.front() == '[' || line.back() == '"') << line;
             EXPECT_EQ(line.find("TransportParam=\"") == 0, line.find("}\"") != std::string::npos)
                 << line;
         }
         manager->selectIR();
         EXPECT_TRUE(manager->isIRSelected());
         manager->Release();
     }},
};
INSTANTIATE_TEST_SUITE_P(Files, Exhaustion, testing::ValuesIn(kFiles), operationName);

}  // namespace

}  // namespace qel::test
