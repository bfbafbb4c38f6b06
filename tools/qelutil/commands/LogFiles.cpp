#include "commands/LogFiles.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <system_error>
#include <thread>

#include "base/Files.h"
#include "base/Json.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "base/TraceLog.h"

namespace qel::cli {

namespace fs = std::filesystem;

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

// The logs that the command line names: files, and the logs of folders.
std::vector<std::string> logsOf(const std::vector<std::string>& names) {
    std::vector<std::string> logs;
    for (const std::string& name : names) {
        std::error_code unknown;
        if (!fs::is_directory(pathOf(name), unknown)) {
            logs.push_back(name);
            continue;
        }
        std::set<std::string> found;
        for (const auto& each : fs::directory_iterator(pathOf(name), unknown)) {
            const std::string file = nameOf(each.path());
            if (lowerCase(file).ends_with(".log")) found.insert(file);
        }
        if (found.empty()) throw InputError(name + ": there is no .log file in this folder");
        logs.insert(logs.end(), found.begin(), found.end());
    }
    return logs;
}

class LogShow {
  public:
    LogShow(Context& context, const LogFilesOptions& options)
        : context_(context),
          options_(options),
          since_(timeOf("--since", options.since, false)),
          through_(timeOf("--through", options.through, true)),
          json_(context.out, "log file", "messages") {
        for (const std::string& name : logsOf(options.files)) {
            sources_.push_back({std::make_unique<TraceLog>(name), {}});
            advance(sources_.back());
        }
    }

    void run() {
        while (Source* source = earliest()) {
            take(*source->next);
            advance(*source);
        }
        finish();
        // Until the program is ended.
        while (options_.follow) {
            constexpr std::chrono::milliseconds kLook{300};
            std::this_thread::sleep_for(kLook);
            for (Source& source : sources_)
                while (const auto message = source.log->next())
                    if (isWanted(*message)) write(*message);
            context_.out.flush();
        }
    }

  private:
    struct Source {
        std::unique_ptr<TraceLog> log;
        std::optional<TraceMessage> next;
    };

    // "06/15" as an end is the end of that day.
    static std::optional<std::int64_t> timeOf(const std::string& option, const std::string& text,
                                              bool isEnd) {
        if (text.empty()) return std::nullopt;
        constexpr std::string_view kLast = "01/01 23:59:59.999";
        std::string whole = text;
        if (isEnd && whole.size() < kLast.size()) whole += kLast.substr(whole.size());
        if (const auto time = traceTime(whole)) return time;
        throw UsageError(option + ": \"" + text + "\" is not a time as logs have it: 06/15 14:02");
    }

    void advance(Source& source) {
        source.next = source.log->next();
        // Who follows waits for the rest of a line.
        if (!source.next && !options_.follow) source.next = source.log->rest();
    }

    // Of several processes' logs the message that was written first.
    Source* earliest() {
        Source* first = nullptr;
        for (Source& source : sources_)
            if (source.next && (first == nullptr || source.next->at < first->next->at))
                first = &source;
        return first;
    }

    [[nodiscard]] bool isWanted(const TraceMessage& message) const {
        constexpr std::int64_t kYear = 366 * 24 * kHour;
        const std::int64_t inYear = message.at % kYear;
        if (options_.errors && !message.isError) return false;
        if (!options_.thread.empty() && lowerCase(options_.thread) != lowerCase(message.thread))
            return false;
        if ((since_ && inYear < *since_) || (through_ && inYear > *through_)) return false;
        return options_.search.empty() ||
               lowerCase(message.text).find(lowerCase(options_.search)) != std::string::npos;
    }

    void take(const TraceMessage& message) {
        if (!isWanted(message)) return;
        if (options_.summary) {
            summary_.add(message);
        } else if (options_.tail) {
            last_.push_back(message);
            if (last_.size() > *options_.tail) last_.pop_front();
        } else {
            write(message);
        }
    }

    void write(const TraceMessage& message) {
        if (options_.json) {
            json_.add(messageJson(message));
            return;
        }
        std::ostream& out = context_.out;
        const bool highlight = message.isError && outputHighlights();
        if (sources_.size() > 1) out << printable(nameOf(pathOf(message.file).filename())) << "  ";
        if (!message.stamp.empty())
            out << message.stamp << " [" << printable(message.thread) << "] ";
        out << (highlight ? "\x1b[31m" : "") << printable(describe(message))
            << (highlight ? "\x1b[0m" : "") << '\n';
    }

    void finish() {
        for (const TraceMessage& message : last_) write(message);
        if (options_.json && options_.summary) {
            Json document = summary_.json();
            document["options"] = Json::object();
            for (const auto& [key, value] : traceOptionsBeside(sources_.front().log->name()))
                document["options"][jsonText(key)] = jsonText(value);
            writeJson(context_.out, "log summary", document);
        } else if (options_.json) {
            json_.finish();
        } else if (options_.summary) {
            summary_.write(context_.out);
            for (const auto& [key, value] : traceOptionsBeside(sources_.front().log->name()))
                context_.out << "  option " << printable(key) << " = " << printable(value) << "\n";
        }
    }

    Context& context_;
    const LogFilesOptions& options_;
    std::optional<std::int64_t> since_;
    std::optional<std::int64_t> through_;
    std::vector<Source> sources_;
    Summary summary_;
    std::deque<TraceMessage> last_;
    JsonArrayWriter json_;
};

}  // namespace

void showLogFiles(Context& context, const LogFilesOptions& options) {
    if (options.follow && (options.json || options.summary))
        throw UsageError("--follow shows lines; leave --json and --summary out");
    LogShow(context, options).run();
}

}  // namespace qel::cli
