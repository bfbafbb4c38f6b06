// The lines of a calendar file, joined where they are folded. Bytes come in pieces of any size, and
// how they are divided changes nothing. Memory is bounded by kLongestLine. One thread.
#ifndef QEL_CALENDAR_LINES_LINEREADER_H
#define QEL_CALENDAR_LINES_LINEREADER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/lines/LineEnd.h"
#include "calendar/lines/LineMarks.h"
#include "calendar/lines/LineText.h"
#include "calendar/lines/Property.h"

namespace qel::calendar {

// The most bytes of a line, before and after it is joined. The rest of a longer one is skipped, and
// the line is marked as cut.
inline constexpr std::size_t kLongestLine = std::size_t{32} << 20;

// One joined line. Folds are not undone yet, because the two formats undo them differently.
struct RawLine {
    std::size_t number = 0;  // of its first physical line, from 1
    LineText text;           // each fold's first blank is still there
    // Of a name in capitals that a colon or a semicolon follows; Unknown for any other.
    PropertyName id = PropertyName::Unknown;
    std::size_t nameEnd = 0;         // where that name ends
    std::vector<std::size_t> folds;  // where in text those blanks are
    // Where the blanks are that begin the lines after soft line breaks; empty unless all do.
    std::vector<std::size_t> indents;
    std::size_t indentWidth = 0;  // how many blanks all those lines begin with
    bool indentShown = false;     // the blanks of one are surely not the text's
    std::size_t colon = 0;        // the one before the value; npos without one
    std::size_t bare = 0;         // lines that were joined although nothing folds them
    bool quotedPrintable = false;
    // A line by itself as nearly all are: of a known name, with a colon, and none of what follows.
    bool usual = false;
    bool cut = false;       // longer than kLongestLine; the rest was skipped
    bool openEnd = false;   // a soft line break of quoted-printable with nothing after it
    bool indented = false;  // from the next line on, blanks begin lines that are not folded
    // Where a line like a property begins that a soft line break leads to; 0 without one.
    std::size_t swallowed = 0;
    std::size_t group = 0;  // where the group before its name ends; 0 without one
};

class LineReader {
  public:
    enum class Result { Line, NeedMore, End };

    // The next bytes of the file. They are not copied: they must stay until next() asks for more.
    // REQUIRES: next() has asked for more, or nothing has been written yet.
    void write(std::string_view bytes);
    // The file ends after what was written.
    void end();
    // The next byte that is written begins a line which is not joined to what is before it. Nothing
    // in UTF-16, where lines begin elsewhere.
    void endLine() { lineEnds_ = fileEncoding_ == FileEncoding::Bytes; }
    // True when that was said, and all lines before have been read.
    [[nodiscard]] bool isBetween() const;
    // Physical lines that have been read or skipped.
    [[nodiscard]] std::size_t lines() const { return aheadNumber_; }
    // What is written next comes after so many lines more. REQUIRES: isBetween().
    void skip(std::size_t lines) { aheadNumber_ += lines; }
    // Whether blanks begin lines of this file that are not folded.
    [[nodiscard]] bool isIndented() const { return indented_; }
    // Forgets all, and goes on after `lines` lines of a file that is not in UTF-16.
    void goOn(std::size_t lines, bool indented);

    // Reads the next line that is not blank into line(). Line ends are LF, CR LF, CR and CR CR LF.
    // A UTF-8 byte-order mark is skipped; UTF-16 with a mark, or that begins with "B", is read as
    // UTF-8. A quoted-printable value continues after a "=" at a line's end, unless a whole line
    // that begins or ends a component follows; a Base64 value over all lines of its alphabet; and a
    // text over lines that are not properties.
    [[nodiscard]] Result next();

    // Passes over lines of ASCII that are by themselves and begin with a capital other than B and
    // E, unless their value is in Base64, or quoted-printable without CHARSET=UTF-8; and over such
    // lines of UTF-8 without parameters; over whole alarms of such lines; and over the end of an
    // entry of the name `entry` with the beginning of another one. For a caller who looks for other
    // ones: next() goes on after them.
    void passOver(std::string_view entry);

    // Until next() is called again; the caller may change it. Its text may be a view of the bytes
    // that were written last.
    [[nodiscard]] RawLine& line() { return line_; }
    [[nodiscard]] const RawLine& line() const { return line_; }

    // True when its value is quoted-printable.
    [[nodiscard]] bool isQuotedPrintable() const {
        return encoding_ == LineEncoding::QuotedPrintable;
    }

  private:
    enum class FileEncoding { Bytes, Utf16LittleEndian, Utf16BigEndian };
    enum class LineEncoding { Plain, QuotedPrintable, Base64 };

    void take(std::string_view bytes);
    void start(std::string_view bytes);
    void decodeUtf16();
    [[nodiscard]] bool takeWhole();
    [[nodiscard]] static std::size_t passedLength(std::string_view text, std::size_t name);
    [[nodiscard]] bool takePiece();
    void markAhead();
    void nameAhead();
    [[nodiscard]] Result nextPhysical();
    [[nodiscard]] static LineEncoding encodingBefore(std::size_t colon, std::string_view text);
    void leaveIndex();
    [[nodiscard]] bool fillIndex();
    void clearLine();
    void trimAhead();
    void beginLine();
    [[nodiscard]] bool join();
    [[nodiscard]] bool joinSoft(std::size_t soft);
    [[nodiscard]] bool endsAtSoftBreak(std::string_view next);
    void noteIndent(std::size_t begin);
    [[nodiscard]] bool startsIndented();
    [[nodiscard]] bool goesOnBare() const;
    [[nodiscard]] bool takesBareLines() const;
    [[nodiscard]] bool isBareText() const;
    void appendBare();
    void append(std::string_view text);
    void finishLine();

    std::string_view chunk_;  // in the caller's bytes or in own_
    std::string own_;         // the first bytes of a file, or what UTF-16 was read as
    std::size_t at_ = 0;      // in chunk_
    FileEncoding fileEncoding_ = FileEncoding::Bytes;
    bool started_ = false;  // the encoding is known
    bool ended_ = false;
    bool lineEnds_ = false;  // after chunk_
    LineEnd lastEnd_;
    std::string halfUnit_;  // bytes of UTF-16 that wait for the rest of their character

    // One physical line is always looked at ahead: in the chunk, or in pieces_ when it came in
    // several of them.
    std::string_view ahead_;
    LineMarks marks_;                               // of ahead_
    PropertyName aheadId_ = PropertyName::Unknown;  // of ahead_, as RawLine::id
    std::string pieces_;
    std::size_t aheadNumber_ = 0;
    bool aheadCut_ = false;
    bool hasAhead_ = false;
    bool inPhysical_ = false;   // its end has not come yet
    bool anyPhysical_ = false;  // its beginning has

    // Usual lines that were found together, in the chunk. The last one only shows that the one
    // before it is by itself. While there are any, what is known of the line ahead is not that of
    // ahead_.
    struct IndexedLine {
        std::size_t begin = 0;
        std::size_t next = 0;  // after its end
        LineMarks marks;
        PropertyName id = PropertyName::Unknown;
    };
    static constexpr std::size_t kMostIndexed = 64;
    std::array<IndexedLine, kMostIndexed> index_;
    std::size_t indexed_ = 0;
    std::size_t indexAt_ = 0;  // the next one
    bool passesOver_ = false;

    RawLine line_;
    LineEncoding encoding_ = LineEncoding::Plain;
    std::size_t width_ = 0;       // of the last physical line in it
    std::size_t headEnd_ = 0;     // of its first physical line; 0 when that has no colon
    std::size_t pieceBegin_ = 0;  // where that one begins in its text
    std::size_t softBreaks_ = 0;
    std::size_t emptyLines_ = 0;  // after it, part of it when a bare line follows
    bool inLine_ = false;         // more may be joined to it
    bool joined_ = false;
    bool indented_ = false;  // blanks begin lines of this file that are not folded
};

// True for a whole line that begins or ends a calendar or one of its components, in any case and
// with blanks, colons or semicolons too many.
[[nodiscard]] bool isComponentMark(std::string_view line);

}  // namespace qel::calendar

#endif
