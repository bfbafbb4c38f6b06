#include "calendar/text/TextCodec.h"

#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/text/CharacterSets.h"

namespace qel::calendar {

namespace {

// Line ends as LF, and no other control characters but tab.
std::string withoutControls(std::string text, std::vector<Note>& notes) {
    const auto isControl = [](char c) { return isBlank(c) && c != ' '; };
    if (std::none_of(text.begin(), text.end(), isControl)) return text;
    std::string result;
    result.reserve(text.size());
    bool dropped = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\r') {
            if (at + 1 == text.size() || text[at + 1] != '\n') result += '\n';
        } else if (!isControl(c) || c == '\n' || c == '\t') {
            result += c;
        } else {
            dropped = true;
        }
    }
    if (dropped) notes.emplace_back(NoteCode::ControlCharactersRemoved);
    return result;
}

std::string withoutEncoding(std::string_view bytes, TransferEncoding encoding,
                            std::vector<Note>& notes) {
    if (encoding == TransferEncoding::QuotedPrintable) return undoQuotedPrintable(bytes);
    if (encoding == TransferEncoding::Base64) {
        if (auto decoded = undoBase64(bytes)) return *std::move(decoded);
        notes.emplace_back(NoteCode::Base64Invalid);
    }
    return std::string(bytes);
}

}  // namespace

std::string decodedText(std::string_view bytes, TransferEncoding encoding, std::string_view set,
                        std::string_view unlabelled, std::vector<Note>& notes) {
    return withoutControls(toUtf8(withoutEncoding(bytes, encoding, notes), set, unlabelled, notes),
                           notes);
}

std::string decodedText(std::string_view bytes) {
    std::vector<Note> ignored;
    return decodedText(bytes, TransferEncoding::None, "", "", ignored);
}

}  // namespace qel::calendar
