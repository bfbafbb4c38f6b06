#include "calendar/report/Html.h"

#include "calendar/base/ByteSearch.h"
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

// How long the character is that `text` begins with, where printable() surely leaves it as it is;
// else 0. It has a look at those among which there are some that nobody sees.
std::size_t plainLength(std::string_view text) {
    const char lead = text.front();
    return lead == '\xC2' || lead == '\xD8' || lead == '\xE2' ? 0 : utf8CharacterLength(text);
}

// False at what printable() has a look at, where `looks`.
bool addEscaped(std::string& page, std::string_view text, bool looks) {
    std::size_t begin = 0;
    for (std::size_t at = 0;;) {
        at = looks ? findAnyOrUnprintable<'&', '<', '>', '"', '\''>(text, at)
                   : findAny<'&', '<', '>', '"', '\''>(text, at);
        if (at == text.size()) break;
        const std::string_view reference = referenceOf(text[at]);
        if (!reference.empty()) {
            page.append(text.substr(begin, at - begin)).append(reference);
            begin = ++at;
            continue;
        }
        const bool beyondAscii = (text[at] & 0x80) != 0;
        const std::size_t length = beyondAscii ? plainLength(text.substr(at)) : 0;
        if (length == 0) return false;
        at += length;
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
