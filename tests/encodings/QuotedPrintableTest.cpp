// Quoted-printable: both encoders against what readers need of their lines, the decoder against
// well-formed and broken text, and every buffer size around the exact one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QelUtility/BxQuotedPrintable.h"

namespace {

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
    const struct {
        std::string encoded;
        std::string text;
    } rows[] = {
        {"", ""},
        {"If you believe that truth=3Dbeauty, then surely =\r\nmathematics is",
         "If you believe that truth=beauty, then surely mathematics is"},
        {"Now's the time =\r\nfor all folk to come=\r\n to the aid of their country.",
         "Now's the time for all folk to come to the aid of their country."},
        {"=c3=a9=C3=A9=0d=0A", "\xC3\xA9\xC3\xA9\r\n"},
        {"a= \t\r\nb=\nc=\rd", "abcd"},                // soft breaks of every kind, padded or not
        {"=\r\n=\r\n=\r\n", ""},                       // nothing but soft breaks
        {"a \t\r\nb \nc ", "a\r\nb\nc "},              // padding goes, a text's last blank stays
        {"a=20\r\nb=09\n", "a \r\nb\t\n"},             // an encoded blank is no padding
        {"=3D41 =3d", "=41 ="},                        // decoded once, not twice
        {"=G1=4=41= x==41=\xC3", "=G1=4A= x=A=\xC3"},  // escapes that are none
        {"50%=", "50%="},
        {"x=4", "x=4"},
        {"x= \t", "x= \t"},
        {std::string("a\0b=00c", 7), std::string("a\0b\0c", 5)},
        {"caf\xE9 \x01", "caf\xE9 \x01"},  // bytes that should have been escaped
    };
    for (const auto& row : rows) EXPECT_EQ(decoded(row.encoded), row.text) << row.encoded;

    std::string inPlace = "a=3D=\r\nb==";
    size_t length = 0;
    ASSERT_EQ(decodeQP(inPlace.data(), inPlace.size(), inPlace.data(), inPlace.size() + 1, &length),
              0);
    EXPECT_EQ(inPlace.substr(0, length), "a=b==");
}

TEST(QuotedPrintable, EncodesValuesAndBodies) {
    EXPECT_EQ(run(encodeAtColumn0, ""), "");
    EXPECT_EQ(run(encodeAtColumn0, "Caf\xC3\xA9 = 1\r\n2\n"), "Caf=C3=A9 =3D 1=0D=0A2=0A");
    EXPECT_EQ(run(encodeAtColumn0, "a \tb \t"), "a \tb =09");
    EXPECT_EQ(run(encodeAtColumn0, std::string("\0\x7F\xFF;:~!", 7)), "=00=7F=FF;:~!");
    EXPECT_EQ(run(encodeQuotedPrintable, "a \r\nb\t\nc\rd\r\n\r\n "),
              "a=20\r\nb=09\r\nc=0Dd\r\n\r\n=20");
}

TEST(QuotedPrintable, BreaksLinesOnlyWhereItMust) {
    const std::string full(76, 'x');
    EXPECT_EQ(run(encodeAtColumn0, full), full);
    EXPECT_EQ(run(encodeAtColumn0, full + "y"), full.substr(1) + "=\r\nxy");
    EXPECT_EQ(run(encodeQuotedPrintable, full + "\r\ny"), full + "\r\ny");
    EXPECT_EQ(run(encodeAtColumn0, full.substr(3) + "\n"), full.substr(3) + "=0A");
    EXPECT_EQ(run(encodeAtColumn0, full.substr(2) + "\n"), full.substr(2) + "=\r\n=0A");
    // A blank never begins a line that follows a soft break, a character is never cut in two.
    EXPECT_EQ(run(encodeAtColumn0, full.substr(1) + "  z"), full.substr(1) + "=\r\n=20 z");
    EXPECT_EQ(run(encodeAtColumn0, full.substr(8) + "\xF0\x9F\x98\x80!"),
              full.substr(8) + "=\r\n=F0=9F=98=80!");
    EXPECT_EQ(run(encodeAtColumn0, full.substr(8) + "\xE2\x82\xAC!"),
              full.substr(8) + "=\r\n=E2=82=AC!");
    // Bytes that begin a character and do not go on stand alone.
    EXPECT_EQ(run(encodeAtColumn0, full.substr(4) + "\xE2xy!"), full.substr(4) + "=E2=\r\nxy!");
    EXPECT_EQ(run(encodeAtColumn0, full.substr(3) + "\xE2"), full.substr(3) + "=E2");
    EXPECT_EQ(run(encodeAtColumn0, full.substr(5) + "\r\nz"), full.substr(5) + "=\r\n=0D=0Az");
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
