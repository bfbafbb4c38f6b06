#include "calendar/converter/SourceLines.h"

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"

namespace qel::calendar {

namespace {

// More than this is not kept between two entries.
constexpr std::size_t kMostHeld = std::size_t{8} << 20;
constexpr std::size_t kForgetFrom = std::size_t{64} << 10;

}  // namespace

std::size_t findLineEnd(std::string_view text, std::size_t at) {
    const std::size_t end = findAny<'\n', '\r'>(text, at);
    return end == text.size() ? std::string_view::npos : end;
}

void SourceLines::add(std::string_view bytes) {
    if (unusable_) return;
    unusable_ = bytes.find('\0') != std::string_view::npos;
    if (held_.size() - at_ > kMostHeld) {
        std::string_view line;
        while (next(line)) {
        }
        // A line that does not end: no entry shows it.
        if (held_.size() - at_ > kMostHeld) {
            unusable_ = true;
            held_ = {};
            at_ = 0;
            return;
        }
    }
    if (at_ >= kForgetFrom) {
        held_.erase(0, at_);
        at_ = 0;
    }
    held_ += bytes;
}

// The next line without its end; at_ is after that then. False when there is none.
bool SourceLines::next(std::string_view& line) {
    lastEnd_.skipRest(held_, at_);
    if (lastEnd_.takeEmptyLine(held_, at_)) {
        line = {};
        ++number_;
        return true;
    }
    const std::size_t end = findLineEnd(held_, at_);
    if (end == std::string::npos) return false;
    line = std::string_view(held_).substr(at_, end - at_);
    at_ = end + 1;
    lastEnd_.begin(held_[end]);
    lastEnd_.skipRest(held_, at_);
    ++number_;
    return true;
}

SourceLines::Lines SourceLines::entry(std::size_t number, std::string_view component,
                                      std::size_t most) {
    if (unusable_ || number < number_) return {};
    std::string_view line;
    while (number_ < number && next(line)) {
    }
    lastEnd_.skipRest(held_, at_);
    const std::string last = "END:" + std::string(component);
    const std::size_t begin = at_;
    bool cut = true;
    while (cut && at_ - begin < most && next(line)) cut = !equalsIgnoreCase(trimmed(line), last);
    return {std::string_view(held_).substr(begin, at_ - begin), cut};
}

}  // namespace qel::calendar
