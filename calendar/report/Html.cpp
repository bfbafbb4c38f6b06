#include "calendar/report/Html.h"

#include "calendar/base/Text.h"

namespace qel::calendar {

std::string html(std::string_view text, std::size_t longest) {
    std::string result;
    for (const char c : printable(text, longest)) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\'':
                result += "&#39;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string htmlLines(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        result += html(line) + "\n";
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return result;
}

std::string counted(std::uint64_t number, std::string_view one, std::string_view many) {
    return std::to_string(number) + " " + std::string(number == 1 ? one : many);
}

}  // namespace qel::calendar
