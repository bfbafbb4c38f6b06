#include "calendar/text/ContentText.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/base/Text.h"
#include "calendar/text/CharacterSets.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

namespace {

constexpr std::size_t kWidth = 75;
constexpr std::size_t kLongestPlain = 990;
constexpr std::string_view kLineEnd = "\r\n";

// A character in the form that a name allows: a capital, a digit or "-".
constexpr char nameCharacter(char c) {
    return isAlpha(c) || isDigit(c) ? toUpper(c) : '-';
}
constexpr auto kOddInName = [] {
    std::array<unsigned char, 256> table{};
    for (std::size_t each = 0; each < table.size(); ++each) {
        const char c = static_cast<char>(each);
        table[each] = nameCharacter(c) != c ? 1 : 0;
    }
    return table;
}();

void addName(std::string& out, LineName written) {
    std::string_view name = written.text();
    if (written.known()) {
        out += name;
        return;
    }
    if (name.empty()) name = "X";
    out += name;
    unsigned odd = 0;
    for (const char c : name) odd |= kOddInName[static_cast<unsigned char>(c)];
    if (odd == 0) return;
    char* const begin = out.data() + (out.size() - name.size());
    for (std::size_t at = 0; at < name.size(); ++at) begin[at] = nameCharacter(begin[at]);
}

// RFC 6868 escapes the characters that a parameter value cannot contain.
void addParameterEscaped(std::string& out, std::string_view value) {
    for (const char c : value)
        if (c == '^')
            out += "^^";
        else if (c == '"')
            out += "^'";
        else if (c == '\n')
            out += "^n";
        else if (!isBlank(c) || c == ' ' || c == '\t')
            out += c;
}

void addParameterValue(std::string& out, std::string_view value, bool alwaysQuoted) {
    const bool quoted = alwaysQuoted || hasAny<':', ';', ','>(value);
    if (quoted) out += '"';
    if (findAnyOrUnprintable<'^', '"'>(value, 0) == value.size())
        out += value;
    else
        addParameterEscaped(out, value);
    if (quoted) out += '"';
}

// True for a parameter whose value is a list of addresses.
bool isAddressList(std::string_view name) {
    return name == "MEMBER" || name == "DELEGATED-TO" || name == "DELEGATED-FROM";
}

void addParameter(std::string& out, const Parameter& parameter) {
    out += ';';
    addName(out, parameter.name);
    out += '=';
    if (!isAddressList(parameter.name)) return addParameterValue(out, parameter.value, false);
    for (std::string_view rest = parameter.value; !rest.empty();) {
        addParameterValue(out, nextField(rest, ','), true);
        if (!rest.empty()) out += ',';
    }
}

// The characters of a text that are neither escaped nor left out.
constexpr auto kReadyCharacters = [] {
    std::array<bool, 256> table{};
    for (std::size_t each = ' '; each <= '~'; ++each)
        table[each] = each != '\\' && each != ';' && each != ',';
    return table;
}();

bool needsNoEscape(std::string_view text) {
    constexpr std::size_t kShort = 16;
    if (text.size() >= kShort) return isPrintableAscii(text) && !hasAny<'\\', ';', ','>(text);
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return kReadyCharacters[static_cast<unsigned char>(c)]; });
}

// True for a value that is written as it is.
bool isReady(std::string_view value, Value how) {
    return how == Value::AsItIs ? isPrintableAscii(value) : needsNoEscape(value);
}

// A value that was copied from the input can contain anything. A line end within it would begin
// another property, and other control characters are invalid.
void addWithoutControls(std::string& out, std::string_view value) {
    std::string utf8;
    if (!isUtf8(value)) value = utf8 = utf8OrWindows1252(std::string(value));
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; };
    while (!value.empty()) {
        std::size_t length = 0;
        while (length < value.size() && !isControl(value[length])) ++length;
        out += value.substr(0, length);
        value.remove_prefix(std::min(length + 1, value.size()));
    }
}

std::string withCarriageReturns(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

// Adds a line of known length that is written as it is, and ends it.
void addShort(std::string& out, std::string_view name, std::string_view value) {
    const std::size_t begin = out.size();
    out.resize(begin + name.size() + 1 + value.size() + kLineEnd.size());
    char* at = std::copy(name.begin(), name.end(), out.data() + begin);
    *at++ = ':';
    at = std::copy(value.begin(), value.end(), at);
    std::copy(kLineEnd.begin(), kLineEnd.end(), at);
}

void addUnfolded(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                 std::string_view value, Value how) {
    addName(out, name);
    for (const Parameter& each : parameters) addParameter(out, each);
    out += ':';
    if (isReady(value, how))
        out += value;
    else if (how == Value::Escaped && hasAny<'\\', ';', ',', '\n'>(value))
        addWithoutControls(out, escapeICalendar(value));
    else
        addWithoutControls(out, value);
}

}  // namespace

void addFolded(std::string& out, std::string_view line) {
    std::size_t room = kWidth;
    while (line.size() > room) {
        std::size_t end = asciiLength(line.substr(0, room));
        while (end < room) {
            const std::size_t length =
                std::max<std::size_t>(utf8CharacterLength(line.substr(end)), 1);
            if (end + length > room) break;
            end += length;
        }
        out += line.substr(0, end);
        out += "\r\n ";
        line.remove_prefix(end);
        room = kWidth - 1;
    }
    out += line;
}

void addICalendarLine(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                      std::string_view value, Value how) {
    if (name.known() && parameters.empty() && name.text().size() + 1 + value.size() <= kWidth &&
        isReady(value, how))
        return addShort(out, name.text(), value);
    const std::size_t begin = out.size();
    addUnfolded(out, name, parameters, value, how);
    if (out.size() - begin > kWidth) {
        const std::string line = out.substr(begin);
        out.resize(begin);
        addFolded(out, line);
    }
    out += "\r\n";
}

std::string iCalendarLine(std::string_view name, const std::vector<Parameter>& parameters,
                          std::string_view value) {
    std::string line;
    addUnfolded(line, name, parameters, value, Value::AsItIs);
    return line;
}

std::string unfolded(std::string_view lines) {
    std::string text;
    while (!lines.empty()) {
        text += nextField(lines, '\r');
        const bool folded = lines.size() > 1 && lines[1] == ' ';
        if (!folded) text += '\n';
        lines.remove_prefix(std::min<std::size_t>(folded ? 2 : 1, lines.size()));
    }
    return text;
}

void addVCalendarLine(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                      std::string_view value) {
    const bool printable = isPrintableAscii(value);
    const bool bare = printable && (value.empty() || (value.front() != ' ' && value.back() != ' '));
    if (name.known() && bare && parameters.empty() &&
        name.text().size() + 1 + value.size() <= kWidth)
        return addShort(out, name.text(), value);
    std::string converted;
    if (!printable && !isUtf8(value)) value = converted = utf8OrWindows1252(std::string(value));
    const std::size_t begin = out.size();
    addName(out, name);
    for (const Parameter& each : parameters)
        if (!each.name.empty()) addParameter(out, each);
    // Bare words come last.
    for (const Parameter& each : parameters) {
        if (!each.name.empty()) continue;
        for (std::string_view rest = each.value; !rest.empty();) {
            out += ';';
            out += nextField(rest, ',');
        }
    }
    // Programs compare these byte by byte, and some phones never decode them.
    const bool compared = name.text() == "UID" || name.text() == "URL";
    const std::size_t room = compared ? kLongestPlain : kWidth;
    if (bare && out.size() - begin + 1 + value.size() <= room) {
        out += ':';
        out += value;
        out += kLineEnd;
        return;
    }
    if (!isAscii(value)) out += ";CHARSET=UTF-8";
    out += ";ENCODING=QUOTED-PRINTABLE:";
    std::string text;
    if (value.find('\n') != std::string_view::npos) value = text = withCarriageReturns(value);
    out += quotedPrintable(value, out.size() - begin);
    out += kLineEnd;
}

std::string vCalendarLine(std::string_view name, const std::vector<Parameter>& parameters,
                          std::string_view value) {
    std::string line;
    addVCalendarLine(line, name, parameters, value);
    line.resize(line.size() - kLineEnd.size());
    return line;
}

std::string vCalendarBase64(std::string_view name, const std::vector<Parameter>& parameters,
                            std::string_view value) {
    constexpr std::size_t kLine = 72;
    std::string text;
    addName(text, name);
    for (const Parameter& each : parameters) addParameter(text, each);
    text += ":\r\n";
    for (std::size_t at = 0; at < value.size(); at += kLine) {
        text += "  ";
        text += value.substr(at, kLine);
        text += kLineEnd;
    }
    text += kLineEnd;
    return text;
}

}  // namespace qel::calendar
