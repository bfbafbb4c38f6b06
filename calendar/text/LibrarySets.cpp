#include "calendar/text/LibrarySets.h"

#include <optional>

#include "QelUtility/BxCharConv.h"
#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"

namespace qel::calendar {

namespace {

// One conversion by the library; nothing when the text has an invalid sequence.
std::optional<std::string> convertWhole(CBxCharConvSvcs& service, _iconv_info* handle,
                                        std::string_view text) {
    if (text.empty()) return std::string();
    // Three bytes of UTF-8 for each byte, and the terminator that a byte-order mark brings.
    std::string result(text.size() * 3 + 4, '\0');
    const char* in = text.data();
    auto left = static_cast<unsigned>(text.size());
    char* out = result.data();
    auto room = static_cast<unsigned>(result.size());
    if (service.iconv(handle, &in, &left, &out, &room) == ~0U) return std::nullopt;
    result.resize(result.size() - room);
    return result;
}

// Character by character, so that only the invalid bytes are replaced.
std::string convertPieces(CBxCharConvSvcs& service, _iconv_info* handle, std::string_view text) {
    std::string result;
    while (!text.empty()) {
        std::optional<std::string> piece;
        std::size_t length = 1;
        for (; length <= 2 && length <= text.size() && !piece; ++length)
            piece = convertWhole(service, handle, text.substr(0, length));
        if (piece) {
            result += *piece;
            text.remove_prefix(length - 1);
        } else {
            result += kReplacement;
            text.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace

const char* libraryCharacterSet(std::string_view set) {
    struct Name {
        std::string_view mime;
        const char* library;
    };
    static constexpr Name kNames[] = {{"WINDOWS-1252", "8859-1"},
                                      {"CP1252", "8859-1"},
                                      {"ISO-8859-1", "8859-1"},
                                      {"ISO8859-1", "8859-1"},
                                      {"LATIN1", "8859-1"},
                                      {"GB2312", "936"},
                                      {"GBK", "936"},
                                      {"CP936", "936"},
                                      {"GB_2312-80", "936"},
                                      {"EUC-CN", "936"},
                                      {"BIG5", "950"},
                                      {"CP950", "950"}};
    for (const Name& name : kNames)
        if (equalsIgnoreCase(set, name.mime)) return name.library;
    return "";
}

std::string fromLibrarySet(std::string_view text, const char* set) {
    CBxCharConvSvcs service;
    _iconv_info* handle = service.iconv_open("UTF-8", set);
    std::optional<std::string> whole = convertWhole(service, handle, text);
    service.iconv_close(handle);
    if (whole) return *std::move(whole);
    // A fresh descriptor: its work buffer stays as small as the pieces.
    handle = service.iconv_open("UTF-8", set);
    std::string pieces = convertPieces(service, handle, text);
    service.iconv_close(handle);
    return pieces;
}

std::string fromWindows1252(std::string_view text) {
    return fromLibrarySet(text, "8859-1");
}

std::string utf8OrWindows1252(std::string text) {
    return isUtf8(text) ? std::move(text) : fromWindows1252(text);
}

}  // namespace qel::calendar
