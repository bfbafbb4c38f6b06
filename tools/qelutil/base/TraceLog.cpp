#include "base/TraceLog.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "QelUtility/QelTypes.h"
#include "base/Command.h"
#include "base/Files.h"
#include "base/Text.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kSecond = 1000;
constexpr std::int64_t kDay = 86400 * kSecond;

constexpr struct {
    int code;
    std::string_view words;
} kResults[] = {
    {QEL_FAILED, "failed"},
    {QEL_OUT_OF_MEMORY, "out of memory, or a bad size"},
    {QEL_CANNOT_OPEN, "a file cannot be opened or created"},
    {QEL_SHORT_READ, "fewer bytes were read than the file holds"},
    {QEL_SHORT_WRITE, "fewer bytes were written than asked for"},
    {QEL_CANNOT_DELETE, "a file cannot be deleted"},
    {QEL_STORAGE_NOT_OWNED, "external storage cannot grow"},
    {QEL_MALFORMED, "malformed text or number"},
    {QEL_END_OF_INPUT, "no more input"},
    {QEL_OUTPUT_TOO_SMALL, "the buffer cannot hold the result"},
    {QEL_READ_PAST_END, "a read past the end of a stream"},
    {QEL_NOT_INITIALIZED, "not initialised, or an invalid argument"},
    {QEL_RULE_INEXPRESSIBLE, "a rule part that a repeat record cannot hold"},
    {QEL_RULE_UNSUPPORTED, "a frequency or rule part that is not supported"},
    {QEL_REPEAT_ENGINE, "the repeat engine failed"},
};

// Takes a number of `digits` digits and the text after it off `rest`.
bool take(std::string_view& rest, std::size_t digits, std::string_view after, int& number) {
    if (rest.size() < digits + after.size()) return false;
    const auto [end, failure] = std::from_chars(rest.data(), rest.data() + digits, number);
    if (failure != std::errc() || end != rest.data() + digits || number < 0) return false;
    if (rest.substr(digits, after.size()) != after) return false;
    rest.remove_prefix(digits + after.size());
    return true;
}

std::int64_t millisecondsOf(const std::array<int, 6>& fields) {
    constexpr std::array<int, 12> kBefore = {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335};
    const auto [month, day, hour, minute, second, millisecond] = fields;
    const std::int64_t days = kBefore[static_cast<std::size_t>(month - 1)] + day - 1;
    return days * kDay + ((hour * 60 + minute) * 60 + second) * kSecond + millisecond;
}

bool areValid(const std::array<int, 6>& fields) {
    return fields[0] >= 1 && fields[0] <= 12 && fields[1] >= 1 && fields[1] <= 31;
}

// Takes "06/15 14:02:11.123 001: " off `rest`; false when it does not begin with a stamp.
bool takeStamp(std::string_view& rest, std::string& stamp, std::int64_t& at) {
    std::array<int, 6> fields{};
    std::string_view after = rest;
    int number = 0;
    if (!take(after, 2, "/", fields[0]) || !take(after, 2, " ", fields[1]) ||
        !take(after, 2, ":", fields[2]) || !take(after, 2, ":", fields[3]) ||
        !take(after, 2, ".", fields[4]) || !take(after, 3, " ", fields[5]) || !areValid(fields))
        return false;
    const std::size_t end = after.find(": ");
    if (end == std::string_view::npos || end < 3 || !take(after, end, ": ", number)) return false;
    constexpr std::size_t kStamp = 18;
    stamp = rest.substr(0, kStamp);
    at = millisecondsOf(fields);
    rest = after;
    return true;
}

// "[1A2C] "
bool takeThread(std::string_view& rest, std::string& thread) {
    const std::size_t end = rest.find("] ");
    if (!rest.starts_with('[') || end == std::string_view::npos || end > 17) return false;
    thread = rest.substr(1, end - 1);
    if (thread.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) return false;
    rest.remove_prefix(end + 2);
    return true;
}

// "Error no-such-file.vcs.2005 at MyModule line 18"
void readError(TraceMessage& message, std::string_view text) {
    constexpr std::string_view kWord = "Error ";
    const std::size_t place = text.rfind(" at ");
    if (!text.starts_with(kWord) || place == std::string_view::npos || place < kWord.size()) return;
    const std::string_view what = text.substr(kWord.size(), place - kWord.size());
    const std::size_t dot = what.rfind('.');
    const std::string_view number = dot == std::string_view::npos ? what : what.substr(dot + 1);
    const auto [end, failure] =
        std::from_chars(number.data(), number.data() + number.size(), message.code);
    if (failure != std::errc() || end != number.data() + number.size()) return;
    message.isError = true;
    if (dot != std::string_view::npos) message.detail = what.substr(0, dot);
    message.place = text.substr(place + 4);
}

TraceMessage messageOf(std::string_view line) {
    TraceMessage message;
    std::string_view rest = line;
    // The line before a SyncML document has a stamp and no thread.
    const bool hasThread = takeThread(rest, message.thread);
    if (!takeStamp(rest, message.stamp, message.at)) {
        message.thread.clear();
        message.text = line;
        return message;
    }
    if (!hasThread) {
        message.text = rest;
        return message;
    }
    // An error has the stamp of its own moment after that of its line.
    std::string_view inner = rest;
    std::string stamp;
    std::int64_t at = 0;
    if (takeStamp(inner, stamp, at)) readError(message, inner);
    message.text = message.isError ? inner : rest;
    message.isStart =
        rest.starts_with(" -- ") &&
        (rest.find(" Log File, TracingOptions=") != rest.npos || rest.ends_with(" Log File --"));
    return message;
}

}  // namespace

std::string_view resultWords(int code) {
    for (const auto& [known, words] : kResults)
        if (known == code) return words;
    return {};
}

std::optional<std::int64_t> traceTime(std::string_view text) {
    std::array<int, 6> fields{};
    std::string whole(text);
    constexpr std::string_view kFrom = "01/01 00:00:00.000";
    if (whole.size() > kFrom.size()) return std::nullopt;
    whole += kFrom.substr(whole.size());
    std::string_view rest = whole;
    if (!take(rest, 2, "/", fields[0]) || !take(rest, 2, " ", fields[1]) ||
        !take(rest, 2, ":", fields[2]) || !take(rest, 2, ":", fields[3]) ||
        !take(rest, 2, ".", fields[4]) || !take(rest, 3, "", fields[5]) || !areValid(fields))
        return std::nullopt;
    return millisecondsOf(fields);
}

bool looksLikeTrace(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        if (!messageOf(text.substr(0, end)).stamp.empty()) return true;
        text.remove_prefix(end + 1);
    }
    return false;
}

TraceLog::TraceLog(std::string name, std::unique_ptr<std::istream> stream)
    : name_(std::move(name)), files_{name_}, at_(1), stream_(std::move(stream)), isFile_(false) {}

TraceLog::TraceLog(const std::string& name) : name_(name) {
    std::error_code unknown;
    if (lowerCase(name).ends_with(".log")) {
        const std::string base = name.substr(0, name.size() - 4);
        for (const char digit : std::string_view("fedcba9876543210"))
            if (fs::is_regular_file(pathOf(base + ".bk" + digit), unknown))
                files_.push_back(base + ".bk" + digit);
    }
    if (fs::is_regular_file(pathOf(name), unknown) || files_.empty()) files_.push_back(name);
    if (openNext()) return;
    throw InputError(name +
                     ": cannot be read; see that the name is right and that you may read it");
}

void TraceLog::beginNear(std::int64_t at) {
    last_ = at;
    year_ = at / kTraceYear;
}

bool TraceLog::openNext() {
    if (at_ >= files_.size()) return false;
    const fs::path path = pathOf(files_[at_]);
    auto next = std::make_unique<std::ifstream>(path, std::ios::binary);
    if (!*next || next->peek() == std::ifstream::traits_type::eof()) {
        // An empty log is a log all the same; a directory is not.
        std::error_code unknown;
        if (!next->is_open() || !fs::is_regular_file(path, unknown)) return false;
        next->clear();
    }
    ++at_;
    stream_ = std::move(next);
    id_ = platform::identityOf(path);
    line_ = 0;
    partial_.clear();
    return true;
}

bool TraceLog::readLine(std::string& line) {
    for (;;) {
        stream_->clear();
        std::string more;
        std::getline(*stream_, more);
        const bool whole = !stream_->eof();
        partial_ += more;
        if (whole) {
            line = std::exchange(partial_, {});
            if (line.ends_with('\r')) line.pop_back();
            ++line_;
            return true;
        }
        // At the end of the log itself: another one has its name when it became a backup.
        const bool isLast = at_ >= files_.size();
        const bool rotated = isLast && isFile_ && platform::identityOf(pathOf(name_)) != id_;
        if (isLast && !rotated) return false;
        if (rotated) files_.push_back(name_);
        const std::string rest = std::exchange(partial_, {});
        if (!openNext()) return false;
        if (rest.empty()) continue;
        // The last line of a backup that breaks off.
        line = rest;
        return true;
    }
}

std::optional<TraceMessage> TraceLog::next() {
    std::string line;
    do {
        if (!readLine(line)) return std::nullopt;
    } while (line.empty());
    return take(line);
}

std::optional<TraceMessage> TraceLog::rest() {
    if (partial_.empty()) return std::nullopt;
    ++line_;
    return take(std::exchange(partial_, {}));
}

TraceMessage TraceLog::take(const std::string& line) {
    TraceMessage message = messageOf(line);
    message.file = files_[at_ - 1];
    message.line = line_;
    if (!message.stamp.empty()) {
        // A stamp has no year: half a year back is a new one.
        if (year_ * kTraceYear + message.at < last_ - kTraceYear / 2) ++year_;
        last_ = year_ * kTraceYear + message.at;
    }
    message.at = last_;
    return message;
}

std::map<std::string, std::string> traceOptionsBeside(const std::string& log) {
    std::map<std::string, std::string> options;
    std::ifstream file(pathOf(log).parent_path() / "BxOptions.opt", std::ios::binary);
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r')) line.pop_back();
        const std::size_t equals = line.find('=');
        if (line.starts_with('['))
            inside = lowerCase(line) == "[logsettings]";
        else if (inside && equals != std::string::npos)
            options.emplace(line.substr(0, equals), line.substr(equals + 1));
    }
    return options;
}

}  // namespace qel::cli
