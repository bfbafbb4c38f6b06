#include "calendar/text/ContentValue.h"

#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/text/CharacterSets.h"
#include "calendar/text/TextCodec.h"

namespace qel::calendar {

namespace {

bool hasEncoding(const ContentLine& line, std::string_view encoding) {
    return std::any_of(
        line.parameters.begin(), line.parameters.end(),
        [encoding](const Parameter& each) {
            return (each.name.empty() || each.name == "ENCODING") &&
                   equalsIgnoreCase(each.value, encoding);
        });
}

}  // namespace

bool isBase64(const ContentLine& line) {
    return hasEncoding(line, "BASE64") || hasEncoding(line, "B");
}

bool isEncoded(const ContentLine& line) {
    return hasEncoding(line, "QUOTED-PRINTABLE") || line.hasParameter("");
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
    const std::size_t before = notes.size();
    const TransferEncoding encoding = hasEncoding(line, "QUOTED-PRINTABLE")
                                          ? TransferEncoding::QuotedPrintable
                                      : isBase64(line) ? TransferEncoding::Base64
                                                       : TransferEncoding::None;
    std::string text = decodedText(line.value, encoding, trimmed(line.parameter("CHARSET")), notes);
    for (std::size_t each = before; each < notes.size(); ++each) {
        notes[each].line = line.number;
        notes[each].property = line.name;
    }
    return text;
}

void decodeParameters(ContentLine& line) {
    for (Parameter& each : line.parameters)
        if (!isAscii(each.value)) each.value = utf8OrWindows1252(std::move(each.value));
}

void decodeParameters(Component& component) {
    for (ContentLine& each : component.properties) decodeParameters(each);
    for (Component& each : component.children) decodeParameters(each);
}

}  // namespace qel::calendar
