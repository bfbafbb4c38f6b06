// Quoted-printable: both encoders against what readers need of their lines, the decoder against
// well-formed and broken text, and every buffer size around the exact one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QelUtility/BxQuotedPrintable.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::Row;

using Function = int(QELUTILITY_CALL*)(const char*, size_t, char*, size_t, size_t*);

int QELUTILITY_CALL encodeAtColumn0(const char* text, size_t length, char* out, size_t outSize,
                                    size_t* resultLength) {
    return encodeQP(text, length, 0, out, outSize, resultLength);
}

// Calls with no buffer, with a buffer one byte too small and with an exact one, and checks that
// all three report the same length and that nothing is written beside the result.
std::string run(Function function, const std::string& text) {
    size_t needed = 77;
    EXPECT_EQ(function(text.data(), text.size(), nullptr, 0, &needed), 0);
    std::vector<char> buffer(needed + 2, '~');
    size_t reported = 0;
    EXPECT_EQ(function(text.data(), text.size(), buffer.data(), needed, &reported),
              QEL_OUTPUT_TOO_SMALL);
    EXPECT_EQ(reported, needed);
    EXPECT_EQ(buffer[0], '~');
    EXPECT_EQ(function(text.data(), text.size(), buffer.data(), needed + 1, &reported), 0);
    EXPECT_EQ(reported, needed);
    EXPECT_EQ(buffer[needed], '\0');
    EXPECT_EQ(buffer[needed + 1], '~');
    return {buffer.data(), needed};
}

std::string encodeFrom(size_t column, const std::string& text) {
    size_t needed = 0;
    EXPECT_EQ(encodeQP(text.data(), text.size(), column, nullptr, 0, &needed), 0);
    std::string out(needed + 1, '~');
    EXPECT_EQ(encodeQP(text.data(), text.size(), column, out.data(), out.size(), nullptr), 0);
    out.resize(needed);
    return out;
}

std::string decoded(const std::string& text) {
    return run(decodeQP, text);
}

TEST(QuotedPrintable, DecodesWhatPhonesAndMailersWrite) {
    for (Row& row : list("encodings/quoted.txt"))
        EXPECT_EQ(decoded(row["quoted"]), row["text"]) << row["quoted"];

    std::string inPlace = "a=3D=\r\nb==";
    size_t length = 0;
    ASSERT_EQ(decodeQP(inPlace.data(), inPlace.size(), inPlace.data(), inPlace.size() + 1, &length),
              0);
    EXPECT_EQ(inPlace.substr(0, length), "a=b==");
}

TEST(QuotedPrintable, EncodesValuesAndBodies) {
    for (Row& row : list("encodings/unquoted.txt")) {
        const Function encode = row["as"] == "body" ? encodeQuotedPrintable : encodeAtColumn0;
        EXPECT_EQ(run(encode, row["text"]), row["quoted"]) << row["text"];
    }
    // The property's name counts.
    EXPECT_EQ(encodeFrom(70, "123456"), "123456");
    EXPECT_EQ(encodeFrom(70, "1234567"), "12345=\r\n67");
    EXPECT_EQ(encodeFrom(76, "1"), "=\r\n1");
    EXPECT_EQ(encodeFrom(static_cast<size_t>(-1), "1"), "=\r\n1");
    EXPECT_EQ(encodeFrom(100, ""), "");
}

TEST(QuotedPrintable, RefusesWhatItCannotDo) {
    size_t length = 9;
    char out[4];
    EXPECT_EQ(encodeQP(nullptr, 3, 0, out, sizeof out, &length), QEL_NOT_INITIALIZED);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(decodeQP(nullptr, 0, out, sizeof out, &length), 0);
    EXPECT_EQ(out[0], '\0');
    EXPECT_EQ(decodeQP("", 0, out, 0, nullptr), QEL_OUTPUT_TOO_SMALL);
    // Many blanks and many "=" cost time in proportion, not its square.
    std::string hostile;
    for (int i = 0; i < 200000; ++i) hostile += "=    ";
    EXPECT_EQ(decoded(hostile), hostile);
}

}  // namespace
