#include "calendar/text/ContentValue.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"
#include "calendar/charsets/CharacterSet.h"
#include "calendar/text/CharacterSets.h"
#include "calendar/text/TextCodec.h"

namespace qel::calendar {

namespace {

bool hasEncoding(const ContentLine& line, std::string_view encoding) {
    return std::any_of(
        line.parameters.begin(), line.parameters.end(),
        [encoding](const Parameter& each) {
            return (each.name.empty() || each.name == "ENCODING"sv) &&
                   equalsIgnoreCase(each.value, encoding);
        });
}

}  // namespace

bool isBase64(const ContentLine& line) {
    if (line.parameters.empty()) return false;
    return hasEncoding(line, "BASE64") || hasEncoding(line, "B");
}

bool isEncoded(const ContentLine& line) {
    return hasEncoding(line, "QUOTED-PRINTABLE") || line.hasParameter("");
}

bool isPlainText(const ContentLine& line) {
    for (const Parameter& each : line.parameters)
        if (each.name.empty() || each.name == "ENCODING"sv || each.name == "CHARSET"sv)
            return false;
    return isPrintableAscii(line.value);
}

std::string unlabelledText(const ContentLine& line) {
    if (isPlainText(line) || isBase64(line)) return {};
    std::string text = hasEncoding(line, "QUOTED-PRINTABLE") ? undoQuotedPrintable(line.value)
                                                             : std::string(line.value);
    return isUnexplained(text, trimmed(line.parameter("CHARSET"))) ? text : std::string();
}

bool isBinary(const ContentLine& line, std::string_view unlabelled) {
    if (!isBase64(line)) return false;
    auto bytes = undoBase64(line.value);
    if (!bytes) return false;
    const std::string_view set = trimmed(line.parameter("CHARSET"));
    const CharacterSet* const known = findCharacterSet(set);
    if (known != nullptr && changesAscii(*known)) {
        // Before they are decoded, wide units and shifts look like control characters.
        std::string text;
        if (decode(*known, *bytes, text) == 0) bytes = std::move(text);
    }
    const bool controls = std::any_of(bytes->begin(), bytes->end(), [](char c) {
        return isBlank(c) && c != ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\x1b';
    });
    return controls || (unlabelled.empty() && isUnlabelled(set) && !isUtf8(*bytes));
}

std::string decodedValue(const ContentLine& line, std::string_view unlabelled,
                         std::vector<Note>& notes) {
    const std::size_t before = notes.size();
    const TransferEncoding encoding = hasEncoding(line, "QUOTED-PRINTABLE")
                                          ? TransferEncoding::QuotedPrintable
                                      : isBase64(line) ? TransferEncoding::Base64
                                                       : TransferEncoding::None;
    std::string text =
        decodedText(line.value, encoding, trimmed(line.parameter("CHARSET")), unlabelled, notes);
    for (std::size_t each = before; each < notes.size(); ++each) {
        notes[each].line = line.number;
        notes[each].property = line.name;
    }
    return text;
}

void decodeParameters(ContentLine& line, std::string_view unlabelled) {
    for (Parameter& each : line.parameters) {
        if (isUtf8(each.value)) continue;
        const std::string set(trimmed(line.parameter("CHARSET")));
        std::vector<Note> ignored;
        each.value = toUtf8(std::move(each.value), set, unlabelled, ignored);
    }
}

void decodeParameters(Component& component, std::string_view unlabelled) {
    for (ContentLine& each : component.properties)
        if (!each.parameters.empty()) decodeParameters(each, unlabelled);
    for (Component& each : component.children) decodeParameters(each, unlabelled);
}

}  // namespace qel::calendar
