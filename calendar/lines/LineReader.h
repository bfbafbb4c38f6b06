// The lines of a calendar file as a stream, joined where they are folded. Memory is bounded by the
// longest line, and that by kLongestLine. One thread.
#ifndef QEL_CALENDAR_LINES_LINEREADER_H
#define QEL_CALENDAR_LINES_LINEREADER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::calendar {

// Gives the next at most `room` bytes, 0 at the end.
using ByteSource = std::function<std::size_t(char* bytes, std::size_t room)>;

// The bytes of one physical line that are kept, and of one joined line. What is beyond is passed
// over, and the line says that it was cut.
inline constexpr std::size_t kLongestLine = std::size_t{32} << 20;

// One joined line. Folds are not undone yet, because the two formats undo them differently.
struct RawLine {
    std::size_t number = 0;          // of its first physical line, from 1
    std::string text;                // each fold's first blank is still there
    std::vector<std::size_t> folds;  // where in text those blanks are
    std::size_t colon = 0;           // where the value's is, npos without one
    std::size_t narrowest = 0;       // octets of the shortest physical line before a fold
    std::size_t widest = 0;          // and of the longest
    bool cut = false;                // longer than kLongestLine; the rest is gone
    bool openEnd = false;            // a soft line break of quoted-printable with nothing behind it
};

class LineReader {
  public:
    explicit LineReader(ByteSource source);

    // The next line that is not empty. False at the end. Line ends are LF, CR LF, CR, and CR CR LF;
    // a UTF-8 byte-order mark is passed over, UTF-16 with one, or that begins with "B", is read as
    // UTF-8. A quoted-printable value goes on behind a "=" at a line's end, a Base64 value over all
    // lines of its alphabet.
    bool next(RawLine& line);

    // Bytes taken from the source so far.
    [[nodiscard]] std::uint64_t bytesRead() const { return bytesRead_; }

  private:
    enum class Encoding { Bytes, Utf16LittleEndian, Utf16BigEndian };

    bool fill();
    void detectEncoding();
    void decodeUtf16();
    [[nodiscard]] std::size_t find(char c) const;
    [[nodiscard]] std::size_t lineEnd();
    bool nextPhysical();
    void append(RawLine& line, bool folded);

    ByteSource source_;
    std::string chunk_;
    std::size_t at_ = 0;
    // The next one of each from at_ on, or the chunk's end: looked for once, however many lines end
    // in the other one before it comes.
    std::size_t lineFeed_ = 0;
    std::size_t carriageReturn_ = 0;
    std::uint64_t bytesRead_ = 0;
    Encoding encoding_ = Encoding::Bytes;
    bool started_ = false;
    bool afterCarriageReturn_ = false;
    std::string halfUnit_;  // bytes of UTF-16 that wait for the rest of their character

    // One physical line is always looked at ahead: in the chunk, or in pieces_ when it stands in
    // several of them.
    std::string_view ahead_;
    std::string pieces_;
    std::size_t aheadNumber_ = 0;
    bool aheadCut_ = false;
    bool hasAhead_ = false;
};

// Where the value's colon is: the first one outside quotes, or the first one where the quotes do
// not close before it. npos when there is none.
[[nodiscard]] std::size_t findColon(std::string_view text);

}  // namespace qel::calendar

#endif
