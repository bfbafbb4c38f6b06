#include "calendar/text/Escapes.h"

#include <algorithm>

#include "calendar/base/ByteSearch.h"

namespace qel::calendar {

namespace {

bool isVCalendarEscape(std::string_view text, std::size_t at) {
    return text[at] == '\\' && at + 1 < text.size() && (text[at + 1] == ';' || text[at + 1] == ',');
}

}  // namespace

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
            // \" is not in the standard, but many programs write it.
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
    if (!hasAny<'\\', ','>(text)) {
        items.emplace_back(text);
        return items;
    }
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
    std::vector<std::string> fields;
    if (!hasAny<';', ',', '\\'>(text)) {
        fields.emplace_back(text);
        return fields;
    }
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

}  // namespace qel::calendar
