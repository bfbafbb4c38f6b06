#include "Json.h"

#include <ostream>

#include "Text.h"

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

void writeJson(std::ostream& out, const Json& document) {
    // The replacement is for texts that did not come through jsonText: bad bytes never throw.
    out << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace qel::cli
