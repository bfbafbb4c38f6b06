#include "calendar/converter/SourceLines.h"

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kForgetFrom = std::size_t{64} << 10;

// Sets `line` to the next line of `text` without its end, and `at` to the one after it. False
// without a whole line.
bool nextLine(std::string_view text, std::size_t& at, LineEnd& lastEnd, std::string_view& line) {
    lastEnd.skipRest(text, at);
    if (lastEnd.takeEmptyLine(text, at)) {
        line = {};
        return true;
    }
    const std::size_t end = findLineEnd(text, at);
    if (end == std::string_view::npos) return false;
    line = text.substr(at, end - at);
    at = end + 1;
    lastEnd.begin(text[end]);
    lastEnd.skipRest(text, at);
    return true;
}

}  // namespace

std::size_t findLineEnd(std::string_view text, std::size_t at) {
    const std::size_t end = findAny<'\n', '\r'>(text, at);
    return end == text.size() ? std::string_view::npos : end;
}

void SourceLines::add(std::string_view bytes) {
    if (unusable_) return;
    const std::size_t nul = bytes.find('\0');
    unusable_ = nul != std::string_view::npos;
    bytes = bytes.substr(0, nul);
    if (held_.size() - at_ > kMostHeld) {
        std::string_view line;
        while (next(line)) {
        }
        // A line that does not end: its beginning is forgotten.
        if (held_.size() - at_ > kMostHeld) {
            held_ = {};
            at_ = 0;
        }
    }
    if (at_ >= kForgetFrom) {
        held_.erase(0, at_);
        at_ = 0;
    }
    held_ += bytes;
}

void SourceLines::forget(std::size_t number) {
    std::string_view line;
    while (number_ < number && next(line)) {
    }
}

void SourceLines::goOn(std::size_t number) {
    held_.clear();
    at_ = 0;
    number_ = number;
    lastEnd_ = {};
}

// The next line of held_.
bool SourceLines::next(std::string_view& line) {
    if (!nextLine(held_, at_, lastEnd_, line)) return false;
    ++number_;
    return true;
}

SourceLines::Lines SourceLines::entry(std::size_t first, std::size_t last, std::size_t most) {
    if (first < number_) return {};
    std::string_view line;
    while (number_ < first && next(line)) {
    }
    lastEnd_.skipRest(held_, at_);
    const std::size_t begin = at_;
    while (number_ <= last && at_ - begin < most && next(line)) {
    }
    if (unusable_ && number_ <= last && at_ - begin < most) return {};
    const Lines lines{std::string_view(held_).substr(begin, at_ - begin), number_ <= last};
    while (number_ <= last && next(line)) {
    }
    return at_ - begin > kMostHeld ? Lines() : lines;
}

SourceLines::Lines SourceLines::firstOf(std::string_view text, std::size_t count,
                                        std::size_t most) {
    std::string_view line;
    std::size_t at = 0;
    LineEnd lastEnd;
    while (count > 0 && at < most && nextLine(text, at, lastEnd, line)) --count;
    return {text.substr(0, at), count != 0};
}

}  // namespace qel::calendar
