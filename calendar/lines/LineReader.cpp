#include "calendar/lines/LineReader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/base/Text.h"
#include "calendar/lines/Property.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kLongestHead = 8192;
constexpr std::size_t kLongestMark = 3;

bool isBase64Text(std::string_view text) {
    return !text.empty() &&
           std::all_of(
               text.begin(), text.end(),
               [](char c) { return isAlpha(c) || isDigit(c) || c == '+' || c == '/' || c == '='; });
}

// Where the "=" of a soft line break at the end of `text` is, else npos. Blanks may follow it. What
// is before `begin` has been looked at.
std::size_t softBreak(std::string_view text, std::size_t begin) {
    std::size_t end = text.size();
    while (end > begin && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    return end > begin && text[end - 1] == '=' ? end - 1 : std::string_view::npos;
}

// Says that a text needs no guess; what is in it is believed.
constexpr std::string_view kUtf8Label = "CHARSET=UTF-8";

bool isCapital(char c) {
    return c >= 'A' && c <= 'Z';
}

bool hasLowerCase(std::string_view text) {
    return std::any_of(
        text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

// False for a line that surely has no name of those that takesBareLines() looks for.
bool mayBeText(std::string_view line) {
    if (line.size() < 2) return false;
    const char second = toUpper(line[1]);
    switch (toUpper(line[0])) {
        case 'D':
        case 'R':
            return second == 'E';
        case 'S':
            return second == 'U';
        case 'C':
            return second == 'O' || second == 'A';
        case 'L':
        case 'B':
            return second == 'O';
        case 'A':
            return second == 'T';
        default:
            return toUpper(line[0]) == 'X' || isBlank(line[0]);
    }
}

// How long the name is in NAME: or NAME; in capitals, as properties nearly always begin; else 0.
std::size_t usualNameLength(std::string_view line) {
    const std::size_t length = capitalsLength(line);
    const bool begins = length < line.size() && (line[length] == ':' || line[length] == ';');
    return begins ? length : 0;
}

bool beginsProperty(std::string_view line) {
    return usualNameLength(line) != 0;
}

// The name that a line begins with, as far as it has the form NAME: or NAME;PARAMETER: of one.
std::string_view nameOf(std::string_view line) {
    std::size_t length = 0;
    while (length < line.size() && (isAlpha(line[length]) || isDigit(line[length]) ||
                                    line[length] == '-' || line[length] == '_'))
        ++length;
    std::size_t after = length;
    while (after < line.size() && isFoldBlank(line[after])) ++after;
    if (length == 0 || after == line.size()) return {};
    const bool ends = line[after] == ':' || (line[after] == ';' && findColon(line) != line.npos);
    return ends ? line.substr(0, length) : std::string_view();
}

// True for NAME: and NAME; of a property that calendars have, in capitals.
bool beginsKnownProperty(std::string_view line) {
    if (!beginsProperty(line)) return false;
    const std::string_view name = line.substr(0, line.find_first_of(":;"));
    return name.starts_with("X-") || propertyName(name) != PropertyName::Unknown;
}

// True for such a property after the name of a group and a dot.
bool beginsGrouped(std::string_view line) {
    std::size_t dot = line.find_first_of(".:; \t");
    for (; dot != std::string_view::npos && line[dot] == '.'; dot = line.find_first_of(".:; \t")) {
        line.remove_prefix(dot + 1);
        if (beginsKnownProperty(line)) return true;
    }
    return false;
}

// The property that a line is of, with which `text` begins; Unknown for a name that is not in
// capitals.
PropertyName nameIn(std::string_view text, const LineMarks& marks) {
    const bool named = marks.nameEnd < text.size() && isCapital(text.front());
    return named ? propertyName(text, marks.nameEnd) : PropertyName::Unknown;
}

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

// The marks that are passed over two at a time, because together they change nothing: those of an
// alarm, with its lines, and the end of an entry with the beginning of the next one.
class PassedMarks {
  public:
    // Without an entry's name only those of alarms.
    explicit PassedMarks(std::string_view entry) {
        if (entry.empty()) return;
        entryEnd_.append("END:").append(entry);
        entryBegin_.append("BEGIN:").append(entry);
    }

    // The length of the mark that `text` begins with; 0 for one that cannot be passed over here.
    [[nodiscard]] std::size_t take(std::string_view text) {
        const std::string_view mark = open()                          ? awaited_
                                      : text.starts_with(kAlarmBegin) ? kAlarmBegin
                                                                      : entryEnd_;
        const bool isLine = !mark.empty() && text.size() > mark.size() && text.starts_with(mark) &&
                            (text[mark.size()] == '\r' || text[mark.size()] == '\n');
        if (!isLine) return 0;
        awaited_ = open()                ? std::string_view()
                   : mark == kAlarmBegin ? kAlarmEnd
                                         : std::string_view(entryBegin_);
        return mark.size();
    }

    // True after the first of two.
    [[nodiscard]] bool open() const { return !awaited_.empty(); }
    [[nodiscard]] bool betweenEntries() const { return open() && awaited_ == entryBegin_; }

  private:
    static constexpr std::string_view kAlarmBegin = "BEGIN:VALARM";
    static constexpr std::string_view kAlarmEnd = "END:VALARM";

    std::string entryEnd_;
    std::string entryBegin_;
    std::string_view awaited_;
};

}  // namespace

bool isComponentMark(std::string_view line) {
    static constexpr std::string_view kNames[] = {"VCALENDAR", "VEVENT",    "VTODO",     "VJOURNAL",
                                                  "VNOTE",     "VTIMEZONE", "VFREEBUSY", "VALARM",
                                                  "STANDARD",  "DAYLIGHT"};
    if (!startsWithIgnoreCase(line, "BEGIN") && !startsWithIgnoreCase(line, "END")) return false;
    const std::string_view word = trimmed(nextField(line, ':'));
    if (!equalsIgnoreCase(word, "BEGIN") && !equalsIgnoreCase(word, "END")) return false;
    const std::string_view begun = trimmed(line.substr(0, line.find_last_not_of(" \t:;") + 1));
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [begun](std::string_view name) { return equalsIgnoreCase(name, begun); });
}

// What the part of a line before its value says of the value's encoding. Folds may still be in it.
LineReader::LineEncoding LineReader::encodingBefore(std::size_t colon, std::string_view text) {
    const std::size_t parameters = text.find(';');
    if (colon == std::string_view::npos || parameters >= colon) return LineEncoding::Plain;
    std::string_view head = text.substr(parameters + 1, colon - parameters - 1);
    while (!head.empty()) {
        std::string_view value = nextField(head, ';');
        const std::size_t equals = value.find('=');
        if (equals != std::string_view::npos) {
            if (!equalsIgnoreCase(trimmed(value.substr(0, equals)), "ENCODING")) continue;
            value.remove_prefix(equals + 1);
        }
        value = trimmed(value);
        if (equalsIgnoreCase(value, "QUOTED-PRINTABLE")) return LineEncoding::QuotedPrintable;
        if (equalsIgnoreCase(value, "BASE64") || equalsIgnoreCase(value, "B"))
            return LineEncoding::Base64;
    }
    return LineEncoding::Plain;
}

void LineReader::write(std::string_view bytes) {
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

bool LineReader::isBetween() const {
    return started_ && fileEncoding_ == FileEncoding::Bytes && lineEnds_ && lastEnd_.isWhole() &&
           at_ == chunk_.size() && !inLine_ && !hasAhead_ && !anyPhysical_;
}

void LineReader::goOn(std::size_t lines, bool indented) {
    chunk_ = {};
    at_ = 0;
    fileEncoding_ = FileEncoding::Bytes;
    started_ = true;
    ended_ = false;
    lineEnds_ = true;
    lastEnd_ = {};
    hasAhead_ = false;
    inPhysical_ = false;
    anyPhysical_ = false;
    inLine_ = false;
    joined_ = false;
    line_.usual = false;
    indexed_ = indexAt_ = 0;
    aheadNumber_ = lines;
    indented_ = indented;
}

void LineReader::take(std::string_view bytes) {
    chunk_ = bytes;
    at_ = 0;
    lineEnds_ = false;
    if (fileEncoding_ != FileEncoding::Bytes) decodeUtf16();
}

void LineReader::start(std::string_view bytes) {
    started_ = true;
    std::size_t mark = 0;
    if (bytes.starts_with("\xFF\xFE")) {
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

// Adds to the physical line what the chunk has of it. True when that is its end.
bool LineReader::takePiece() {
    const std::string_view rest = chunk_.substr(at_);
    marks_ = marksOf(rest);
    const std::string_view piece = rest.substr(0, marks_.end);
    at_ += piece.size();
    const bool whole = piece.size() < rest.size();
    if (whole && pieces_.empty()) {
        ahead_ = piece;
    } else {
        const std::size_t room = kLongestLine - pieces_.size();
        aheadCut_ = aheadCut_ || piece.size() > room;
        pieces_ += piece.substr(0, room);
        ahead_ = pieces_;
    }
    if (!whole) return false;
    lastEnd_.begin(chunk_[at_]);
    ++at_;
    return true;
}

// What is to be known of a physical line that is whole.
void LineReader::markAhead() {
    // A line of several pieces, or without what was in front of it.
    if (ahead_.size() != marks_.end) marks_ = marksOf(ahead_);
    nameAhead();
}

void LineReader::nameAhead() {
    aheadId_ = nameIn(ahead_, marks_);
}

// The next physical line where all of it is in the chunk, as nearly all are. What its name is
// remains to be found.
bool LineReader::takeWhole() {
    if (inPhysical_) return false;
    lastEnd_.skipRest(chunk_, at_);
    if (!lastEnd_.isWhole()) return false;
    const std::string_view rest(chunk_.data() + at_, chunk_.size() - at_);
    const LineMarks marks = marksOf(rest);
    if (marks.end == rest.size()) return false;
    marks_ = marks;
    ahead_ = {rest.data(), marks.end};
    at_ += marks.end;
    lastEnd_.take(chunk_, at_);
    pieces_.clear();
    aheadCut_ = false;
    hasAhead_ = true;
    ++aheadNumber_;
    return true;
}

// Where the line ends that `text` begins with, where it is one to pass over; else 0. `name` is how
// long its name is.
std::size_t LineReader::passedLength(std::string_view text, std::size_t name) {
    const char first = text.front();
    if (!isCapital(first) || first == 'B' || first == 'E') return 0;
    std::size_t colon = name;
    bool soft = false;
    if (text[name] == ';') {
        colon = findAny<':', '"', '\n', '\r'>(text, name);
        if (colon == text.size() || text[colon] != ':') return 0;
        const std::string_view head = text.substr(0, colon);
        const LineEncoding encoding = encodingBefore(colon, head);
        soft = encoding == LineEncoding::QuotedPrintable;
        if (encoding == LineEncoding::Base64 || (soft && head.find(kUtf8Label) == head.npos))
            return 0;
    }
    std::size_t end = findLineEndOrBeyondAscii(text, colon);
    if (end != text.size() && (text[end] & 0x80) != 0) {
        const std::size_t beyond = end;
        end = findAny<'\n', '\r'>(text, end);
        if (colon != name || !isUtf8(text.substr(beyond, end - beyond))) return 0;
    }
    if (end == text.size()) return 0;
    return soft && softBreak(text.substr(0, end), colon) != std::string_view::npos ? 0 : end;
}

void LineReader::passOver(std::string_view entry) {
    // Lines to be passed over need no index.
    leaveIndex();
    passesOver_ = true;
    if (inLine_ || inPhysical_ || !hasAhead_ || !pieces_.empty() || ahead_.empty()) return;
    struct Place {
        std::size_t at;
        std::size_t number;  // of the line that begins there
    };
    const char* const bytes = chunk_.data();
    Place place{static_cast<std::size_t>(ahead_.data() - bytes), aheadNumber_};
    Place before = place;
    PassedMarks marks(entry);
    bool open = false;  // the next line must be the mark that belongs to the last one
    for (std::size_t name = usualNameLength(chunk_.substr(place.at)); name != 0;) {
        const std::string_view text = chunk_.substr(place.at);
        std::size_t length = marks.betweenEntries() ? 0 : passedLength(text, name);
        if (length == 0) length = marks.take(text);
        if (length == 0) break;
        std::size_t next = place.at + length;
        if (bytes[next] == '\r') ++next;
        if (next >= chunk_.size() || bytes[next] != '\n') break;
        ++next;
        // What begins in another way may be the rest of the line.
        name = usualNameLength(chunk_.substr(next));
        if (name == 0) break;
        if (!open) before = place;
        place = {next, place.number + 1};
        open = marks.open();
    }
    if (open) place = before;
    if (place.number == aheadNumber_) return;
    // The last line may go on in the next piece: then the one before it is read as others are.
    const auto lookAt = [this](const Place& line) {
        at_ = line.at;
        aheadNumber_ = line.number - 1;
        lastEnd_.begin('\n');
        return takeWhole();
    };
    if (lookAt(place) || lookAt(before)) nameAhead();
}

LineReader::Result LineReader::nextPhysical() {
    if (takeWhole()) {
        nameAhead();
        return Result::Line;
    }
    if (!inPhysical_) {
        pieces_.clear();
        ahead_ = {};
        marks_ = {};
        aheadCut_ = false;
        hasAhead_ = false;
        anyPhysical_ = false;
        inPhysical_ = true;
    }
    for (;;) {
        lastEnd_.skipRest(chunk_, at_);
        if (at_ == chunk_.size()) {
            if (!ended_ && !(lineEnds_ && inLine_)) return Result::NeedMore;
            break;
        }
        anyPhysical_ = true;
        if (lastEnd_.takeEmptyLine(chunk_, at_) || takePiece()) break;
    }
    inPhysical_ = false;
    hasAhead_ = anyPhysical_;
    if (!hasAhead_) return Result::End;
    ++aheadNumber_;
    markAhead();
    return Result::Line;
}

void LineReader::append(std::string_view text) {
    // A fold costs memory too, however little there is between two of them.
    // The same on every system, so that all cut a line at the same place.
    constexpr std::size_t kFoldCost = 32;
    const std::size_t folds = line_.folds.size() + line_.indents.size();
    const std::size_t used = line_.text.size() + folds * kFoldCost;
    const std::size_t room = kLongestLine - std::min(used, kLongestLine);
    line_.cut = line_.cut || aheadCut_ || text.size() > room;
    line_.text.append(text.substr(0, room));
}

// The line that comes after those of the index, as if each of them had been looked at alone.
void LineReader::leaveIndex() {
    if (indexed_ == 0) return;
    const IndexedLine& last = index_[indexAt_];
    ahead_ = chunk_.substr(last.begin, last.marks.end);
    marks_ = last.marks;
    aheadId_ = last.id;
    at_ = last.next;
    indexed_ = indexAt_ = 0;
}

// Finds the lines from the next one on that are by themselves, as the known name of the line after
// each of them shows. All of them are whole in the chunk. False without one.
bool LineReader::fillIndex() {
    leaveIndex();
    if (inLine_ || inPhysical_ || !hasAhead_ || aheadId_ == PropertyName::Unknown || aheadCut_ ||
        passesOver_ || !pieces_.empty() || !lastEnd_.isWhole())
        return false;
    const char* const bytes = chunk_.data();
    IndexedLine line{static_cast<std::size_t>(ahead_.data() - bytes), at_, marks_, aheadId_};
    for (;;) {
        index_[indexed_++] = line;
        const LineMarks& marks = line.marks;
        if (marks.colon == std::string_view::npos || indexed_ == index_.size()) break;
        if (marks.nameEnd < marks.colon &&
            encodingBefore(marks.colon, {bytes + line.begin, marks.end}) != LineEncoding::Plain)
            break;
        const std::string_view rest(bytes + line.next, chunk_.size() - line.next);
        line.begin = line.next;
        line.marks = marksOf(rest);
        if (line.marks.end == rest.size()) break;
        line.id = nameIn(rest, line.marks);
        if (line.id == PropertyName::Unknown) break;
        line.next += line.marks.end;
        lastEnd_.take(chunk_, line.next);
        if (!lastEnd_.isWhole()) break;
    }
    lastEnd_.begin('\n');
    if (indexed_ < 2) {
        indexed_ = 0;
        return false;
    }
    if (!line_.usual) clearLine();
    line_.usual = true;
    line_.quotedPrintable = false;
    line_.cut = false;
    encoding_ = LineEncoding::Plain;
    return true;
}

LineReader::Result LineReader::next() {
    if (indexAt_ + 1 < indexed_ || fillIndex()) {
        const IndexedLine& line = index_[indexAt_++];
        line_.number = aheadNumber_++;
        line_.text.refer({chunk_.data() + line.begin, line.marks.end});
        line_.id = line.id;
        line_.nameEnd = line.marks.nameEnd;
        line_.colon = line.marks.colon;
        return Result::Line;
    }
    if (!inLine_) {
        while (!hasAhead_ || (aheadId_ == PropertyName::Unknown && trimmed(ahead_).empty())) {
            const Result result = nextPhysical();
            if (result != Result::Line) return result;
        }
        beginLine();
    }
    for (;;) {
        if (takeWhole()) {
            nameAhead();
        } else if (const Result result = nextPhysical(); result == Result::NeedMore) {
            line_.text.keep();
            return result;
        } else if (result == Result::End) {
            break;
        }
        if (!join()) break;
    }
    finishLine();
    return Result::Line;
}

// A usual line leaves nothing behind.
void LineReader::clearLine() {
    line_.folds.clear();
    line_.indents.clear();
    line_.indentShown = false;
    line_.swallowed = 0;
    line_.group = 0;
    line_.bare = 0;
    line_.openEnd = false;
    line_.indented = false;
}

// What stands before a line's name.
void LineReader::trimAhead() {
    // Files that were put together have marks within.
    while (!ahead_.empty() && ahead_.front() == kUtf8Mark.front() && ahead_.starts_with(kUtf8Mark))
        ahead_.remove_prefix(kUtf8Mark.size());
    if (!ahead_.empty() && isFoldBlank(ahead_.front()) && isComponentMark(trimmed(ahead_))) {
        ahead_ = trimmed(ahead_);
        line_.indented = !indented_;
        indented_ = true;
    }
    if (ahead_.size() != marks_.end) markAhead();
}

void LineReader::beginLine() {
    if (!line_.usual) clearLine();
    line_.usual = false;
    line_.number = aheadNumber_;
    // A known name begins its line.
    if (aheadId_ == PropertyName::Unknown) trimAhead();
    line_.text.refer(ahead_);
    if (!pieces_.empty()) line_.text.keep();
    line_.cut = aheadCut_;
    line_.colon = marks_.colon;
    line_.nameEnd = marks_.nameEnd;
    line_.id = aheadId_;
    width_ = ahead_.size();
    headEnd_ = marks_.colon == std::string::npos ? 0 : width_;
    pieceBegin_ = 0;
    softBreaks_ = 0;
    emptyLines_ = 0;
    encoding_ =
        marks_.nameEnd < marks_.colon ? encodingBefore(marks_.colon, ahead_) : LineEncoding::Plain;
    inLine_ = true;
    joined_ = false;
}

// Adds the physical line to the joined one; false when another one begins with it.
bool LineReader::join() {
    // Most lines are done here.
    if (encoding_ == LineEncoding::Plain && aheadId_ != PropertyName::Unknown &&
        line_.colon != std::string_view::npos)
        return false;
    if (encoding_ == LineEncoding::Plain && !ahead_.empty() && !isFoldBlank(ahead_.front()) &&
        line_.bare == 0 && !mayBeText(line_.text.view()))
        return false;
    const std::size_t soft = encoding_ == LineEncoding::QuotedPrintable
                                 ? softBreak(line_.text.view(), pieceBegin_)
                                 : std::string::npos;
    const std::size_t begin = line_.text.size();
    if (soft != std::string::npos) {
        if (!joinSoft(soft)) return false;
    } else if (encoding_ == LineEncoding::Base64 && isBase64Text(trimmed(ahead_))) {
        ahead_ = trimmed(ahead_);
        append(ahead_);
    } else if (!ahead_.empty() && isFoldBlank(ahead_.front())) {
        if (startsIndented()) return false;
        // One blank is the fold's.
        if (indented_ && !trimmed(ahead_).empty())
            ahead_.remove_prefix(ahead_.find_first_not_of(" \t") - 1);
        append(ahead_);
        if (line_.text.size() > begin) line_.folds.push_back(begin);
    } else if (!goesOnBare()) {
        return false;
    } else if (ahead_.empty()) {
        ++emptyLines_;
        return true;
    } else {
        appendBare();
    }
    emptyLines_ = 0;
    width_ = ahead_.size();
    pieceBegin_ = std::min(begin, line_.text.size());
    joined_ = true;
    // A property's name and parameters are not that long; looking on would take time.
    if (line_.colon == std::string::npos && line_.text.size() < kLongestHead) {
        line_.colon = findColon(line_.text.view());
        encoding_ = encodingBefore(line_.colon, line_.text.view());
    }
    return true;
}

bool LineReader::joinSoft(std::size_t soft) {
    line_.text.truncate(soft);
    line_.openEnd = endsAtSoftBreak(indented_ ? trimmed(ahead_) : ahead_);
    if (line_.openEnd) return false;
    const std::size_t begin = line_.text.size();
    append(ahead_);
    noteIndent(begin);
    ++softBreaks_;
    return true;
}

// A soft line break may be there by mistake. No program breaks a short line without a line break of
// the text there, so a property that follows one is not the text's.
bool LineReader::endsAtSoftBreak(std::string_view next) {
    constexpr std::size_t kShort = 60;
    if (isComponentMark(next)) return true;
    if (!beginsKnownProperty(next) && !beginsGrouped(next)) return false;
    const std::string_view text = line_.text.view();
    const bool breaks = text.ends_with("=0A") || text.ends_with("=0D") || text.ends_with("=0a") ||
                        text.ends_with("=0d");
    if (width_ < kShort && !breaks) return true;
    if (line_.swallowed == 0) line_.swallowed = line_.text.size();
    return false;
}

// Counts the blanks at the front of a line that was joined at `begin` after a soft line break.
void LineReader::noteIndent(std::size_t begin) {
    constexpr std::size_t kUsual = 2;
    const std::string_view line = line_.text.view().substr(begin);
    const std::size_t blanks = std::min(line.find_first_not_of(" \t"), line.size());
    if (blanks == 0 || blanks == line.size() || line_.indents.size() != softBreaks_) {
        line_.indents.clear();
        return;
    }
    line_.indentWidth = line_.indents.empty() ? blanks : std::min(line_.indentWidth, blanks);
    line_.indents.push_back(begin);
    // One blank before the break is the one between two words.
    const auto isBlankAt = [this](std::size_t at) { return isFoldBlank(line_.text[at]); };
    const bool twice = begin > 1 && isBlankAt(begin - 1) && !isBlankAt(begin - 2);
    line_.indentShown = line_.indentShown || indented_ || (twice && blanks <= kUsual);
}

// Some files indent what is in a component. Folds look the same, but nothing can be added to the
// first line of a component, so the first indented line after one tells.
bool LineReader::startsIndented() {
    if (!indented_) {
        if (joined_ || !isComponentMark(line_.text.view()) || nameOf(trimmed(ahead_)).empty())
            return false;
        indented_ = line_.indented = true;
    }
    const std::string_view line = trimmed(ahead_);
    const std::string_view name = nameOf(line);
    if (name.empty()) return false;
    if (!startsWithIgnoreCase(name, "X-") && propertyName(upper(name)) == PropertyName::Unknown)
        return false;
    ahead_.remove_prefix(static_cast<std::size_t>(line.data() - ahead_.data()));
    return true;
}

// True when the physical line is the rest of the line although it is not folded.
bool LineReader::goesOnBare() const {
    if (line_.colon != std::string::npos &&
        (aheadId_ != PropertyName::Unknown || beginsProperty(ahead_)))
        return false;
    return takesBareLines() && (ahead_.empty() || isBareText());
}

// True when what follows may be the rest of the line without any sign of it: phones break long
// texts, and leave line breaks of a text as they are.
bool LineReader::takesBareLines() const {
    if (line_.bare != 0) return true;
    if (encoding_ == LineEncoding::Base64) return false;
    const std::size_t end = std::min(line_.text.view().find_first_of(";:"), line_.text.size());
    const std::string name = upper(trimmed(line_.text.view().substr(0, end)));
    switch (propertyName(name)) {
        case PropertyName::Description:
        case PropertyName::Summary:
        case PropertyName::Location:
        case PropertyName::Comment:
        case PropertyName::Contact:
        case PropertyName::Body:
        case PropertyName::Categories:
        case PropertyName::Resources:
            return end < headEnd_;
        case PropertyName::Attendee:
            return end < line_.text.size();
        default:
            return end < headEnd_ && name.starts_with("X-");
    }
}

// True for a line of text, not a property. Prose has colons too: "Where: at home", "http://...".
bool LineReader::isBareText() const {
    if (beginsGrouped(ahead_)) return false;
    const std::string_view name = nameOf(ahead_);
    // A name alone: its value may be folded.
    if (name.empty()) return propertyName(upper(trimmed(ahead_))) == PropertyName::Unknown;
    // A parameter has been broken off; "NEEDS ACTION" is the only one with a blank.
    if (line_.colon == std::string::npos)
        return equalsIgnoreCase(name, "ACTION") && line_.text.view().ends_with("NEEDS");
    const std::string_view own = line_.text.view().substr(0, name.size());
    if (!hasLowerCase(name) || hasLowerCase(own) || isComponentMark(ahead_)) return false;
    const std::string_view rest = ahead_.substr(name.size());
    if (rest.starts_with("://") || rest.starts_with(": ")) return true;
    return line_.bare != 0 && propertyName(upper(name)) == PropertyName::Unknown;
}

// Lines of the width that folding gives were broken by it; others end where the text's lines do.
void LineReader::appendBare() {
    const bool byWidth = emptyLines_ == 0 && width_ >= 70 && width_ <= 80;
    const bool broken = encoding_ == LineEncoding::QuotedPrintable &&
                        (line_.text.view().ends_with("=0A") || line_.text.view().ends_with("=0D"));
    if (line_.colon == std::string::npos) {
        if (!byWidth) append(" ");
    } else if (!byWidth && !(broken && emptyLines_ == 0)) {
        append(std::string(std::min(emptyLines_, kLongestLine) + (broken ? 0 : 1), '\n'));
    }
    append(ahead_);
    ++line_.bare;
}

void LineReader::finishLine() {
    inLine_ = false;
    // Quotes that do not close before the end of the first line may close after it.
    if (joined_) line_.colon = findColon(line_.text.view());
    line_.quotedPrintable = encoding_ == LineEncoding::QuotedPrintable;
    if (hasAhead_ || !line_.quotedPrintable) return;
    const std::size_t soft = softBreak(line_.text.view(), pieceBegin_);
    if (soft == std::string::npos) return;
    line_.text.truncate(soft);
    line_.openEnd = true;
}

}  // namespace qel::calendar
