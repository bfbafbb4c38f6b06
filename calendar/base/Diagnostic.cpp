#include "calendar/base/Diagnostic.h"

#include <string_view>

namespace qel::calendar {

bool tellsOfLoss(const Diagnostic& message) {
    if (message.severity == Severity::Note) return false;
    // What is quoted may hold anything, quotes too.
    const std::string_view text = message.text;
    const std::size_t first = text.find('"');
    const auto says = [](std::string_view part) {
        return part.find("left out") != std::string_view::npos;
    };
    if (says(text.substr(0, first))) return true;
    return first != std::string_view::npos && says(text.substr(text.rfind('"') + 1));
}

}  // namespace qel::calendar
