#include "calendar/text/TransferEncodings.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "calendar/base/Ascii.h"

namespace qel::calendar {

std::string undoQuotedPrintable(std::string_view text) {
    std::string result(text.size() + 1, '\0');
    std::size_t length = 0;
    if (decodeQP(text.data(), text.size(), result.data(), result.size(), &length) != 0)
        return std::string(text);
    result.resize(length);
    return result;
}

std::optional<std::string> undoBase64(std::string_view text) {
    auto clean = cleanBase64(text);
    if (!clean) return std::nullopt;
    std::string result(clean->size() + 3, '\0');
    const int length =
        Bx_Base64_Decode(clean->c_str(), reinterpret_cast<unsigned char*>(result.data()),
                         static_cast<unsigned>(result.size()));
    if (length < 0) return clean;
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::optional<std::string> cleanBase64(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(clean),
                 [](char c) { return !isBlank(c); });
    if (Bx_Base64_Decode(clean.c_str(), nullptr, 0) < 0) return std::nullopt;
    return clean;
}

namespace {

// A text's line may be BEGIN:VEVENT. Where a soft line break leads to such a word, its first letter
// is encoded, on a line of its own so that none gets too long.
std::string withoutMarks(std::string text) {
    constexpr std::string_view kBreak = "=\r\n";
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = text.find(kBreak); at != std::string::npos; at = text.find(kBreak, at)) {
        at += kBreak.size();
        const std::string_view line = std::string_view(text).substr(at);
        if (!startsWithIgnoreCase(line, "BEGIN:") && !startsWithIgnoreCase(line, "END:")) continue;
        const auto letter = static_cast<unsigned char>(line.front());
        result.append(text, done, at - done);
        result += '=';
        result += kHex[letter >> 4U];
        result += kHex[letter & 0x0FU];
        result += kBreak;
        done = at + 1;
    }
    if (done == 0) return text;
    return result.append(text, done);
}

}  // namespace

std::string quotedPrintable(std::string_view text, std::size_t startColumn) {
    // Three octets for each, and a soft line break of three for each line of 76 at most.
    std::size_t length = 0;
    std::string result(3 * text.size() + 3 * (text.size() / 16 + 2) + 1, '\0');
    if (encodeQP(text.data(), text.size(), startColumn, result.data(), result.size(), &length) != 0)
        return "";
    result.resize(length);
    return withoutMarks(std::move(result));
}

}  // namespace qel::calendar
