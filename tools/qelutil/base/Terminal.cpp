#include "base/Terminal.h"

#include <algorithm>
#include <cstdlib>

#include "platform/Console.h"

namespace qel::cli {

namespace {

Color chosen = Color::Auto;

int usable(bool isTerminal, int width) {
    constexpr int kDefault = 80;
    constexpr int kNarrowest = 20;
    return !isTerminal || width < kNarrowest ? kDefault : width;
}

// `understands` is asked only where it matters: on Windows it switches the understanding on.
template <class Understands>
bool highlights(bool isTerminal, const Understands& understands) {
    if (chosen == Color::Never) return false;
    if (chosen == Color::Auto) {
        const char* noColor = std::getenv("NO_COLOR");
        if (!isTerminal || (noColor != nullptr && *noColor != '\0')) return false;
    }
    return understands() || chosen == Color::Always;
}

}  // namespace

int outputWidth() {
    const bool terminal = platform::outputIsTerminal();
    return usable(terminal, terminal ? platform::outputColumns() : 0);
}

bool outputIsRead() {
    return platform::outputIsTerminal();
}

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent) {
    constexpr std::size_t kNarrowest = 10;
    const std::size_t room = width > indent + kNarrowest ? width - indent : kNarrowest;
    // Characters, not the bytes of their UTF-8.
    const auto columns = [](std::string_view word) {
        return static_cast<std::size_t>(std::count_if(word.begin(), word.end(), [](char c) {
            return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
        }));
    };
    std::string result;
    std::size_t used = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' ', text.find_first_not_of(' ')), text.size());
        const std::string_view word = text.substr(0, end);  // with the blanks before it
        if (used != 0 && used + columns(word) > room) {
            const std::string_view bare = word.substr(std::min(word.find_first_not_of(' '), end));
            result += "\n" + std::string(indent, ' ') + std::string(bare);
            used = columns(bare);
        } else {
            result += word;
            used += columns(word);
        }
        text.remove_prefix(end);
    }
    return result;
}

int errorWidth() {
    const bool terminal = platform::errorIsTerminal();
    return usable(terminal, terminal ? platform::errorColumns() : 0);
}

void chooseColor(Color color) {
    chosen = color;
}

bool outputHighlights() {
    return highlights(platform::outputIsTerminal(), platform::outputUnderstandsEscapes);
}

bool errorHighlights() {
    return highlights(platform::errorIsTerminal(), platform::errorUnderstandsEscapes);
}

}  // namespace qel::cli
