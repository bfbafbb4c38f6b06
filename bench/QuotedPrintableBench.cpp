// Quoted-printable, beside the simplest loop that does the same work on plain text.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxQuotedPrintable.h"

namespace qel::bench {

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// Letters in words, a character of two bytes in every eighth word.
std::string plainText() {
    std::string text;
    for (int word = 0; text.size() < kMebibyte; ++word)
        text += word % 8 == 7 ? "Stra\xC3\x9F"
                                "e "
                              : "appointment ";
    text.resize(kMebibyte - 1);
    return text + '.';
}

struct Sample {
    Sample() : text(plainText()), code(4 * text.size()) {
        std::size_t length = 0;
        encodeQP(text.data(), text.size(), 0, code.data(), code.size(), &length);
        code.resize(length);
    }
    std::string text;
    std::vector<char> code;
};

int hexOf(char c) {
    return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
}

// Decodes what encodeQP makes, and nothing else.
std::size_t byMemchr(const char* code, std::size_t size, char* out) {
    char* const start = out;
    const char* const end = code + size;
    while (code < end) {
        const auto* equals =
            static_cast<const char*>(std::memchr(code, '=', static_cast<std::size_t>(end - code)));
        const char* const stop = equals == nullptr ? end : equals;
        std::memcpy(out, code, static_cast<std::size_t>(stop - code));
        out += stop - code;
        if (equals == nullptr) break;
        if (equals[1] != '\r') *out++ = static_cast<char>(hexOf(equals[1]) * 16 + hexOf(equals[2]));
        code = equals + 3;
    }
    return static_cast<std::size_t>(out - start);
}

}  // namespace

void addQuotedPrintable() {
    const auto sample = std::make_shared<Sample>();
    const auto same = [sample] {
        std::vector<char> ours(sample->code.size() + 1);
        std::vector<char> theirs(sample->code.size() + 1);
        std::size_t length = 0;
        decodeQP(sample->code.data(), sample->code.size(), ours.data(), ours.size(), &length);
        return std::string(ours.data(), length) == sample->text &&
               byMemchr(sample->code.data(), sample->code.size(), theirs.data()) == length &&
               std::memcmp(ours.data(), theirs.data(), length) == 0;
    };
    Comparison({"quoted-printable decode, 1 MiB", 1.5, "each byte read twice, written once",
                sample->code.size()},
               same)
        .ours([sample, out = std::vector<char>(sample->code.size() + 1)]() mutable {
            std::size_t length = 0;
            decodeQP(sample->code.data(), sample->code.size(), out.data(), out.size(), &length);
            benchmark::DoNotOptimize(length);
        })
        .peer("memchr, no checks",
              [sample, out = std::vector<char>(sample->code.size() + 1)]() mutable {
                  benchmark::DoNotOptimize(
                      byMemchr(sample->code.data(), sample->code.size(), out.data()));
              });
    Comparison(
        {"quoted-printable encode, 1 MiB", 1, "each byte read twice, written once", kMebibyte},
        same)
        .ours([sample, out = std::vector<char>(4 * kMebibyte)]() mutable {
            std::size_t length = 0;
            encodeQP(sample->text.data(), sample->text.size(), 0, out.data(), out.size(), &length);
            benchmark::DoNotOptimize(length);
        });
}

}  // namespace qel::bench
