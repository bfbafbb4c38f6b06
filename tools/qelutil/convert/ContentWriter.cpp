// Lines of both formats.
#include <algorithm>
#include <ostream>

#include "Text.h"
#include "convert/Ascii.h"
#include "convert/EntryWriter.h"
#include "convert/TextCodec.h"

namespace qel::convert {

namespace {

constexpr std::size_t kWidth = 75;
constexpr std::size_t kLongestPlain = 990;

std::string safeName(std::string_view name) {
    std::string result = upper(name);
    for (char& c : result)
        if (!isAlpha(c) && !isDigit(c) && c != '-') c = '-';
    return result.empty() ? "X" : result;
}

bool needsQuotes(std::string_view value) {
    return value.find_first_of(":;,") != std::string_view::npos;
}

// RFC 6868: what a parameter value cannot hold.
std::string parameterText(std::string_view value, bool alwaysQuoted) {
    std::string text;
    for (const char c : value) {
        if (c == '^') {
            text += "^^";
        } else if (c == '"') {
            text += "^'";
        } else if (c == '\n') {
            text += "^n";
        } else if (!isBlank(c) || c == ' ' || c == '\t') {
            text += c;
        }
    }
    return alwaysQuoted || needsQuotes(text) ? "\"" + text + "\"" : text;
}

// Values that are lists stay lists.
std::string parameterListText(const Parameter& parameter) {
    if (parameter.name != "MEMBER" && parameter.name != "DELEGATED-TO" &&
        parameter.name != "DELEGATED-FROM")
        return parameterText(parameter.value, false);
    std::string text;
    for (std::string_view rest = parameter.value; !rest.empty();) {
        if (!text.empty()) text += ',';
        text += parameterText(nextField(rest, ','), true);
    }
    return text;
}

std::string headOf(std::string_view name, const std::vector<Parameter>& parameters) {
    std::string head = safeName(name);
    for (const Parameter& each : parameters)
        head += ";" + safeName(each.name) + "=" + parameterListText(each);
    return head;
}

}  // namespace

void EntryWriter::put(std::string_view line) {
    out_ << line << "\r\n";
}

void ICalWriter::fold(std::string_view line) {
    std::size_t room = kWidth;
    while (line.size() > room) {
        std::size_t end = 0;
        while (end < room) {
            const std::size_t length =
                std::max<std::size_t>(cli::utf8CharacterLength(line.substr(end)), 1);
            if (end + length > room) break;
            end += length;
        }
        out_ << line.substr(0, end) << "\r\n ";
        line.remove_prefix(end);
        room = kWidth - 1;
    }
    put(line);
}

std::string iCalendarLine(std::string_view name, const std::vector<Parameter>& parameters,
                          std::string_view value) {
    std::string line = headOf(name, parameters) + ":";
    // Words of the format that were taken over as they stood may hold anything. A line end within a
    // value would begin another property; no other control may stand in one.
    if (!cli::isUtf8(value))
        return iCalendarLine(name, parameters, utf8OrWindows1252(std::string(value)));
    std::copy_if(value.begin(), value.end(), std::back_inserter(line),
                 [](char c) { return static_cast<unsigned char>(c) >= ' ' || c == '\t'; });
    return line;
}

std::string vCalendarLine(std::string_view name, const std::vector<Parameter>& parameters,
                          std::string_view value) {
    if (!cli::isUtf8(value))
        return vCalendarLine(name, parameters, utf8OrWindows1252(std::string(value)));
    std::string head;
    std::vector<Parameter> named;
    std::string bare;
    for (const Parameter& each : parameters) {
        if (each.name.empty()) {
            for (std::string_view rest = each.value; !rest.empty();)
                bare += ";" + std::string(nextField(rest, ','));
        } else {
            named.push_back(each);
        }
    }
    head = headOf(name, named) + bare;
    const bool ascii = std::all_of(value.begin(), value.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    // Names of things are compared as they stand, also by phones that decode nothing there.
    const std::size_t room = name == "UID" || name == "URL" ? kLongestPlain : kWidth;
    const bool plain =
        ascii && head.size() + 1 + value.size() <= room && trimmed(value) == value &&
        std::none_of(value.begin(), value.end(), [](char c) { return isBlank(c) && c != ' '; });
    if (plain) return head + ":" + std::string(value);
    if (!ascii) head += ";CHARSET=UTF-8";
    head += ";ENCODING=QUOTED-PRINTABLE:";
    std::string text;
    for (const char c : value) {
        if (c == '\n') text += '\r';
        text += c;
    }
    return head + quotedPrintable(text, head.size());
}

std::string vCalendarBase64(std::string_view name, const std::vector<Parameter>& parameters,
                            std::string_view value) {
    constexpr std::size_t kLine = 72;
    std::string text = headOf(name, parameters) + ":\r\n";
    for (std::size_t at = 0; at < value.size(); at += kLine) {
        text += "  ";
        text += value.substr(at, kLine);
        text += "\r\n";
    }
    return text;
}

}  // namespace qel::convert
