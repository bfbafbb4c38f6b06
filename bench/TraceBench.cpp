// Trace lines: switched off, into a log that is kept open, and in the ordinary mode that opens and
// closes the log for each line; beside spdlog and the bare system calls.
#include <fcntl.h>
#ifdef QEL_BENCH_ALL_PEERS
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "Comparison.h"
#include "QelUtility/BxTrace.h"
#include "support/Environment.h"
#include "trace/TraceSystem.h"

namespace qel::bench {

namespace {

namespace fs = std::filesystem;

constexpr char kMessage[] = "Synchronised record 4711 of 9000, 3 changes";
constexpr char kBareLine[] =
    "[1A2C] 06/15 14:02:11.123 001: Synchronised record 4711 of 9000, 3 changes\n";

// A folder of the logs, removed when the program ends.
class Folder {
  public:
    Folder() : path_(fs::temp_directory_path() / ("qelbench." + std::to_string(::getpid()))) {
        fs::create_directories(path_);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    [[nodiscard]] std::string file(const std::string& name) const {
        return (path_ / name).string();
    }

  private:
    fs::path path_;
};

const Folder& folder() {
    static const Folder made;
    return made;
}

// Makes the trace one that has just started with KeepLogFileOpen at `keepOpen`, and closes the log
// of the one before.
void useMode(int keepOpen) {
    static int current = -1;
    if (current == keepOpen) return;
    current = keepOpen;
    const std::string options = folder().file("mode" + std::to_string(keepOpen) + ".opt");
    const std::string log = folder().file("mode" + std::to_string(keepOpen) + ".log");
    std::ofstream(options) << "[LogSettings]\nKeepLogFileOpen=" << keepOpen
                           << "\nSeparateLogForEachProcess=" << (keepOpen != 0 ? 1 : 0)
                           << "\nMaxFileSize=100000000\nTracingOptions=1\n";
    test::setEnvironment("BX_OPTIONS_FILE_PATH", options);
    test::setEnvironment("BX_ERR_LOG_FILE_PATH", log);
    // Never destroyed, because it stays installed.
    static auto& system = *new std::optional<trace::TraceSystem>;
    trace::installTraceSystem(&system.emplace());
    BxTrace_GetTracingOptions();
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), {}};
}

bool linesArrive(int keepOpen) {
    useMode(keepOpen);
    if (BxTrace_Tracef("%s", kMessage) != 0) return false;
    const std::string log = BxTrace_GetLogFilePath();
    useMode(-2);  // closes the log
    return contentOf(log).find(std::string(": ") + kMessage + "\n") != std::string::npos;
}

#ifdef QEL_BENCH_ALL_PEERS
std::shared_ptr<spdlog::logger> spdlogTo(const std::string& name, bool flush) {
    static int count = 0;
    auto logger =
        spdlog::basic_logger_mt(name + std::to_string(count++), folder().file(name), true);
    logger->set_pattern("[%t] %m/%d %H:%M:%S.%e: %v");
    if (flush) logger->flush_on(spdlog::level::info);
    return logger;
}

void addSpdlogSwitchedOff(Comparison& row) {
    row.peer(
        "spdlog", [logger = spdlogTo("off.log", false)] { logger->debug("{}", kMessage); });
}

void addSpdlog(Comparison& row, bool flush) {
    row.peer(
        "spdlog", [logger = spdlogTo(flush ? "flushed.log" : "kept.log",
                                     flush)] { logger->info("{}", kMessage); });
}
#else
void addSpdlogSwitchedOff(Comparison& /*row*/) {}
void addSpdlog(Comparison& /*row*/, bool /*flush*/) {}
#endif

int openToAppend(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
}

void addKept(const char* name, int mode, double goal, bool flush, double spdlogTook,
             const char* floor) {
    Comparison row({name, goal, floor, 0, "spdlog", spdlogTook},
                   [mode] { return linesArrive(mode); });
    row.ours([mode] {
        useMode(mode);
        benchmark::DoNotOptimize(BxTrace_Tracef("%s", kMessage));
    });
    addSpdlog(row, flush);
    row.peer("bare write", [handle = openToAppend(folder().file("bare.log"))] {
        benchmark::DoNotOptimize(::write(handle, kBareLine, sizeof kBareLine - 1));
    });
}

}  // namespace

void addTraces() {
    Comparison off(
        {"trace that is switched off", 8, "one option read", 0, "spdlog", 6},
        [] {
            useMode(1);
            return BxTrace_VTrace(5, "%s", kMessage) == 0;
        });
    off.ours([] { benchmark::DoNotOptimize(BxTrace_VTrace(5, "%s", kMessage)); });
    addSpdlogSwitchedOff(off);
    addKept("trace line, log kept open", 1, 200, false, 219, "75 bytes into a buffer");
    addKept("trace line, log kept open, flushed", 3, 750, true, 940, "one write");
    Comparison(
        {"trace line, ordinary mode", 3700, "open, write and close", 0, "open, write, close", 2940},
        [] { return linesArrive(0); })
        .ours([] {
            useMode(0);
            benchmark::DoNotOptimize(BxTrace_Tracef("%s", kMessage));
        })
        .peer("open, write, close",
              [path = folder().file("bare.log")] {
                  const int handle = openToAppend(path);
                  benchmark::DoNotOptimize(::write(handle, kBareLine, sizeof kBareLine - 1));
                  ::close(handle);
              })
        .peer("fopen, fputs, fclose", [path = folder().file("bare.log")] {
            std::FILE* stream = std::fopen(path.c_str(), "a");
            benchmark::DoNotOptimize(std::fputs(kBareLine, stream));
            std::fclose(stream);
        });
}

}  // namespace qel::bench
