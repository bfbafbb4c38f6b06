#include "calendar/text/TransferEncodings.h"

#include <algorithm>
#include <iterator>

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

std::string quotedPrintable(std::string_view text, std::size_t startColumn) {
    std::size_t length = 0;
    if (encodeQP(text.data(), text.size(), startColumn, nullptr, 0, &length) != 0) return "";
    std::string result(length + 1, '\0');
    encodeQP(text.data(), text.size(), startColumn, result.data(), result.size(), &length);
    result.resize(length);
    return result;
}

}  // namespace qel::calendar
