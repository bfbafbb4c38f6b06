#include "Terminal.h"

#include <cstdlib>

#include "platform/Console.h"

namespace qel::cli {

int outputWidth() {
    constexpr int kDefault = 80;
    constexpr int kNarrowest = 20;
    if (!platform::outputIsTerminal()) return kDefault;
    const int width = platform::outputColumns();
    return width < kNarrowest ? kDefault : width;
}

bool outputHighlights() {
    const char* noColor = std::getenv("NO_COLOR");
    if (noColor != nullptr && *noColor != '\0') return false;
    return platform::outputIsTerminal() && platform::outputUnderstandsEscapes();
}

}  // namespace qel::cli
