#include "base/Terminal.h"

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
