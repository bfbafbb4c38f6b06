#include "commands/LogSources.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <istream>
#include <streambuf>
#include <string_view>
#include <system_error>
#include <utility>

#include "QelCalendar/Texts.h"
#include "base/Files.h"
#include "base/Spool.h"
#include "base/Text.h"
#include "platform/Files.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

class SpoolBuffer : public std::streambuf {
  public:
    explicit SpoolBuffer(Spool& spool) : spool_(spool) {}

  protected:
    int_type underflow() override {
        const std::size_t got = spool_.read(bytes_, sizeof bytes_);
        setg(bytes_, bytes_, bytes_ + got);
        return got == 0 ? traits_type::eof() : traits_type::to_int_type(bytes_[0]);
    }

  private:
    Spool& spool_;
    char bytes_[16384];
};

class SpoolStream : public std::istream {
  public:
    explicit SpoolStream(Spool& spool) : std::istream(nullptr), buffer_(spool) {
        rdbuf(&buffer_);
        // A medium that fails says so itself.
        exceptions(std::ios::badbit);
    }

  private:
    SpoolBuffer buffer_;
};

bool isOptions(const std::string& text) {
    const std::string lower = lowerCase(text);
    return lower.starts_with("[logsettings]") || lower.find("\n[logsettings]") != std::string::npos;
}

// A report, a message or another web page may have a calendar in it.
bool isPage(std::string_view head) {
    const std::size_t first = head.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && head[first] == '<';
}

// Throws InputError for a file that is certainly no trace log; `head` is the beginning of it.
void checkIsLog(Context& context, const std::string& name, const std::string& head) {
    if (looksLikeTrace(head)) return;
    if (isOptions(head))
        throw InputError(name +
                         ": these are the options of a trace log, not a log; name the log beside "
                         "them, --summary shows both");
    switch (const qelcal_kind kind = qelcal::recognise(head)) {
        case QELCAL_KIND_EMPTY:
            return;
        case QELCAL_KIND_TEXT:
            context.warning(
                name, 0,
                "no line at its beginning has a time as a trace log's lines have; is it the "
                "right file?");
            return;
        case QELCAL_KIND_CALENDAR:
            throw InputError(
                name + (isPage(head)
                            ? ": this is a page with a calendar in it, not a trace log; `qelutil "
                              "show` reads the calendar"
                            : ": this is a calendar, not a trace log; `qelutil show` reads it"));
        default:
            throw InputError(name + ": this is not a trace log: it is " + qelcal_kind_text(kind));
    }
}

constexpr std::size_t kHead = 16384;

std::string headOf(const std::string& name) {
    std::ifstream file(pathOf(name), std::ios::binary);
    std::string head(kHead, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return head;
}

std::optional<LogSources::Span> spanOf(TraceLog& log) {
    std::optional<LogSources::Span> span;
    const auto take = [&](const TraceMessage& message) {
        if (message.stamp.empty()) return;
        if (!span) span = {message.at, message.at};
        span->last = message.at;
    };
    while (const auto message = log.next()) take(*message);
    if (const auto message = log.rest()) take(*message);
    return span;
}

// The names of the logs in a folder and those below it, in their order. Links are not followed.
std::set<std::string> logsIn(const std::string& folder) {
    std::set<std::string> found;
    std::vector<fs::path> waiting{pathOf(folder)};
    while (!waiting.empty()) {
        const fs::path next = std::move(waiting.back());
        waiting.pop_back();
        std::error_code unreadable;
        for (const platform::FolderItem& item : platform::itemsOf(next, unreadable)) {
            const fs::path path = next / item.name;
            const std::string name = nameOf(path);
            if (item.isFolder) {
                if (!item.isLink) waiting.push_back(path);
            } else if (lowerCase(name).ends_with(".log") && !item.isOther) {
                found.insert(name);
            }
        }
    }
    return found;
}

}  // namespace

struct LogSources::Input {
    Input(Context& context, const std::string& name) : file(context, name), spool(file) {}

    InputFile file;
    Spool spool;
};

LogSources::LogSources(Context& context, const std::vector<std::string>& names, bool placed)
    : context_(context) {
    for (const std::string& name : names) add(name);
    if (placed || sources_.size() > 1) place();
    std::set<fs::path> last;
    for (const Source& source : sources_)
        sameNames_ |= !last.insert(pathOf(source.name).filename()).second;
}

LogSources::~LogSources() = default;

void LogSources::add(const std::string& name) {
    std::error_code unknown;
    try {
        if (isStandardInput(name) || fs::is_other(pathOf(name), unknown)) {
            addInput(name);
        } else if (fs::is_directory(pathOf(name), unknown)) {
            folders_.push_back(name);
            find(name, true);
        } else {
            addLog(name);
        }
    } catch (const InputError& problem) {
        context_.error(problem.what());
    }
}

void LogSources::find(const std::string& folder, bool isFirst) {
    const std::set<std::string> logs = logsIn(folder);
    if (logs.empty() && isFirst)
        throw InputError(folder + ": there is no .log file in this folder");
    for (const std::string& log : logs) {
        try {
            addLog(log);
        } catch (const InputError& problem) {
            // Who follows finds a log that is just being renamed at the next look.
            if (isFirst) context_.error(problem.what());
        }
    }
}

void LogSources::addLog(const std::string& name) {
    if (known_.contains(name)) return;
    auto log = std::make_unique<TraceLog>(name);
    known_.insert(name);
    std::set<platform::FileId> files;
    for (const std::string& file : log->files())
        if (const auto id = platform::identityOf(pathOf(file))) files.insert(*id);
    const auto isRead = [&](const platform::FileId& id) { return files_.contains(id); };
    if (!files.empty() && std::all_of(files.begin(), files.end(), isRead)) return;
    checkIsLog(context_, name, headOf(name));
    // A backup that was named before its log is read with the log.
    std::erase_if(sources_, [&](const Source& source) {
        const auto id = platform::identityOf(pathOf(source.name));
        return source.input == nullptr && id && files.contains(*id);
    });
    files_.insert(files.begin(), files.end());
    log->beginNear(latest_);
    sources_.push_back({name, nullptr, std::move(log), std::nullopt, std::nullopt});
}

void LogSources::addInput(const std::string& name) {
    if (!known_.insert(name).second) return;
    auto input = std::make_shared<Input>(context_, name);
    checkIsLog(context_, input->file.name(), std::string(input->spool.head().substr(0, kHead)));
    auto log =
        std::make_unique<TraceLog>(input->file.name(), std::make_unique<SpoolStream>(input->spool));
    sources_.push_back({input->file.name(), input, std::move(log), std::nullopt, std::nullopt});
}

// A stamp has no year. Logs that were written at one time lie together: the year begins in the
// longest stretch of it that no log has a line in.
void LogSources::place() {
    std::vector<Source*> placed;
    for (Source& source : sources_) {
        std::unique_ptr<TraceLog> again;
        if (source.input == nullptr) {
            again = std::make_unique<TraceLog>(source.name);
            source.span = spanOf(*again);
        } else {
            if (!source.input->spool.keepAll())
                throw InputError(source.name +
                                 ": there is no room on the disk to hold it; name a file instead");
            source.span = spanOf(*source.log);
            source.input->spool.rewind();
            source.log = std::make_unique<TraceLog>(
                source.name, std::make_unique<SpoolStream>(source.input->spool));
        }
        if (source.span) placed.push_back(&source);
    }
    if (placed.empty()) return;
    std::sort(placed.begin(), placed.end(), [](const Source* one, const Source* other) {
        return one->span->first < other->span->first;
    });
    std::int64_t covered = INT64_MIN;
    for (const Source* source : placed)
        covered = std::max(covered, source->span->last - kTraceYear);
    std::int64_t longest = INT64_MIN;
    std::int64_t begin = 0;
    for (const Source* source : placed) {
        const std::int64_t gap = source->span->first - covered;
        if (gap > longest) begin = source->span->first;
        longest = std::max(longest, gap);
        covered = std::max(covered, source->span->last);
    }
    span_ = {INT64_MAX, INT64_MIN};
    for (Source* source : placed) {
        if (source->span->first < begin) {
            source->span->first += kTraceYear;
            source->span->last += kTraceYear;
        }
        source->log->beginNear(source->span->first);
        span_->first = std::min(span_->first, source->span->first);
        span_->last = std::max(span_->last, source->span->last);
    }
}

std::string LogSources::shortName(const std::string& file) const {
    return sameNames_ ? file : nameOf(pathOf(file).filename());
}

std::optional<TraceMessage> LogSources::next(bool more) {
    Source* first = nullptr;
    for (Source& source : sources_) {
        if (!source.next) source.next = source.log->next();
        if (!source.next && !more) source.next = source.log->rest();
        if (source.next && (first == nullptr || source.next->at < first->next->at)) first = &source;
    }
    if (first == nullptr) return std::nullopt;
    latest_ = std::max(latest_, first->next->at);
    return std::exchange(first->next, std::nullopt);
}

void LogSources::lookAgain() {
    // Another file may have taken the identity of one that is gone; names are known.
    files_.clear();
    for (const std::string& folder : folders_) find(folder, false);
}

}  // namespace qel::cli
