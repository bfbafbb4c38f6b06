#include "calendar/lines/LineReader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kLongestHead = 8192;
constexpr std::size_t kLongestMark = 3;

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

// What the part of a line before its value says of the value's encoding. Folds may still be in it.
LineReader::LineEncoding LineReader::encodingBefore(std::size_t colon, std::string_view text) {
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

void LineReader::write(std::string_view bytes) {
    bytesWritten_ += bytes.size();
    if (started_) {
        take(bytes);
    } else if (own_.empty() && bytes.size() >= kLongestMark) {
        start(bytes);
    } else {
        // A mark may come in pieces.
        own_ += bytes;
        if (own_.size() >= kLongestMark) start(own_);
    }
}

void LineReader::end() {
    if (!started_) start(own_);
    ended_ = true;
}

void LineReader::take(std::string_view bytes) {
    chunk_ = bytes;
    at_ = 0;
    if (fileEncoding_ != FileEncoding::Bytes) decodeUtf16();
    lineFeed_ = find('\n');
    carriageReturn_ = find('\r');
}

void LineReader::start(std::string_view bytes) {
    started_ = true;
    std::size_t mark = 0;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        mark = 3;
    } else if (bytes.starts_with("\xFF\xFE")) {
        fileEncoding_ = FileEncoding::Utf16LittleEndian;
        mark = 2;
    } else if (bytes.starts_with("\xFE\xFF")) {
        fileEncoding_ = FileEncoding::Utf16BigEndian;
        mark = 2;
    } else if (bytes.starts_with(std::string_view("B\0", 2))) {
        // A calendar without a mark still begins with "BEGIN".
        fileEncoding_ = FileEncoding::Utf16LittleEndian;
    } else if (bytes.starts_with(std::string_view("\0B", 2))) {
        fileEncoding_ = FileEncoding::Utf16BigEndian;
    }
    take(bytes.substr(mark));
}

void LineReader::decodeUtf16() {
    const std::string bytes = std::exchange(halfUnit_, {}).append(chunk_.substr(at_));
    own_.clear();
    at_ = 0;
    const auto unitAt = [&](std::size_t at) {
        const unsigned one = static_cast<unsigned char>(bytes[at]);
        const unsigned two = static_cast<unsigned char>(bytes[at + 1]);
        return fileEncoding_ == FileEncoding::Utf16LittleEndian ? one | (two << 8)
                                                                : (one << 8) | two;
    };
    std::size_t at = 0;
    while (at + 2 <= bytes.size()) {
        const unsigned unit = unitAt(at);
        if (unit >= 0xD800 && unit < 0xDC00) {
            if (at + 4 > bytes.size()) break;
            const unsigned low = unitAt(at + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                appendUtf8(own_, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
                at += 4;
                continue;
            }
        }
        appendUtf8(own_, unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit);
        at += 2;
    }
    halfUnit_ = bytes.substr(at);
    chunk_ = own_;
}

std::size_t LineReader::find(char c) const {
    const void* const found = std::memchr(chunk_.data() + at_, c, chunk_.size() - at_);
    if (found == nullptr) return chunk_.size();
    return static_cast<std::size_t>(static_cast<const char*>(found) - chunk_.data());
}

// Where the line at at_ ends in the chunk; the chunk's end when it continues after it.
std::size_t LineReader::lineEnd() {
    if (lineFeed_ < at_) lineFeed_ = find('\n');
    if (carriageReturn_ < at_) carriageReturn_ = find('\r');
    return std::min(lineFeed_, carriageReturn_);
}

// Skips a character that still belongs to the last line end; false when there is none.
bool LineReader::skipsRestOfLineEnd() {
    afterCarriageReturn_ = chunk_[at_] == '\r';
    if (chunk_[at_] != '\n' && chunk_[at_] != '\r') return false;
    ++at_;
    return true;
}

// Adds to the physical line what the chunk has of it. True when that is its end.
bool LineReader::takePiece() {
    const std::size_t end = lineEnd();
    const std::string_view piece = chunk_.substr(at_, end - at_);
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
    if (!whole) return false;
    afterCarriageReturn_ = chunk_[end] == '\r';
    ++at_;
    return true;
}

LineReader::Result LineReader::nextPhysical() {
    if (!inPhysical_) {
        pieces_.clear();
        ahead_ = {};
        aheadCut_ = false;
        hasAhead_ = false;
        anyPhysical_ = false;
        inPhysical_ = true;
    }
    for (;;) {
        if (at_ == chunk_.size()) {
            if (!ended_) return Result::NeedMore;
            break;
        }
        if (afterCarriageReturn_ && skipsRestOfLineEnd()) continue;
        anyPhysical_ = true;
        if (takePiece()) break;
    }
    inPhysical_ = false;
    hasAhead_ = anyPhysical_;
    if (!hasAhead_) return Result::End;
    ++aheadNumber_;
    return Result::Line;
}

void LineReader::append(bool folded) {
    // A fold costs memory too, however little there is between two of them.
    constexpr std::size_t kFoldCost = 4 * sizeof(std::size_t);
    const std::size_t used = line_.text.size() + line_.folds.size() * kFoldCost;
    const std::size_t room = kLongestLine - std::min(used, kLongestLine);
    line_.cut = line_.cut || aheadCut_ || ahead_.size() > room;
    if (folded && room > 0) line_.folds.push_back(line_.text.size());
    line_.text += ahead_.substr(0, room);
}

LineReader::Result LineReader::next() {
    if (!inLine_) {
        while (!hasAhead_ || trimmed(ahead_).empty()) {
            const Result result = nextPhysical();
            if (result != Result::Line) return result;
        }
        beginLine();
    }
    for (;;) {
        const Result result = nextPhysical();
        if (result == Result::NeedMore) return result;
        if (result == Result::End || !join()) break;
    }
    finishLine();
    return Result::Line;
}

void LineReader::beginLine() {
    line_.folds.clear();
    line_.narrowest = 0;
    line_.widest = 0;
    line_.openEnd = false;
    line_.number = aheadNumber_;
    line_.text = ahead_;
    line_.cut = aheadCut_;
    line_.colon = findColon(line_.text);
    width_ = line_.text.size();
    encoding_ = encodingBefore(line_.colon, line_.text);
    inLine_ = true;
    joined_ = false;
}

// Adds the physical line to the joined one; false when another one begins with it.
bool LineReader::join() {
    const std::size_t soft =
        encoding_ == LineEncoding::QuotedPrintable ? softBreak(line_.text) : std::string::npos;
    if (soft != std::string::npos) {
        line_.text.erase(soft);
        line_.openEnd = isComponentMark(ahead_);
        if (line_.openEnd) return false;
        append(false);
    } else if (encoding_ == LineEncoding::Base64 && isBase64Text(trimmed(ahead_))) {
        ahead_ = trimmed(ahead_);
        append(false);
    } else if (!ahead_.empty() && (ahead_.front() == ' ' || ahead_.front() == '\t')) {
        line_.narrowest = line_.folds.empty() ? width_ : std::min(line_.narrowest, width_);
        line_.widest = std::max(line_.widest, width_);
        append(true);
    } else {
        return false;
    }
    width_ = ahead_.size();
    joined_ = true;
    // A property's name and parameters are not that long; looking on would take time.
    if (line_.colon == std::string::npos && line_.text.size() < kLongestHead) {
        line_.colon = findColon(line_.text);
        encoding_ = encodingBefore(line_.colon, line_.text);
    }
    return true;
}

void LineReader::finishLine() {
    inLine_ = false;
    // Quotes that do not close before the end of the first line may close after it.
    if (joined_) line_.colon = findColon(line_.text);
    if (hasAhead_ || encoding_ != LineEncoding::QuotedPrintable) return;
    const std::size_t soft = softBreak(line_.text);
    if (soft == std::string::npos) return;
    line_.text.erase(soft);
    line_.openEnd = true;
}

}  // namespace qel::calendar
