// A trace log as another computer wrote it, read without touching its folder: its backups before
// it, a message at a time. One thread.
#ifndef QELUTIL_BASE_TRACELOG_H
#define QELUTIL_BASE_TRACELOG_H

#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace qel::cli {

struct TraceMessage {
    std::string file;        // that it is in
    std::uint64_t line = 0;  // of that file
    std::string stamp;       // "06/15 14:02:11.123"; empty where the line has none
    std::int64_t at = 0;     // milliseconds since the log's first January; years are counted
    std::string thread;      // hexadecimal digits
    std::string text;        // what follows the stamp
    bool isError = false;
    bool isStart = false;  // of a process's messages
    int code = 0;          // of an error
    std::string detail;    // "no-such-file.vcs"; codes of callers come after a dot each
    std::string place;     // "MyModule line 18"
};

// "a file cannot be opened or created" for 2005; empty for a code that is not the libraries'.
[[nodiscard]] std::string_view resultWords(int code);

// The length of a year as TraceMessage::at counts it: 29 February has its place in each.
inline constexpr std::int64_t kTraceYear = std::int64_t{366} * 86400 * 1000;

// Milliseconds since the beginning of a year, of "06/15", "06/15 14:02" and all between that and
// a whole stamp. Nothing for another text.
[[nodiscard]] std::optional<std::int64_t> traceTime(std::string_view text);

// True when one of the lines begins as a trace log's do.
[[nodiscard]] bool looksLikeTrace(std::string_view text);

class TraceLog {
  public:
    // NAME.log with NAME.bk0 to NAME.bkf; another name is a log by itself. Throws InputError when
    // it cannot be read.
    explicit TraceLog(const std::string& name);
    // What is not a file; `name` is for messages.
    TraceLog(std::string name, std::unique_ptr<std::istream> stream);

    [[nodiscard]] const std::string& name() const { return name_; }
    // The log and its backups, the oldest first.
    [[nodiscard]] const std::vector<std::string>& files() const { return files_; }
    // The first message's time is near `at`, which settles its year; lines before it without a time
    // take `at` for theirs. To be called before next().
    void beginNear(std::int64_t at);
    // The next message; nothing at the end. What is written later is found by the next call, also
    // when the log became a backup meanwhile.
    [[nodiscard]] std::optional<TraceMessage> next();
    // A last line without its end, after next() has given nothing; once.
    [[nodiscard]] std::optional<TraceMessage> rest();

  private:
    TraceMessage take(const std::string& line);
    bool readLine(std::string& line);
    bool openNext();

    std::string name_;
    std::vector<std::string> files_;  // the oldest first
    std::size_t at_ = 0;              // of files_, the one after `stream_`
    std::unique_ptr<std::istream> stream_;
    bool isFile_ = true;
    std::optional<platform::FileId> id_;
    std::string partial_;  // a line whose end is not written yet
    std::uint64_t line_ = 0;
    std::int64_t last_ = 0;  // of the message before
    std::int64_t year_ = 0;
};

// The options file beside a log, KEY to value; empty when there is none.
[[nodiscard]] std::map<std::string, std::string> traceOptionsBeside(const std::string& log);

}  // namespace qel::cli

#endif
