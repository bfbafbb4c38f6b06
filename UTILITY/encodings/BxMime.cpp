#include "QelUtility/BxMime.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>

#include "platform/AsciiText.h"

namespace qel::encodings {
namespace {

constexpr std::string_view kTypeName = "MULTIPART";
constexpr std::string_view kParameterName = "BOUNDARY";

template <typename Char>
Char* pastSpace(Char* text) {
    while (platform::isAsciiSpace(*text)) ++text;
    return text;
}

char* pastOneLineBreak(char* text) {
    if (*text == '\r') ++text;
    if (*text == '\n') ++text;
    return text;
}

// The position after the "=" of the boundary parameter, or null. `separator` is the ";" before the
// parameters.
const char* findBoundary(const char* separator, const char* lineEnd) {
    // Behind the separator, then behind each "=".
    for (const char* at = separator;;) {
        at = pastSpace(at + 1);
        if (at >= lineEnd) return nullptr;
        const char* equals = std::strchr(at, '=');
        if (equals == nullptr) return nullptr;
        const std::string_view name(at, static_cast<std::size_t>(equals - at));
        if (name.size() != kParameterName.size()) return nullptr;
        if (platform::equalNoCase(name, kParameterName)) return equals + 1;
        at = equals;
    }
}

// The boundary that begins at `start`, behind the "=".
std::string_view boundaryAt(const char* start, const char* lineEnd) {
    const char* begin = pastSpace(start);
    if (begin > lineEnd) return {};
    begin = *begin == '"' ? begin + 1 : start;
    if (begin >= lineEnd) return {};
    const std::string_view rest(begin, static_cast<std::size_t>(lineEnd - begin));
    return rest.substr(0, rest.find_first_of("\"\t\r\n"));
}

}  // namespace
}  // namespace qel::encodings

char* QELUTILITY_CALL GetFoldedLineEnd(char* text, char** next) {
    char* ignored = nullptr;
    char*& following = next != nullptr ? *next : ignored;
    following = text;
    if (text == nullptr || *text == '\0') return text;

    char* at = std::strchr(text, '\r');
    bool crMayFollow = at != nullptr;
    if (at == nullptr) at = std::strchr(text, '\n');
    if (at == nullptr) return following = text + std::strlen(text);
    for (;;) {
        char* const end = at;
        at = qel::encodings::pastOneLineBreak(end);
        if (*at != ' ' && *at != '\t') {
            following = at;
            return end;
        }
        // The line goes on. Once no CR is left there never is one again, and a text of many folded
        // lines is not searched to its end for each of them.
        char* const cr = crMayFollow ? std::strchr(at, '\r') : nullptr;
        crMayFollow = cr != nullptr;
        if (cr != nullptr) {
            at = cr;
            continue;
        }
        char* const lf = std::strchr(at, '\n');
        if (lf == nullptr) return following = end + std::strlen(end);
        // From behind the LF: a line folded with LF alone ends one character late by this.
        at = lf + 1;
    }
}

const char* QELUTILITY_CALL GetMIMEDelimiter(char* value, VStr& out) {
    if (value == nullptr) return nullptr;
    char* const type = qel::encodings::pastSpace(value);
    char* const slash = std::strchr(type, '/');
    if (slash == nullptr ||
        !qel::platform::equalNoCase({type, static_cast<std::size_t>(slash - type)},
                                    qel::encodings::kTypeName))
        return nullptr;
    char* const separator = std::strchr(slash, ';');
    if (separator == nullptr) return nullptr;
    const char* const lineEnd = GetFoldedLineEnd(separator, nullptr);
    const char* const start = qel::encodings::findBoundary(separator, lineEnd);
    if (start == nullptr) return nullptr;

    const std::string_view boundary = qel::encodings::boundaryAt(start, lineEnd);
    if (boundary.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return nullptr;
    // By way of a string of its own, since `value` may be out's text.
    VStr result;
    result.Copy(boundary.empty() ? "" : boundary.data(), static_cast<int>(boundary.size()));
    if (result.GetLength() != static_cast<int>(boundary.size())) return nullptr;
    out <<= result;
    return out;
}
