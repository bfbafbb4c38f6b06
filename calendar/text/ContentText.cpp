#include "calendar/text/ContentText.h"

#include <algorithm>
#include <array>
#include <cstring>
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

// True for a text that is not a name as it is.
bool isOdd(std::string_view name) {
    unsigned odd = name.empty() ? 1 : 0;
    for (const char c : name) odd |= kOddInName[static_cast<unsigned char>(c)];
    return odd != 0;
}

void addName(std::string& out, LineName written) {
    std::string_view name = written.text();
    if (written.known()) {
        out += name;
        return;
    }
    if (name.empty()) name = "X";
    out += name;
    if (!isOdd(name)) return;
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

// True for a value that is written as it is.
bool isReady(std::string_view value, Value how) {
    if (how == Value::AsItIs) return isPrintableAscii(value);
    return findAnyOrUnprintable<'\\', ';', ','>(value, 0) == value.size();
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

// Copies a few bytes, which takes less time than calling a function for it, and gives the place
// after them.
char* putShort(char* to, std::string_view text) {
    const char* const from = text.data();
    const std::size_t size = text.size();
    // The last block may have bytes of the one before it.
    if (size >= 16) {
        for (std::size_t at = 0; at + 16 < size; at += 16) std::memcpy(to + at, from + at, 16);
        std::memcpy(to + size - 16, from + size - 16, 16);
    } else if (size >= 8) {
        std::memcpy(to, from, 8);
        std::memcpy(to + size - 8, from + size - 8, 8);
    } else if (size >= 4) {
        std::memcpy(to, from, 4);
        std::memcpy(to + size - 4, from + size - 4, 4);
    } else {
        for (std::size_t at = 0; at < size; ++at) to[at] = from[at];
    }
    return to + size;
}

// How much of a line its parameters take. More than kWidth with one that is not written as it is.
std::size_t lengthOf(const std::vector<Parameter>& parameters) {
    std::size_t length = 0;
    for (const Parameter& each : parameters) {
        const bool plain =
            !isOdd(each.name) && !isAddressList(each.name) &&
            findAnyOrUnprintable<'^', '"', ':', ';', ','>(each.value, 0) == each.value.size();
        if (!plain) return kWidth + 1;
        length += 2 + each.name.size() + each.value.size();
    }
    return length;
}

// Adds a line whose value is written as it is, and ends it. False where it has to be folded or its
// parameters have to be changed.
bool addShort(std::string& out, std::string_view name, const std::vector<Parameter>& parameters,
              std::string_view value) {
    const std::size_t least = name.size() + 1 + value.size();
    if (least > kWidth) return false;
    if (!parameters.empty() && least + lengthOf(parameters) > kWidth) return false;
    char line[kWidth + kLineEnd.size()];
    char* at = putShort(line, name);
    for (const Parameter& each : parameters) {
        *at++ = ';';
        at = putShort(at, each.name);
        *at++ = '=';
        at = putShort(at, each.value);
    }
    *at++ = ':';
    at = putShort(at, value);
    *at++ = '\r';
    *at++ = '\n';
    out.append(line, static_cast<std::size_t>(at - line));
    return true;
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

namespace {

// Any line of iCalendar. By itself, because the others need none of the room that this takes on
// the stack, and nearly all lines are others.
[[gnu::noinline]] void addAnyICalendar(std::string& out, LineName name,
                                       const std::vector<Parameter>& parameters,
                                       std::string_view value, Value how) {
    const std::size_t begin = out.size();
    addUnfolded(out, name, parameters, value, how);
    if (out.size() - begin > kWidth) {
        const std::string line = out.substr(begin);
        out.resize(begin);
        addFolded(out, line);
    }
    out += "\r\n";
}

}  // namespace

void addICalendarLine(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                      std::string_view value, Value how) {
    if (name.known() && isReady(value, how) && addShort(out, name.text(), parameters, value))
        return;
    addAnyICalendar(out, name, parameters, value, how);
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

namespace {

// Any line of vCalendar 1.0, as addAnyICalendar. `bare`: the value needs no encoding.
[[gnu::noinline]] void addAnyVCalendar(std::string& out, LineName name,
                                       const std::vector<Parameter>& parameters,
                                       std::string_view value, bool printable, bool bare) {
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

}  // namespace

void addVCalendarLine(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                      std::string_view value) {
    const bool printable = isPrintableAscii(value);
    const bool bare = printable && (value.empty() || (value.front() != ' ' && value.back() != ' '));
    if (name.known() && bare && addShort(out, name.text(), parameters, value)) return;
    addAnyVCalendar(out, name, parameters, value, printable, bare);
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
