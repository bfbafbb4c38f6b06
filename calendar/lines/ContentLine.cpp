#include "calendar/lines/ContentLine.h"

#include <algorithm>
#include <array>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

// Takes the blanks at `folds` out of `text`, from `from` on.
void eraseFolds(std::string& text, std::vector<std::size_t>& folds, std::size_t from) {
    std::size_t write = from;
    auto fold = std::lower_bound(folds.begin(), folds.end(), from);
    for (std::size_t read = from; read < text.size(); ++read) {
        if (fold != folds.end() && *fold == read) {
            ++fold;
            continue;
        }
        text[write++] = text[read];
    }
    text.resize(write);
}

bool foldedByWidth(const RawLine& raw) {
    if (raw.folds.size() == 1) return raw.widest >= 74 && raw.widest <= 76;
    return raw.widest == raw.narrowest && raw.widest >= 70;
}

bool hasBlankBesidesFolds(const RawLine& raw, std::size_t from) {
    auto fold = std::lower_bound(raw.folds.begin(), raw.folds.end(), from);
    for (std::size_t at = from; at < raw.text.size(); ++at)
        if (fold != raw.folds.end() && *fold == at)
            ++fold;
        else if (raw.text[at] == ' ' || raw.text[at] == '\t')
            return true;
    return false;
}

// Undoes the folds of the head always as iCalendar does, those of the value by `style`.
void unfold(RawLine& raw, FoldStyle style) {
    if (raw.folds.empty()) return;
    const std::size_t colon = std::min(raw.colon, raw.text.size());
    const bool eraseAll =
        style == FoldStyle::ICalendar || foldedByWidth(raw) || !hasBlankBesidesFolds(raw, colon);
    if (eraseAll) {
        eraseFolds(raw.text, raw.folds, 0);
    } else {
        std::string head = raw.text.substr(0, colon);
        raw.text.erase(0, colon);
        std::erase_if(raw.folds, [&](std::size_t fold) { return fold >= colon; });
        eraseFolds(head, raw.folds, 0);
        raw.text.insert(0, head);
    }
    raw.folds.clear();
    raw.colon = findColon(raw.text);
}

// Each character of a name in capitals; 0 for those that no name has.
constexpr auto kNameCharacters = [] {
    std::array<char, 256> table{};
    for (std::size_t each = 0; each < table.size(); ++each) {
        const char c = static_cast<char>(each);
        if (isAlpha(c) || isDigit(c) || c == '-' || c == '_' || c == '.') table[each] = toUpper(c);
    }
    return table;
}();

// How many characters at the beginning of `text` may be in a name.
std::size_t nameLength(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && kNameCharacters[static_cast<unsigned char>(text[length])] != 0)
        ++length;
    return length;
}

// Removes the name at the front of `head`, and the ";" after it, and returns it in capitals. Empty
// when it is not a valid name. REQUIRES: a part of `owner`.
std::string_view takeName(std::string& owner, std::string_view& head) {
    std::size_t length = nameLength(head);
    std::string_view name = head.substr(0, length);
    if (length < head.size() && head[length] == ';') {
        head.remove_prefix(length + 1);
    } else if (length == head.size()) {
        head = {};
    } else {
        name = trimmed(nextField(head, ';'));
        length = nameLength(name);
    }
    if (length == 0 || length < name.size()) return {};
    char* const begin = owner.data() + (name.data() - owner.data());
    for (std::size_t at = 0; at < length; ++at)
        begin[at] = kNameCharacters[static_cast<unsigned char>(begin[at])];
    return name;
}

// The part of `head` up to a ";" outside quotes, which is taken off with it.
std::string_view nextParameter(std::string_view& head) {
    bool inQuotes = false;
    std::size_t end = 0;
    for (; end < head.size(); ++end) {
        if (head[end] == '"') inQuotes = !inQuotes;
        if (head[end] == ';' && !inQuotes) break;
    }
    if (inQuotes) end = std::min(head.find(';'), head.size());
    const std::string_view parameter = head.substr(0, end);
    head.remove_prefix(std::min(end + 1, head.size()));
    return parameter;
}

// Takes quotes off and undoes RFC 6868: ^n, ^' and ^^.
std::string parameterValue(std::string_view text) {
    const auto isSpecial = [](char c) { return c == '"' || c == '^'; };
    if (std::none_of(text.begin(), text.end(), isSpecial)) return std::string(text);
    std::string value;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') continue;
        if (text[at] == '^' && at + 1 < text.size()) {
            const char next = text[at + 1];
            if (next == 'n' || next == '\'' || next == '^') {
                value += next == 'n' ? '\n' : next == '\'' ? '"' : '^';
                ++at;
                continue;
            }
        }
        value += text[at];
    }
    return value;
}

}  // namespace

std::string_view ContentLine::parameter(std::string_view parameterName) const {
    for (const Parameter& each : parameters)
        if (each.name == parameterName) return each.value;
    return {};
}

bool ContentLine::hasParameter(std::string_view parameterName) const {
    return std::any_of(
        parameters.begin(), parameters.end(),
        [&](const Parameter& each) { return each.name == parameterName; });
}

void ContentLine::moveTo(Arena& texts) {
    name = texts.keep(name);
    value = texts.keep(value);
}

bool parseContentLine(RawLine& raw, FoldStyle style, ContentLine& line) {
    unfold(raw, style);
    line.number = raw.number;
    line.parameters.clear();
    line.value = {};
    line.cut = raw.cut;
    line.openEnd = raw.openEnd;
    const std::size_t colon = raw.colon;
    if (colon == std::string::npos) return false;
    std::string_view head = std::string_view(raw.text).substr(0, colon);
    line.name = takeName(raw.text, head);
    if (line.name.empty()) return false;
    line.id = propertyName(line.name);
    while (!head.empty()) {
        const std::string_view parameter = nextParameter(head);
        const std::size_t equals = parameter.find('=');
        if (trimmed(parameter).empty()) continue;
        if (equals == std::string_view::npos) {
            line.parameters.push_back({"", parameterValue(trimmed(parameter))});
        } else {
            line.parameters.push_back({upper(trimmed(parameter.substr(0, equals))),
                                       parameterValue(trimmed(parameter.substr(equals + 1)))});
        }
    }
    line.value = std::string_view(raw.text).substr(colon + 1);
    return true;
}

}  // namespace qel::calendar
