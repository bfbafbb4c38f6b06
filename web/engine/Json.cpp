#include "Json.h"

namespace qel::web {

namespace {

// The length of the character of UTF-8 that the text begins with; 0 when it is invalid.
std::size_t characterAt(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto follows = [&byte](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return follows(1) ? 2 : 0;
    if (first >= 0xE0 && first < 0xF0) {
        if (!follows(1) || !follows(2)) return 0;
        if (first == 0xE0 && byte(1) < 0xA0) return 0;
        return first == 0xED && byte(1) >= 0xA0 ? 0 : 3;
    }
    if (first < 0xF0 || first > 0xF4 || !follows(1) || !follows(2) || !follows(3)) return 0;
    if (first == 0xF0 && byte(1) < 0x90) return 0;
    return first == 0xF4 && byte(1) >= 0x90 ? 0 : 4;
}

bool isPlain(char c) {
    return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
}

}  // namespace

void Json::separate() {
    if (!first_) out_ += ',';
    first_ = false;
}

void Json::open(char bracket) {
    separate();
    out_ += bracket;
    first_ = true;
}

void Json::close(char bracket) {
    out_ += bracket;
    first_ = false;
}

void Json::key(std::string_view name) {
    value(name);
    out_ += ':';
    first_ = true;
}

void Json::value(std::string_view text) {
    separate();
    out_ += '"';
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && isPlain(text[plain])) ++plain;
        out_.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        const char c = text.front();
        std::size_t length = 1;
        if (c == '"' || c == '\\') {
            out_ += '\\';
            out_ += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            escape(c);
        } else if (const std::size_t whole = characterAt(text); whole > 0) {
            out_.append(text.substr(0, whole));
            length = whole;
        } else {
            out_ += "\xEF\xBF\xBD";
        }
        text.remove_prefix(length);
    }
    out_ += '"';
}

void Json::escape(char control) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    if (control == '\n') {
        out_ += "\\n";
    } else if (control == '\r') {
        out_ += "\\r";
    } else {
        out_ += "\\u00";
        out_ += kDigits[static_cast<unsigned char>(control) >> 4U];
        out_ += kDigits[static_cast<unsigned char>(control) & 15U];
    }
}

void Json::value(std::int64_t number) {
    separate();
    out_ += std::to_string(number);
}

void Json::raw(std::string_view json) {
    separate();
    out_ += json;
}

}  // namespace qel::web
