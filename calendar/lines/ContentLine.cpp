#include "calendar/lines/ContentLine.h"

#include <algorithm>
#include <array>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/lines/Unfolding.h"

namespace qel::calendar {

namespace {

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
// when it is not a valid name. REQUIRES: `head` is a part of `text`.
std::string_view takeName(char* text, std::string_view& head) {
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
    char* const begin = text + (name.data() - text);
    for (std::size_t at = 0; at < length; ++at)
        begin[at] = kNameCharacters[static_cast<unsigned char>(begin[at])];
    return name;
}

// The part of `head` up to a ";" outside quotes, which is taken off with it.
std::string_view nextParameter(std::string_view& head) {
    bool inQuotes = false;
    std::size_t end = findAny<'"', ';'>(head);
    for (; end < head.size(); ++end) {
        if (head[end] == '"') inQuotes = !inQuotes;
        if (head[end] == ';' && !inQuotes) break;
    }
    if (inQuotes) end = std::min(head.find(';'), head.size());
    const std::string_view parameter = head.substr(0, end);
    head.remove_prefix(std::min(end + 1, head.size()));
    return parameter;
}

// Adds a value without its quotes, and undoes RFC 6868: ^n, ^' and ^^.
void addParameterValue(std::string& value, std::string_view text) {
    if (!hasAny<'"', '^'>(text)) {
        value.append(text);
        return;
    }
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
}

// Parameters without quotes, escapes and blanks, as nearly all are.
void takePlainParameters(std::string_view head, ContentLine& line) {
    while (!head.empty()) {
        std::string_view value = nextField(head, ';');
        if (value.empty()) continue;
        Parameter& parameter = line.parameters.emplace_back();
        if (const std::size_t equals = value.find('='); equals != std::string_view::npos) {
            const std::string_view name = value.substr(0, equals);
            parameter.name.append(name);
            if (capitalsLength(name) != name.size())
                for (char& c : parameter.name) c = toUpper(c);
            value.remove_prefix(equals + 1);
        }
        parameter.value.append(value);
    }
}

void takeParameters(std::string_view head, ContentLine& line) {
    constexpr std::size_t kUsual = 4;
    line.parameters.reserve(kUsual);
    if (findAnyOrUnprintable<'"', '^', ' '>(head, 0) == head.size())
        return takePlainParameters(head, line);
    while (!head.empty()) {
        std::string_view value = trimmed(nextParameter(head));
        if (value.empty()) continue;
        Parameter& parameter = line.parameters.emplace_back();
        if (const std::size_t equals = value.find('='); equals != std::string_view::npos) {
            parameter.name.append(trimmed(value.substr(0, equals)));
            for (char& c : parameter.name) c = toUpper(c);
            value = trimmed(value.substr(equals + 1));
        }
        addParameterValue(parameter.value, value);
    }
}

// "TZID=GMT+01:00:20050601T090000": a zone's name with a colon that should be in quotes.
void takeRestOfZone(ContentLine& line) {
    constexpr std::size_t kDate = 8;
    const std::size_t last = line.value.rfind(':');
    if (last == std::string_view::npos || line.value.size() - last <= kDate ||
        !allDigits(line.value.substr(last + 1, kDate)))
        return;
    std::string_view rest = line.value.substr(0, last);
    line.value.remove_prefix(last + 1);
    std::string& zone = line.parameters.back().value;
    zone += ':';
    addParameterValue(zone, trimmed(nextParameter(rest)));
    takeParameters(rest, line);
}

// Takes the parameters of a line whose value is known.
void takeHead(std::string_view head, ContentLine& line) {
    if (head.empty()) return;
    takeParameters(head, line);
    if (!line.parameters.empty() && line.parameters.back().name == "TZID"sv) takeRestOfZone(line);
}

// Takes the group off a name, "item1.SUMMARY", where a property of calendars is left.
void dropGroup(RawLine& raw, ContentLine& line) {
    if (line.name.starts_with("X-")) return;
    const std::size_t dot = line.name.rfind('.');
    if (dot == std::string_view::npos) return;
    const std::string_view name = line.name.substr(dot + 1);
    const PropertyName id = propertyName(name);
    if (id == PropertyName::Unknown && !name.starts_with("X-")) return;
    raw.group = static_cast<std::size_t>(name.data() - raw.text.view().data()) - 1;
    line.name = name;
    line.id = id;
}

// A name that is not simply one of those that are known. `head` is then what comes after it. False
// when it is not a valid name.
bool parseName(RawLine& raw, std::string_view& head, ContentLine& line) {
    char* const bytes = raw.text.change();
    head = raw.text.view().substr(0, raw.colon);
    line.name = takeName(bytes, head);
    if (line.name.empty()) return false;
    line.untidy = line.name.data() != bytes || isBlank(bytes[line.name.size()]);
    line.id = propertyName(line.name);
    if (line.id == PropertyName::Unknown) dropGroup(raw, line);
    if (line.id != PropertyName::Unknown) line.name = propertyOf(line.id).name;
    return true;
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
    // Names that are known stay anyway.
    if (id == PropertyName::Unknown) name = texts.keep(name);
    value = texts.keep(value);
}

void parseUsualLine(const RawLine& raw, ContentLine& line) {
    const std::string_view text = raw.text.view();
    line.number = raw.number;
    line.id = raw.id;
    line.name = propertyOf(raw.id).name;
    line.value = text.substr(raw.colon + 1);
    if (raw.nameEnd < raw.colon)
        takeHead(text.substr(raw.nameEnd + 1, raw.colon - raw.nameEnd - 1), line);
}

bool parseContentLine(RawLine& raw, FoldStyle style, ContentLine& line) {
    line.wrapped = (!raw.folds.empty() || !raw.indents.empty()) && unfold(raw, style);
    line.number = raw.number;
    line.parameters.clear();
    line.value = {};
    line.cut = raw.cut;
    line.openEnd = raw.openEnd;
    line.untidy = false;
    const std::size_t colon = raw.colon;
    if (colon == std::string::npos) return false;
    std::string_view head;  // the parameters
    line.id = raw.id;
    if (line.id == PropertyName::Unknown) {
        if (!parseName(raw, head, line)) return false;
    } else {
        line.name = propertyOf(line.id).name;
        if (raw.nameEnd < colon)
            head = raw.text.view().substr(raw.nameEnd + 1, colon - raw.nameEnd - 1);
    }
    const std::string_view text = raw.text.view();
    line.value = text.substr(colon + 1);
    takeHead(head, line);
    // The blanks around a colon are not the text's.
    if (line.untidy && colon > 0 && isFoldBlank(text[colon - 1]))
        line.value.remove_prefix(std::min(line.value.find_first_not_of(" \t"), line.value.size()));
    return true;
}

}  // namespace qel::calendar
