#include "calendar/lines/FileKind.h"

#include <algorithm>
#include <string>

#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"

namespace qel::calendar {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
// Both marks of UTF-16.
constexpr std::string_view kUtf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};

std::string_view withoutMark(std::string_view text) {
    if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
    for (const std::string_view mark : kUtf16Marks)
        if (text.starts_with(mark)) text.remove_prefix(mark.size());
    return text;
}

// The name that the line around the colon at `colon` begins, "VEVENT"; empty when it is no BEGIN.
std::string_view begunAt(std::string_view text, std::size_t colon) {
    // Such a line is short; others are not looked through for each of their colons.
    constexpr std::size_t kMost = 40;
    std::size_t start = colon;
    while (start > 0 && colon - start <= kMost && text[start - 1] != '\n' &&
           text[start - 1] != '\r')
        --start;
    if (colon - start > kMost ||
        !equalsIgnoreCase(trimmed(text.substr(start, colon - start)), "BEGIN"))
        return {};
    const std::string_view rest = text.substr(colon + 1, kMost);
    return trimmed(rest.substr(0, rest.find_first_of("\r\n:")));
}

// What the lines of `text` begin: a calendar or an entry, a contact, or nothing known.
FileKind begun(std::string_view text) {
    FileKind kind = FileKind::Text;
    for (std::size_t at = text.find(':'); at != std::string_view::npos;
         at = text.find(':', at + 1)) {
        const std::string_view name = begunAt(text, at);
        for (const std::string_view each :
             {"VCALENDAR", "VEVENT", "VTODO", "VJOURNAL", "VNOTE", "VFREEBUSY", "VTIMEZONE"})
            if (equalsIgnoreCase(name, each)) return FileKind::Calendar;
        if (equalsIgnoreCase(name, "VCARD")) kind = FileKind::Contact;
    }
    return kind;
}

bool startsWithAny(std::string_view text, std::initializer_list<std::string_view> starts) {
    return std::any_of(
        starts.begin(), starts.end(),
        [text](std::string_view each) { return startsWithIgnoreCase(text, each); });
}

// UTF-16 of mostly ASCII: every other byte is zero.
bool isUtf16WithoutMark(std::string_view bytes) {
    std::size_t zeros[2] = {0, 0};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0') ++zeros[i % 2];
    const auto [few, many] = std::minmax(zeros[0], zeros[1]);
    return many > bytes.size() / 4 && few <= bytes.size() / 64;
}

bool isBinary(std::string_view bytes) {
    constexpr std::size_t kOneIn = 32;
    const auto strange = std::count_if(bytes.begin(), bytes.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 && byte != '\t' && byte != '\r' && byte != '\n' && byte != '\f' &&
               byte != 0x1B;
    });
    return static_cast<std::size_t>(strange) > bytes.size() / kOneIn;
}

}  // namespace

FileKind recognise(std::string_view bytes) {
    using std::string_view_literals::operator""sv;
    if (bytes.starts_with("PK\3\4") || bytes.starts_with("PK\5\6")) return FileKind::Zip;
    const bool hasZeros = bytes.find('\0') != std::string_view::npos;
    std::string ascii;  // without the zeros of UTF-16
    std::string_view text = withoutMark(bytes);
    const bool hasUtf16Mark =
        bytes.starts_with(kUtf16Marks[0]) || bytes.starts_with(kUtf16Marks[1]);
    if (hasZeros) {
        ascii = text;
        std::erase(ascii, '\0');
        text = ascii;
    }
    const bool isUtf16 = hasZeros && !hasUtf16Mark && isUtf16WithoutMark(bytes);
    const FileKind kind = begun(text);
    // The reader knows UTF-16 without a mark by its first letter.
    if (isUtf16 && !text.starts_with('B')) return FileKind::Utf16;
    if (kind != FileKind::Text) return kind;
    const std::size_t first = text.find_first_not_of(" \t\r\n\x1A"sv);
    if (first == std::string_view::npos) return FileKind::Empty;
    if (!hasUtf16Mark && !isUtf16 && (hasZeros || isBinary(text))) return FileKind::Binary;
    const std::string_view start = text.substr(first);
    if (startsWithAny(start, {"<!doctype html", "<html", "<head", "<body", "<script", "<meta"}))
        return FileKind::Html;
    return start.starts_with('<') ? FileKind::Xml : FileKind::Text;
}

const char* kindText(FileKind kind) {
    switch (kind) {
        case FileKind::Calendar:
            return "a calendar";
        case FileKind::Contact:
            return "a contact (vCard); address books import it as it is";
        case FileKind::Empty:
            return "empty; copy or export it again";
        case FileKind::Zip:
            return "a ZIP archive; unpack it and convert the calendars in it";
        case FileKind::Html:
            return "a web page, perhaps in place of the calendar; download the calendar again";
        case FileKind::Xml:
            return "XML, another format";
        case FileKind::Utf16:
            return "UTF-16 text without a byte-order mark; save it as UTF-8";
        case FileKind::Binary:
            return "not a text file";
        case FileKind::Text:
            break;
    }
    return "text of another kind";
}

}  // namespace qel::calendar
