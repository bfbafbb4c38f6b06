#include "calendar/report/Html.h"

#include <array>

#include "calendar/base/Text.h"

namespace qel::calendar {

namespace {

// What markup would take for its own.
std::string_view referenceOf(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

// What is to be done with a byte: printable() has a look at texts that have others than ASCII.
enum class Treatment : unsigned char { None, Reference, Look };

constexpr std::array<Treatment, 256> kTreatments = [] {
    std::array<Treatment, 256> all{};
    for (std::size_t byte = 0; byte < all.size(); ++byte)
        if (byte < ' ' || byte > '~') all[byte] = Treatment::Look;
    for (const char c : {'&', '<', '>', '"', '\''})
        all[static_cast<unsigned char>(c)] = Treatment::Reference;
    return all;
}();

Treatment treatmentOf(char c) {
    return kTreatments[static_cast<unsigned char>(c)];
}

// False at a byte that needs a look, where `looks`.
bool addEscaped(std::string& page, std::string_view text, bool looks) {
    std::size_t begin = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const Treatment treatment = treatmentOf(text[at]);
        if (treatment == Treatment::None) continue;
        if (treatment == Treatment::Look && looks) return false;
        if (treatment == Treatment::Look) continue;
        page.append(text.substr(begin, at - begin)).append(referenceOf(text[at]));
        begin = at + 1;
    }
    page.append(text.substr(begin));
    return true;
}

}  // namespace

void addHtml(std::string& page, std::string_view text, std::size_t longest) {
    const std::size_t before = page.size();
    if (text.size() <= longest && addEscaped(page, text, true)) return;
    page.resize(before);
    addEscaped(page, printable(text, longest), false);
}

std::string html(std::string_view text, std::size_t longest) {
    std::string page;
    addHtml(page, text, longest);
    return page;
}

void addHtmlLines(std::string& page, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        addHtml(page, line);
        page += '\n';
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

std::string counted(std::uint64_t number, std::string_view one, std::string_view many) {
    return std::to_string(number) + " " + std::string(number == 1 ? one : many);
}

}  // namespace qel::calendar
