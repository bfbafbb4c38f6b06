// The logs that `qelutil log` reads, found by the names that it was given, and their messages in
// the order of time. One thread.
#ifndef QELUTIL_COMMANDS_LOGSOURCES_H
#define QELUTIL_COMMANDS_LOGSOURCES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Command.h"
#include "base/TraceLog.h"

namespace qel::cli {

class LogSources {
  public:
    // The first and the last time of the logs, as TraceMessage::at counts them.
    struct Span {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };

    // Logs, folders with logs at any depth, "-" for standard input, and pipes; a log that is named
    // twice is read once. What cannot be read, or is no trace log, is reported to `context`.
    // With `placed` every log is read to its end first: the years of several logs agree, and span()
    // is known.
    LogSources(Context& context, const std::vector<std::string>& names, bool placed);
    ~LogSources();
    LogSources(const LogSources&) = delete;
    LogSources& operator=(const LogSources&) = delete;

    [[nodiscard]] std::size_t size() const { return sources_.size(); }
    // REQUIRES: size() > 0
    [[nodiscard]] const std::string& firstName() const { return sources_.front().name; }
    [[nodiscard]] const std::optional<Span>& span() const { return span_; }
    // What a person knows the message's log by, when there are several: its file name, with its
    // folders where two have the same name.
    [[nodiscard]] std::string shortName(const std::string& file) const;

    // The next message of all logs; nothing at their ends. Who follows (`more`) does not get a last
    // line before its end is written.
    [[nodiscard]] std::optional<TraceMessage> next(bool more);

    // Looks for logs that have come to the folders since.
    void lookAgain();

  private:
    struct Input;
    struct Source {
        std::string name;
        std::shared_ptr<Input> input;  // of standard input and pipes
        std::unique_ptr<TraceLog> log;
        std::optional<TraceMessage> next;
        std::optional<Span> span;
    };

    void add(const std::string& name);
    void find(const std::string& folder, bool isFirst);
    void addLog(const std::string& name);
    void addInput(const std::string& name);
    void place();

    Context& context_;
    std::vector<std::string> folders_;
    std::vector<Source> sources_;
    std::set<std::string> known_;       // names that were looked at
    std::set<platform::FileId> files_;  // that are read, backups too
    std::optional<Span> span_;
    std::int64_t latest_ = 0;  // of the messages so far
    bool sameNames_ = false;
};

}  // namespace qel::cli

#endif
