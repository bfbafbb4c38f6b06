#include "calendar/converter/SourceLines.h"

#include <utility>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

// More than this is not kept between two entries.
constexpr std::size_t kMostHeld = std::size_t{8} << 20;
constexpr std::size_t kForgetFrom = std::size_t{64} << 10;

}  // namespace

ByteSource SourceLines::through(ByteSource source) {
    held_.clear();
    at_ = 0;
    number_ = 1;
    unusable_ = false;
    return [this, source = std::move(source)](char* bytes, std::size_t room) {
        const std::size_t got = source(bytes, room);
        hear({bytes, got});
        return got;
    };
}

void SourceLines::hear(std::string_view bytes) {
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
    forget();
    held_ += bytes;
}

void SourceLines::forget() {
    if (at_ < kForgetFrom) return;
    held_.erase(0, at_);
    at_ = 0;
}

// Line ends as the converter's reader counts them: LF, CR LF, CR, CR CR LF.
bool SourceLines::next(std::string_view& line) {
    if (at_ >= held_.size()) return false;
    const std::size_t end = held_.find_first_of("\r\n", at_);
    if (end == std::string::npos) return false;
    line = std::string_view(held_).substr(at_, end - at_);
    at_ = end;
    while (at_ < held_.size() && held_[at_] == '\r') ++at_;
    if (at_ < held_.size() && held_[at_] == '\n') ++at_;
    ++number_;
    return true;
}

std::string SourceLines::entry(std::size_t number, std::string_view component, std::size_t most) {
    std::string text;
    if (unusable_ || number < number_) return text;
    std::string_view line;
    while (number_ < number && next(line)) {
    }
    const std::string last = "END:" + std::string(component);
    while (text.size() < most && next(line)) {
        text.append(line).append("\n");
        if (equalsIgnoreCase(trimmed(line), last)) break;
    }
    return text;
}

}  // namespace qel::calendar
