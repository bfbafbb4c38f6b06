#include "calendar/lines/LineReader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kChunk = 65536;
constexpr std::size_t kFirstChunk = 4096;  // many files are no longer than this
constexpr std::size_t kLongestHead = 8192;

void appendUtf8(std::string& text, unsigned code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

bool isBase64Text(std::string_view text) {
    return !text.empty() &&
           std::all_of(
               text.begin(), text.end(),
               [](char c) { return isAlpha(c) || isDigit(c) || c == '+' || c == '/' || c == '='; });
}

// The first line of a component or its last; never the rest of a quoted-printable value.
bool isComponentMark(std::string_view text) {
    text = trimmed(text);
    return startsWithIgnoreCase(text, "BEGIN:V") || startsWithIgnoreCase(text, "END:V");
}

// Where the "=" of a soft line break at the end of `text` is, else npos. Blanks may follow it.
std::size_t softBreak(std::string_view text) {
    std::size_t end = text.size();
    while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    return end > 0 && text[end - 1] == '=' ? end - 1 : std::string_view::npos;
}

enum class LineEncoding { Plain, QuotedPrintable, Base64 };

// What the part of a line before its value says of the value's encoding. Folds may still be in it.
LineEncoding encodingBefore(std::size_t colon, std::string_view text) {
    const std::size_t parameters = text.find(';');
    if (colon == std::string_view::npos || parameters >= colon) return LineEncoding::Plain;
    std::string_view head = text.substr(parameters + 1, colon - parameters - 1);
    while (!head.empty()) {
        std::string_view value = nextField(head, ';');
        const std::string_view name = trimmed(nextField(value, '='));
        value = trimmed(value);
        if (value.empty())
            value = name;
        else if (!equalsIgnoreCase(name, "ENCODING"))
            continue;
        if (equalsIgnoreCase(value, "QUOTED-PRINTABLE")) return LineEncoding::QuotedPrintable;
        if (equalsIgnoreCase(value, "BASE64") || equalsIgnoreCase(value, "B"))
            return LineEncoding::Base64;
    }
    return LineEncoding::Plain;
}

}  // namespace

std::size_t findColon(std::string_view text) {
    static_assert('"' < ':');
    bool inQuotes = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] > ':') continue;  // letters, nearly always
        if (text[at] == ':' && !inQuotes) return at;
        if (text[at] == '"') inQuotes = !inQuotes;
    }
    return text.find(':');
}

LineReader::LineReader(ByteSource source) : source_(std::move(source)) {}

bool LineReader::fill() {
    // Called only when the chunk is used up.
    at_ = 0;
    const std::size_t room = started_ ? kChunk : kFirstChunk;
    chunk_.resize(room);
    const std::size_t got = source_(chunk_.data(), room);
    chunk_.resize(got);
    bytesRead_ += got;
    if (got == 0) return false;
    if (!started_) {
        // A mark of three bytes may come in pieces.
        while (chunk_.size() < 3) {
            char byte = 0;
            if (source_(&byte, 1) == 0) break;
            ++bytesRead_;
            chunk_ += byte;
        }
        started_ = true;
        detectEncoding();
    }
    if (encoding_ != Encoding::Bytes) decodeUtf16();
    lineFeed_ = find('\n');
    carriageReturn_ = find('\r');
    return true;
}

void LineReader::detectEncoding() {
    if (chunk_.starts_with("\xEF\xBB\xBF")) {
        at_ = 3;
    } else if (chunk_.starts_with("\xFF\xFE")) {
        encoding_ = Encoding::Utf16LittleEndian;
        chunk_.erase(0, 2);
    } else if (chunk_.starts_with("\xFE\xFF")) {
        encoding_ = Encoding::Utf16BigEndian;
        chunk_.erase(0, 2);
    } else if (chunk_.starts_with(std::string_view("B\0", 2))) {
        // A calendar without a mark still begins with "BEGIN".
        encoding_ = Encoding::Utf16LittleEndian;
    } else if (chunk_.starts_with(std::string_view("\0B", 2))) {
        encoding_ = Encoding::Utf16BigEndian;
    }
}

void LineReader::decodeUtf16() {
    const std::string bytes = std::exchange(halfUnit_, {}) + std::exchange(chunk_, {});
    const auto unitAt = [&](std::size_t at) {
        const unsigned one = static_cast<unsigned char>(bytes[at]);
        const unsigned two = static_cast<unsigned char>(bytes[at + 1]);
        return encoding_ == Encoding::Utf16LittleEndian ? one | (two << 8) : (one << 8) | two;
    };
    std::size_t at = 0;
    while (at + 2 <= bytes.size()) {
        const unsigned unit = unitAt(at);
        if (unit >= 0xD800 && unit < 0xDC00) {
            if (at + 4 > bytes.size()) break;
            const unsigned low = unitAt(at + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                appendUtf8(chunk_, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
                at += 4;
                continue;
            }
        }
        appendUtf8(chunk_, unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit);
        at += 2;
    }
    halfUnit_ = bytes.substr(at);
}

std::size_t LineReader::find(char c) const {
    const void* const found = std::memchr(chunk_.data() + at_, c, chunk_.size() - at_);
    if (found == nullptr) return chunk_.size();
    return static_cast<std::size_t>(static_cast<const char*>(found) - chunk_.data());
}

// Where the line at at_ ends in the chunk; the chunk's end when it goes on behind it.
std::size_t LineReader::lineEnd() {
    if (lineFeed_ < at_) lineFeed_ = find('\n');
    if (carriageReturn_ < at_) carriageReturn_ = find('\r');
    return std::min(lineFeed_, carriageReturn_);
}

bool LineReader::nextPhysical() {
    pieces_.clear();
    ahead_ = {};
    aheadCut_ = false;
    hasAhead_ = false;
    for (;;) {
        if (at_ == chunk_.size()) {
            if (fill()) continue;
            break;
        }
        if (afterCarriageReturn_) {
            afterCarriageReturn_ = false;
            if (chunk_[at_] == '\n' || chunk_[at_] == '\r') {
                afterCarriageReturn_ = chunk_[at_] == '\r';
                ++at_;
                continue;
            }
        }
        hasAhead_ = true;
        const std::size_t end = lineEnd();
        const std::string_view piece = std::string_view(chunk_).substr(at_, end - at_);
        at_ = end;
        const bool whole = end < chunk_.size();
        if (whole && pieces_.empty()) {
            ahead_ = piece;
        } else {
            const std::size_t room = kLongestLine - pieces_.size();
            aheadCut_ = aheadCut_ || piece.size() > room;
            pieces_ += piece.substr(0, room);
            ahead_ = pieces_;
        }
        if (!whole) continue;
        afterCarriageReturn_ = chunk_[end] == '\r';
        ++at_;
        break;
    }
    if (hasAhead_) ++aheadNumber_;
    return hasAhead_;
}

void LineReader::append(RawLine& line, bool folded) {
    // A fold costs memory too, however little stands between two of them.
    constexpr std::size_t kFoldCost = 4 * sizeof(std::size_t);
    const std::size_t used = line.text.size() + line.folds.size() * kFoldCost;
    const std::size_t room = kLongestLine - std::min(used, kLongestLine);
    line.cut = line.cut || aheadCut_ || ahead_.size() > room;
    if (folded && room > 0) line.folds.push_back(line.text.size());
    line.text += ahead_.substr(0, room);
}

bool LineReader::next(RawLine& line) {
    line.text.clear();
    line.folds.clear();
    line.narrowest = 0;
    line.widest = 0;
    line.cut = false;
    line.openEnd = false;
    if (!hasAhead_ && !nextPhysical()) return false;
    while (trimmed(ahead_).empty())
        if (!nextPhysical()) return false;
    line.number = aheadNumber_;
    line.text = ahead_;
    line.cut = aheadCut_;
    std::size_t width = line.text.size();
    line.colon = findColon(line.text);
    LineEncoding encoding = encodingBefore(line.colon, line.text);
    bool joined = false;
    while (nextPhysical()) {
        const std::size_t soft =
            encoding == LineEncoding::QuotedPrintable ? softBreak(line.text) : std::string::npos;
        const bool folded = !ahead_.empty() && (ahead_.front() == ' ' || ahead_.front() == '\t');
        if (soft != std::string::npos) {
            line.text.erase(soft);
            if (isComponentMark(ahead_)) {
                line.openEnd = true;
                break;
            }
            append(line, false);
        } else if (encoding == LineEncoding::Base64 && isBase64Text(trimmed(ahead_))) {
            ahead_ = trimmed(ahead_);
            append(line, false);
        } else if (folded) {
            line.narrowest = line.folds.empty() ? width : std::min(line.narrowest, width);
            line.widest = std::max(line.widest, width);
            append(line, true);
        } else {
            break;
        }
        width = ahead_.size();
        joined = true;
        // A property's name and parameters are not that long; looking on would take time.
        if (line.colon == std::string::npos && line.text.size() < kLongestHead) {
            line.colon = findColon(line.text);
            encoding = encodingBefore(line.colon, line.text);
        }
    }
    // Quotes that do not close before the end of the first line may close behind it.
    if (joined) line.colon = findColon(line.text);
    if (!hasAhead_ && encoding == LineEncoding::QuotedPrintable) {
        const std::size_t soft = softBreak(line.text);
        if (soft != std::string::npos) {
            line.text.erase(soft);
            line.openEnd = true;
        }
    }
    return true;
}

}  // namespace qel::calendar
