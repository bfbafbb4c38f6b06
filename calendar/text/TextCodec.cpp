#include "calendar/text/TextCodec.h"

#include <algorithm>

#include "QelUtility/BxCharConv.h"
#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"
#include "calendar/platform/CharacterSets.h"

namespace qel::calendar {

const char* libraryCharacterSet(std::string_view set) {
    struct Name {
        std::string_view mime;
        const char* library;
    };
    static constexpr Name kNames[] = {{"WINDOWS-1252", "8859-1"},
                                      {"CP1252", "8859-1"},
                                      {"ISO-8859-1", "8859-1"},
                                      {"ISO8859-1", "8859-1"},
                                      {"LATIN1", "8859-1"},
                                      {"GB2312", "936"},
                                      {"GBK", "936"},
                                      {"CP936", "936"},
                                      {"GB_2312-80", "936"},
                                      {"EUC-CN", "936"},
                                      {"BIG5", "950"},
                                      {"CP950", "950"}};
    for (const Name& name : kNames)
        if (equalsIgnoreCase(set, name.mime)) return name.library;
    return "";
}

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// One conversion by the library; nothing when it finds a sequence that is none.
std::optional<std::string> convertWhole(CBxCharConvSvcs& service, _iconv_info* handle,
                                        std::string_view text) {
    if (text.empty()) return std::string();
    // Three bytes of UTF-8 for each byte, and the terminator that a byte-order mark brings.
    std::string result(text.size() * 3 + 4, '\0');
    const char* in = text.data();
    auto left = static_cast<unsigned>(text.size());
    char* out = result.data();
    auto room = static_cast<unsigned>(result.size());
    if (service.iconv(handle, &in, &left, &out, &room) == ~0U) return std::nullopt;
    result.resize(result.size() - room);
    return result;
}

// Character by character, each stray byte replaced.
std::string convertPieces(CBxCharConvSvcs& service, _iconv_info* handle, std::string_view text) {
    std::string result;
    while (!text.empty()) {
        std::optional<std::string> piece;
        std::size_t length = 1;
        for (; length <= 2 && length <= text.size() && !piece; ++length)
            piece = convertWhole(service, handle, text.substr(0, length));
        if (piece) {
            result += *piece;
            text.remove_prefix(length - 1);
        } else {
            result += kReplacement;
            text.remove_prefix(1);
        }
    }
    return result;
}

std::string byLibrary(std::string_view text, const char* set) {
    CBxCharConvSvcs service;
    _iconv_info* handle = service.iconv_open("UTF-8", set);
    std::optional<std::string> whole = convertWhole(service, handle, text);
    service.iconv_close(handle);
    if (whole) return *whole;
    // A fresh descriptor: its work buffer stays as small as the pieces.
    handle = service.iconv_open("UTF-8", set);
    std::string pieces = convertPieces(service, handle, text);
    service.iconv_close(handle);
    return pieces;
}

bool isAsciiSet(std::string_view set) {
    return set.empty() || equalsIgnoreCase(set, "US-ASCII") || equalsIgnoreCase(set, "ASCII");
}

// Bytes that mean nothing in their set are bad input, whoever converts them.
void noteReplaced(const std::string& text, std::string_view set, std::vector<Note>& notes) {
    if (text.find(kReplacement) != std::string::npos)
        notes.push_back({Severity::Error, "some bytes are no text in the character set " +
                                              quoted(set) + "; U+FFFD stands for each"});
}

std::string toUtf8(std::string text, std::string_view set, std::vector<Note>& notes) {
    if (isAscii(text) && !startsWithIgnoreCase(set, "ISO-2022") &&
        !startsWithIgnoreCase(set, "UTF-7"))
        return text;
    const bool saysUtf8 = equalsIgnoreCase(set, "UTF-8") || equalsIgnoreCase(set, "UTF8");
    if (!isAsciiSet(set) && !saysUtf8) {
        if (const char* library = libraryCharacterSet(set); *library != '\0') {
            std::string converted = byLibrary(text, library);
            noteReplaced(converted, set, notes);
            return converted;
        }
        if (auto converted = platform::toUtf8(text, set)) {
            notes.push_back({Severity::Note, "the character set " + quoted(set) +
                                                 " is none of the library's; the system's "
                                                 "conversion is taken"});
            noteReplaced(*converted, set, notes);
            return *std::move(converted);
        }
        const bool utf8 = isUtf8(text);
        notes.push_back({Severity::Warning, "the character set " + quoted(set) +
                                                " is not known here; the text is read as " +
                                                (utf8 ? "UTF-8" : "windows-1252")});
        return utf8 ? std::move(text) : byLibrary(text, "8859-1");
    }
    if (isUtf8(text)) return text;
    notes.push_back({Severity::Warning, saysUtf8
                                            ? "the text is not UTF-8 as it says; it is read as "
                                              "windows-1252"
                                            : "the text names no character set and is not UTF-8; "
                                              "it is read as windows-1252"});
    return byLibrary(text, "8859-1");
}

std::string undoQuotedPrintable(std::string_view text) {
    std::string result(text.size() + 1, '\0');
    std::size_t length = 0;
    if (decodeQP(text.data(), text.size(), result.data(), result.size(), &length) != 0)
        return std::string(text);
    result.resize(length);
    return result;
}

std::string undoBase64(const std::string& text) {
    std::string result(text.size() + 3, '\0');
    const int length =
        Bx_Base64_Decode(text.c_str(), reinterpret_cast<unsigned char*>(result.data()),
                         static_cast<unsigned>(result.size()));
    if (length < 0) return text;
    result.resize(static_cast<std::size_t>(length));
    return result;
}

// Line ends as LF; other controls than tab are no part of a text.
std::string withoutControls(std::string text, std::vector<Note>& notes) {
    const auto isControl = [](char c) { return isBlank(c) && c != ' '; };
    if (std::none_of(text.begin(), text.end(), isControl)) return text;
    std::string result;
    result.reserve(text.size());
    bool dropped = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\r') {
            if (at + 1 == text.size() || text[at + 1] != '\n') result += '\n';
        } else if ((static_cast<unsigned char>(c) >= ' ' && c != '\x7f') || c == '\n' ||
                   c == '\t') {
            result += c;
        } else {
            dropped = true;
        }
    }
    if (dropped)
        notes.push_back(
            {Severity::Warning, "the text holds control characters; they are left out"});
    return result;
}

}  // namespace

std::string utf8OrWindows1252(std::string text) {
    return isUtf8(text) ? std::move(text) : byLibrary(text, "8859-1");
}

void decodeParameters(ContentLine& line) {
    for (Parameter& each : line.parameters)
        if (!isAscii(each.value)) each.value = utf8OrWindows1252(std::move(each.value));
}

void decodeParameters(Component& component) {
    for (ContentLine& each : component.properties) decodeParameters(each);
    for (Component& each : component.children) decodeParameters(each);
}

bool isBase64(const ContentLine& line) {
    return std::any_of(
        line.parameters.begin(), line.parameters.end(),
        [](const Parameter& each) {
            return (each.name.empty() || each.name == "ENCODING") &&
                   (equalsIgnoreCase(each.value, "BASE64") || equalsIgnoreCase(each.value, "B"));
        });
}

std::optional<std::string> cleanBase64(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(clean),
                 [](char c) { return !isBlank(c); });
    if (Bx_Base64_Decode(clean.c_str(), nullptr, 0) < 0) return std::nullopt;
    return clean;
}

bool isPlainText(const ContentLine& line) {
    return isPrintableAscii(line.value) &&
           std::none_of(
               line.parameters.begin(), line.parameters.end(),
               [](const Parameter& each) {
                   return each.name.empty() || each.name == "ENCODING" || each.name == "CHARSET";
               });
}

std::string decodedValue(const ContentLine& line, std::vector<Note>& notes) {
    std::string bytes;
    const bool quotedPrintable =
        std::any_of(line.parameters.begin(), line.parameters.end(), [](const Parameter& each) {
            return (each.name.empty() || each.name == "ENCODING") &&
                   equalsIgnoreCase(each.value, "QUOTED-PRINTABLE");
        });
    if (quotedPrintable) {
        bytes = undoQuotedPrintable(line.value);
    } else if (isBase64(line)) {
        const auto clean = cleanBase64(line.value);
        if (!clean) notes.push_back({Severity::Error, "the value is not Base64 as it says"});
        bytes = clean ? undoBase64(*clean) : line.value;
    } else {
        bytes = line.value;
    }
    return withoutControls(toUtf8(std::move(bytes), trimmed(line.parameter("CHARSET")), notes),
                           notes);
}

std::string unescapeICalendar(std::string_view text) {
    if (text.find('\\') == std::string_view::npos) return std::string(text);
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char next = at + 1 < text.size() ? text[at + 1] : '\0';
        if (text[at] == '\\' && (next == 'n' || next == 'N')) {
            result += '\n';
            ++at;
        } else if (text[at] == '\\' &&
                   (next == '\\' || next == ';' || next == ',' || next == '"')) {
            // Nothing escapes the last of them, and many do.
            result += next;
            ++at;
        } else {
            result += text[at];
        }
    }
    return result;
}

std::string escapeICalendar(std::string_view text) {
    const auto isSpecial = [](char c) { return c == '\\' || c == ';' || c == ',' || c == '\n'; };
    if (std::none_of(text.begin(), text.end(), isSpecial)) return std::string(text);
    std::string result;
    result.reserve(text.size() + 8);
    for (const char c : text) {
        if (c == '\n') {
            result += "\\n";
            continue;
        }
        if (c == '\\' || c == ';' || c == ',') result += '\\';
        result += c;
    }
    return result;
}

std::vector<std::string> splitICalendarList(std::string_view text) {
    std::vector<std::string> items;
    std::size_t begin = 0;
    for (std::size_t at = 0; at <= text.size(); ++at) {
        if (at < text.size() && text[at] == '\\') {
            ++at;
            continue;
        }
        if (at >= text.size() || text[at] == ',') {
            items.push_back(
                unescapeICalendar(text.substr(begin, std::min(at, text.size()) - begin)));
            begin = at + 1;
        }
    }
    return items;
}

namespace {

bool isVCalendarEscape(std::string_view text, std::size_t at) {
    return text[at] == '\\' && at + 1 < text.size() && (text[at + 1] == ';' || text[at + 1] == ',');
}

}  // namespace

std::string unescapeVCalendar(std::string_view text) {
    if (text.find('\\') == std::string_view::npos) return std::string(text);
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at)
        result += isVCalendarEscape(text, at) ? text[++at] : text[at];
    return result;
}

std::string escapeVCalendar(std::string_view text, std::string_view separators) {
    const auto isSpecial = [](char c) { return c == ';' || c == ','; };
    if (std::none_of(text.begin(), text.end(), isSpecial)) return std::string(text);
    std::string result;
    result.reserve(text.size() + 8);
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool separator = text[at] == ';' || text[at] == ',';
        const bool behindBackslash = separator && at > 0 && text[at - 1] == '\\';
        const bool divides = separators.find(text[at]) != std::string_view::npos;
        if (divides || behindBackslash) result += '\\';
        result += text[at];
    }
    return result;
}

std::vector<std::string> splitVCalendar(std::string_view text, std::string_view separators) {
    const auto isSpecial = [](char c) { return c == ';' || c == ',' || c == '\\'; };
    if (std::none_of(text.begin(), text.end(), isSpecial)) return {std::string(text)};
    std::vector<std::string> fields;
    fields.reserve(4);
    fields.emplace_back();
    for (std::size_t at = 0; at < text.size(); ++at)
        if (isVCalendarEscape(text, at))
            fields.back() += text[++at];
        else if (separators.find(text[at]) != std::string_view::npos)
            fields.emplace_back();
        else
            fields.back() += text[at];
    return fields;
}

std::string quotedPrintable(std::string_view text, std::size_t startColumn) {
    std::size_t length = 0;
    if (encodeQP(text.data(), text.size(), startColumn, nullptr, 0, &length) != 0) return "";
    std::string result(length + 1, '\0');
    encodeQP(text.data(), text.size(), startColumn, result.data(), result.size(), &length);
    result.resize(length);
    return result;
}

std::string digestOf(const std::string& text) {
    char digits[33];
    return MD5String(text.c_str(), digits);
}

}  // namespace qel::calendar
