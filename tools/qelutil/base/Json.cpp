#include "base/Json.h"

#include <ostream>

#include "base/Text.h"

namespace qel::cli {

std::string jsonText(std::string_view text) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string value;
    value.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8CharacterLength(text);
        if (length == 0) {
            const auto byte = static_cast<unsigned char>(text[0]);
            value += "\\x";
            value += kDigits[byte >> 4U];
            value += kDigits[byte & 0x0FU];
            text.remove_prefix(1);
        } else {
            value.append(text.substr(0, length));
            text.remove_prefix(length);
        }
    }
    return value;
}

void writeJson(std::ostream& out, std::string_view command, const Json& members) {
    Json document{{"format", kJsonFormat}, {"command", command}};
    document.update(members);
    // The replacement is for texts that did not come through jsonText: bad bytes never throw.
    out << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void JsonArrayWriter::begin() {
    out_ << "{\n  \"format\": " << kJsonFormat << ",\n  \"command\": " << Json(command_).dump()
         << ",\n  " << Json(member_).dump() << ": [";
}

void JsonArrayWriter::add(const Json& element) {
    if (!begun_) begin();
    out_ << (begun_ ? ",\n    " : "\n    ");
    begun_ = true;
    // Within a text a line feed is escaped: those that are left are the layout's.
    const std::string text = element.dump(2, ' ', false, Json::error_handler_t::replace);
    std::string_view rest = text;
    for (std::size_t end; (end = rest.find('\n')) != std::string_view::npos;) {
        out_ << rest.substr(0, end + 1) << "    ";
        rest.remove_prefix(end + 1);
    }
    out_ << rest;
}

void JsonArrayWriter::finish() {
    if (!begun_) begin();
    out_ << (begun_ ? "\n  ]\n}\n" : "]\n}\n");
}

}  // namespace qel::cli
