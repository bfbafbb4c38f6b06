// What is encoded decodes to the same bytes, in lines of at most 76 characters; anything decodes.
#include "Fuzz.h"
#include "QelUtility/BxQuotedPrintable.h"

using namespace qel::fuzz;

namespace {

using Encoder = int(const char*, std::size_t, char*, std::size_t, std::size_t*);

std::string sized(const std::string& text, Encoder* encode) {
    std::size_t length = 0;
    FUZZ_CHECK(encode(text.data(), text.size(), nullptr, 0, &length) == 0);
    std::vector<char> out(length + 1);
    FUZZ_CHECK(encode(text.data(), text.size(), out.data(), length, &length) != 0);
    FUZZ_CHECK(encode(text.data(), text.size(), out.data(), out.size(), &length) == 0);
    FUZZ_CHECK(out[length] == '\0');
    return {out.data(), length};
}

std::size_t startColumn;
int encodeFrom(const char* text, std::size_t length, char* out, std::size_t size,
               std::size_t* result) {
    return encodeQP(text, length, startColumn, out, size, result);
}

}  // namespace

QEL_FUZZ_TARGET(quoted_printable) {
    startColumn = in.choose(100);
    const std::string text = in.text();
    const std::string code = sized(text, encodeFrom);
    FUZZ_CHECK(sized(code, decodeQP) == text);
    std::size_t column = startColumn;
    for (std::size_t i = 0; i < code.size(); ++i) {
        if (code[i] == '\r') {
            FUZZ_CHECK(code[i + 1] == '\n' && i > 0 && code[i - 1] == '=');
            FUZZ_CHECK(column <= std::max<std::size_t>(76, startColumn + 1));
            column = 0;
            ++i;
        } else {
            FUZZ_CHECK(' ' <= code[i] || code[i] == '\t');
            ++column;
        }
    }
    FUZZ_CHECK(column <= std::max<std::size_t>(76, startColumn + 1));

    sized(text, encodeQuotedPrintable);
    const std::string decoded = sized(text, decodeQP);
    FUZZ_CHECK(decoded.size() <= text.size());
    std::string inPlace = text + '\0';
    std::size_t length = 0;
    FUZZ_CHECK(decodeQP(inPlace.data(), text.size(), inPlace.data(), inPlace.size(), &length) == 0);
    FUZZ_CHECK(inPlace.substr(0, length) == decoded);
}
