#include "commands/LogFiles.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <ostream>
#include <set>
#include <thread>
#include <utility>

#include "base/Files.h"
#include "base/Json.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "base/TraceLog.h"
#include "commands/LogSources.h"

namespace qel::cli {

namespace {

constexpr std::int64_t kHour = 3600 * 1000;

std::string describe(const TraceMessage& message) {
    if (!message.isError) return message.text;
    std::string text = "Error " + std::to_string(message.code);
    const std::string_view words = resultWords(message.code);
    if (!words.empty()) text += " (" + std::string(words) + ")";
    if (!message.detail.empty()) text += ": " + message.detail;
    return text + ", at " + message.place;
}

Json messageJson(const TraceMessage& message) {
    const auto orNull = [](const std::string& text) {
        return text.empty() ? Json() : Json(jsonText(text));
    };
    const std::string words(resultWords(message.code));
    return {{"file", jsonText(message.file)},
            {"line", message.line},
            {"time", orNull(message.stamp)},
            {"thread", orNull(message.thread)},
            {"kind", message.isError   ? "error"
                     : message.isStart ? "start"
                                       : "text"},
            {"code", message.isError ? Json(message.code) : Json()},
            {"words", message.isError ? orNull(words) : Json()},
            {"detail", orNull(message.detail)},
            {"place", orNull(message.place)},
            {"text", jsonText(message.text)}};
}

std::string counted(std::uint64_t number, const std::string& what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

// What a log has to say in a few lines.
class Summary {
  public:
    void add(const TraceMessage& message) {
        ++messages_;
        if (message.isStart) ++starts_;
        if (message.isError) ++errors_[message.code];
        if (!message.thread.empty()) threads_.insert(message.thread);
        if (message.stamp.empty()) return;
        if (first_.empty()) first_ = message.stamp;
        if (!last_.empty() && message.at - lastAt_ >= kHour)
            gaps_.push_back({message.at - lastAt_, last_, message.stamp});
        last_ = message.stamp;
        lastAt_ = message.at;
    }

    void write(std::ostream& out) {
        out << counted(messages_, "line") << ", " << first_ << " to " << last_ << ", "
            << counted(threads_.size(), "thread") << ", " << counted(starts_, "start")
            << " of a log\n";
        for (const auto& [code, count] : errors_) {
            const std::string_view words = resultWords(code);
            out << "  error " << code << "  " << counted(count, "time")
                << (words.empty() ? "" : "  " + std::string(words)) << "\n";
        }
        for (const Gap& gap : longestGaps())
            out << "  nothing from " << gap.from << " to " << gap.to << "\n";
    }

    [[nodiscard]] Json json() {
        const auto orNull = [](const std::string& text) {
            return text.empty() ? Json() : Json(text);
        };
        Json document{{"lines", messages_},    {"first", orNull(first_)},
                      {"last", orNull(last_)}, {"threads", threads_.size()},
                      {"starts", starts_},     {"errors", Json::array()},
                      {"gaps", Json::array()}};
        for (const auto& [code, count] : errors_)
            document["errors"].push_back({{"code", code},
                                          {"count", count},
                                          {"words", orNull(std::string(resultWords(code)))}});
        for (const Gap& gap : longestGaps())
            document["gaps"].push_back({{"from", gap.from}, {"to", gap.to}});
        return document;
    }

  private:
    struct Gap {
        std::int64_t length;
        std::string from;
        std::string to;
    };

    // At most five, in the order of time.
    [[nodiscard]] std::vector<Gap> longestGaps() const {
        constexpr std::size_t kMost = 5;
        std::vector<Gap> all = gaps_;
        std::vector<std::int64_t> lengths;
        for (const Gap& gap : all) lengths.push_back(gap.length);
        std::sort(lengths.rbegin(), lengths.rend());
        if (all.size() <= kMost) return all;
        std::erase_if(all, [&](const Gap& gap) { return gap.length < lengths[kMost - 1]; });
        return all;
    }

    std::uint64_t messages_ = 0;
    std::uint64_t starts_ = 0;
    std::map<int, std::uint64_t> errors_;
    std::set<std::string> threads_;
    std::string first_;
    std::string last_;
    std::int64_t lastAt_ = 0;
    std::vector<Gap> gaps_;
};

// The digits of a thread's number without leading zeros. Throws UsageError for another text.
std::string threadOf(const std::string& text) {
    constexpr std::size_t kMostDigits = 16;
    const std::size_t first = text.find_first_not_of('0');
    const bool isNumber = text.size() <= kMostDigits &&
                          text.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
    if (text.empty()) return {};
    if (!isNumber)
        throw UsageError("--thread: \"" + text +
                         "\" is not a thread's number as logs have it, in brackets: 1A2C");
    return first == std::string::npos ? "0" : lowerCase(text.substr(first));
}

class LogShow {
  public:
    LogShow(Context& context, const LogFilesOptions& options)
        : context_(context),
          options_(options),
          thread_(threadOf(options.thread)),
          search_(lowerCase(options.search)),
          json_(context.out, "log file", "messages") {
        const auto since = timeOf("--since", options.since, false);
        const auto through = timeOf("--through", options.through, true);
        sources_.emplace(context, options.files, since || through);
        place(since, through);
    }

    void run() {
        while (const auto message = sources_->next(options_.follow)) take(*message);
        finish();
        if (sources_->size() == 0) return;
        if (shown_ == 0) sayNothingFits();
        // Until the program is ended.
        for (int look = 1; options_.follow; ++look) {
            constexpr std::chrono::milliseconds kLook{300};
            constexpr int kLooksAtFolders = 4;
            context_.out.flush();
            std::this_thread::sleep_for(kLook);
            if (look % kLooksAtFolders == 0) sources_->lookAgain();
            while (const auto message = sources_->next(true))
                if (isWanted(*message)) write(*message);
        }
    }

  private:
    // "06/15" as an end is the end of that day.
    static std::optional<std::int64_t> timeOf(const std::string& option, const std::string& text,
                                              bool isEnd) {
        if (text.empty()) return std::nullopt;
        constexpr std::string_view kLast = "01/01 23:59:59.999";
        std::string whole = text;
        if (isEnd && whole.size() < kLast.size()) whole += kLast.substr(whole.size());
        if (const auto time = traceTime(whole)) return time;
        throw UsageError(option + ": \"" + text +
                         "\" is not a time as logs have it: 06/15 or 06/15 14:02, month and day");
    }

    // The times of the command line have no year, those of the logs neither: each is looked for in
    // the order of the logs, the end after the beginning where there is such a one.
    void place(std::optional<std::int64_t> since, std::optional<std::int64_t> through) {
        if (!sources_->span()) return;
        const auto [first, last] = *sources_->span();
        if (since) since_ = inLogs(*since, first, last);
        if (!through) return;
        if (since_) through_ = after(*through, *since_);
        if (!since_ || *through_ > last) through_ = inLogs(*through, first, last);
    }

    static std::int64_t after(std::int64_t time, std::int64_t first) {
        while (time < first) time += kTraceYear;
        return time;
    }

    // The first such time within the logs; outside them, the one that is nearer to them.
    static std::int64_t inLogs(std::int64_t time, std::int64_t first, std::int64_t last) {
        const std::int64_t next = after(time, first);
        if (next <= last) return next;
        return next - last < first - (next - kTraceYear) ? next : next - kTraceYear;
    }

    [[nodiscard]] bool isWanted(const TraceMessage& message) {
        if (!thread_.empty()) {
            constexpr std::size_t kMostNamed = 20;
            if (!message.thread.empty() && threads_.size() < kMostNamed)
                threads_.insert(message.thread);
            if (message.thread.empty() || threadOf(message.thread) != thread_) return false;
        }
        if (options_.errors && !message.isError) return false;
        if ((since_ && message.at < *since_) || (through_ && message.at > *through_)) return false;
        return search_.empty() || lowerCase(message.text).find(search_) != std::string::npos;
    }

    void take(const TraceMessage& message) {
        if (!isWanted(message)) return;
        ++shown_;
        if (options_.summary) {
            summary_.add(message);
        } else if (options_.tail) {
            last_.push_back(message);
            if (last_.size() > *options_.tail) last_.pop_front();
        } else {
            write(message);
        }
    }

    void sayNothingFits() {
        std::string text = "no line of the log fits";
        const bool onlyErrors = options_.errors && thread_.empty() && search_.empty();
        if (onlyErrors && !since_ && !through_) text = "there are no errors in the log";
        if (since_ && through_ && *through_ < *since_) {
            text += ": --through is before --since";
        } else if (!threads_.empty() && !isOneOfThem()) {
            text += "; its threads are";
            const char* comma = " ";
            for (const std::string& thread : threads_) text += std::exchange(comma, ", ") + thread;
        }
        context_.say(text);
    }

    [[nodiscard]] bool isOneOfThem() const {
        return std::any_of(
            threads_.begin(), threads_.end(),
            [this](const std::string& thread) { return threadOf(thread) == thread_; });
    }

    void write(const TraceMessage& message) {
        if (options_.json) {
            json_.add(messageJson(message));
            return;
        }
        std::ostream& out = context_.out;
        const bool highlight = message.isError && outputHighlights();
        if (sources_->size() > 1) out << printable(sources_->shortName(message.file)) << "  ";
        if (!message.stamp.empty()) out << message.stamp << ' ';
        if (!message.thread.empty()) out << '[' << printable(message.thread) << "] ";
        out << (highlight ? "\x1b[31m" : "") << printable(describe(message))
            << (highlight ? "\x1b[0m" : "") << '\n';
    }

    void finish() {
        for (const TraceMessage& message : last_) write(message);
        if (options_.json && !options_.summary) json_.finish();
        if (!options_.summary) return;
        std::map<std::string, std::string> settings;
        if (sources_->size() != 0) settings = traceOptionsBeside(sources_->firstName());
        if (options_.json) {
            Json document = summary_.json();
            document["options"] = Json::object();
            for (const auto& [key, value] : settings)
                document["options"][jsonText(key)] = jsonText(value);
            writeJson(context_.out, "log summary", document);
        } else if (shown_ != 0) {
            summary_.write(context_.out);
            for (const auto& [key, value] : settings)
                context_.out << "  option " << printable(key) << " = " << printable(value) << "\n";
        }
    }

    Context& context_;
    const LogFilesOptions& options_;
    std::string thread_;
    std::string search_;
    std::optional<std::int64_t> since_;
    std::optional<std::int64_t> through_;
    std::optional<LogSources> sources_;
    Summary summary_;
    std::uint64_t shown_ = 0;
    std::set<std::string> threads_;  // of the log, some of them
    std::deque<TraceMessage> last_;
    JsonArrayWriter json_;
};

}  // namespace

void showLogFiles(Context& context, const LogFilesOptions& options) {
    if (options.follow && (options.json || options.summary))
        throw UsageError("--follow shows lines; leave --json and --summary out");
    if (options.follow && std::any_of(options.files.begin(), options.files.end(), isStandardInput))
        throw UsageError("--follow needs a file or a folder; standard input is read to its end");
    LogShow(context, options).run();
}

}  // namespace qel::cli
