// Base64, the MD5 text and the enciphered code: published vectors, every buffer size around the
// right one, malformed text.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "QelUtility/BxEncodings.h"
#include "encodings/BxTea.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::Row;

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

std::string base64(const std::string& text) {
    const auto size = static_cast<unsigned int>(text.size());
    std::string out(4 * ((text.size() + 2) / 3) + 1, '~');
    const auto room = static_cast<unsigned int>(out.size());
    for (const unsigned missing : {1U, 4U, 5U})
        EXPECT_EQ(Bx_Base64_Encode(bytes(text), size, out.data(), room - std::min(missing, room)),
                  -1);
    EXPECT_EQ(out.back(), '~');
    EXPECT_EQ(Bx_Base64_Encode(bytes(text), size, out.data(), room), static_cast<int>(room) - 1);
    EXPECT_EQ(out.back(), '\0');
    out.pop_back();
    return out;
}

// The decoded bytes, or "bad".
std::string unbase64(const std::string& text) {
    std::string out(text.size() + 1, '~');
    const int size = Bx_Base64_Decode(text.c_str(), reinterpret_cast<unsigned char*>(out.data()),
                                      static_cast<unsigned int>(out.size()));
    return size < 0 ? "bad" : out.substr(0, static_cast<std::size_t>(size));
}

TEST(Base64, HasItsPublishedVectorsBothWays) {
    for (Row& row : list("encodings/base64.txt")) {
        EXPECT_EQ(base64(row["text"]), row["code"]);
        EXPECT_EQ(unbase64(row["code"]), row["text"]);
        EXPECT_EQ(Bx_Base64_Decode(row["code"].c_str(), nullptr, 0),
                  static_cast<int>(row["text"].size()));
    }
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    EXPECT_EQ(unbase64(base64(all)), all);
}

TEST(Base64, DecodesSpacedTextAndRefusesTheMalformed) {
    EXPECT_EQ(unbase64(" T\r\nW\tF\vu\f "), "Man");
    EXPECT_EQ(unbase64("TQ= \r\n= \n"), "M");
    EXPECT_EQ(unbase64("TWE= \t"), "Ma");
    const char* const
        bad[] = {"T",       "TQ",          "TQ=",   "TWE",   "=",       "T===",
                 "TQ=A",    "TQ==A",       "TWF=A", "TWFu=", "TQ=\x01", "TW-u",
                 "TW\xA0u", "T\xC3\xA9==", "TR==",  "TWF="};  // the last two leave bits over
    for (const char* text : bad) EXPECT_EQ(unbase64(text), "bad") << text;
    EXPECT_EQ(Bx_Base64_Decode("TWF=", nullptr, 0), 2) << "not looked at without a buffer";
    EXPECT_EQ(Bx_Base64_Decode("TQ=", nullptr, 0), -1);
    EXPECT_EQ(Bx_Base64_Decode(nullptr, nullptr, 0), -1);
}

// Blanks between the digits keep the decoder from reading several at once.
TEST(Base64, ReadsLongRunsAsItReadsDigitByDigit) {
    for (const int size : {96, 320}) {
        std::string all;
        for (int i = 0; i < size; ++i) all += static_cast<char>(i * 37);
        const std::string text = base64(all);
        EXPECT_EQ(unbase64(text), all);
        for (std::size_t at = 0; at < 80; ++at) {
            for (int c = 1; c < 256; ++c) {
                std::string changed = text;
                changed[at] = static_cast<char>(c);
                std::string spaced;
                for (const char digit : changed) spaced += {digit, ' '};
                ASSERT_EQ(unbase64(changed), unbase64(spaced)) << at << ' ' << c;
            }
        }
    }
}

TEST(Base64, NeedsItsRoom) {
    // Padded texts touch the byte after their last.
    const struct {
        const char* text;
        int length;
        unsigned int room;
    } rows[] = {{"TWFu", 3, 3}, {"TWE=", 2, 3}, {"TQ==", 1, 2}, {"TWFuTQ==", 4, 5}, {"", 0, 0}};
    for (const auto& row : rows) {
        unsigned char out[8];
        EXPECT_EQ(Bx_Base64_Decode(row.text, out, row.room), row.length) << row.text;
        for (unsigned int room = 0; room < row.room; ++room) {
            std::memset(out, '~', sizeof out);
            EXPECT_EQ(Bx_Base64_Decode(row.text, out, room), -1) << row.text << room;
            EXPECT_EQ(out[room], '~');
        }
    }
    char out[9] = "~~~~~~~~";
    EXPECT_EQ(Bx_Base64_Encode(bytes("foobar"), 6, out, 7), -1);
    EXPECT_STREQ(out, "Zm9v~~~~") << "what fitted stays";
    EXPECT_EQ(Bx_Base64_Encode(bytes(""), 0, out, 0), -1);
    EXPECT_EQ(Bx_Base64_Encode(nullptr, 0, out, 1), 0);
    EXPECT_EQ(Bx_Base64_Encode(nullptr, 3, out, 9), -1);
}

TEST(Md5String, HasItsPublishedVectors) {
    char out[34] = {};
    out[33] = '~';
    EXPECT_EQ(MD5String("", out), out);
    EXPECT_STREQ(out, "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_STREQ(MD5String("message digest", out), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_STREQ(MD5String("12345678901234567890123456789012345678901234567890123456789012345678901"
                           "234567890",
                           out),
                 "57edf4a22be3c955ac49da2e2107b67a");
    EXPECT_STREQ(MD5String("caf\xE9", out), "961f50f6282239d09e48f812c1ca7276");
    EXPECT_EQ(out[33], '~');
    EXPECT_STREQ(MD5String(nullptr, out), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(MD5String("x", nullptr), nullptr);
}

std::string enciphered(const std::string& text) {
    std::string out(2 * ((text.size() + 7) / 8 * 8) + 1, '~');
    EXPECT_EQ(ZQUT_EncodeToString(text.c_str(), out.data(), static_cast<int>(out.size())), 0);
    EXPECT_EQ(out.back(), '\0');
    out.pop_back();
    EXPECT_EQ(out.find_first_not_of("0123456789abcdef"), std::string::npos);
    return out;
}

bool hasZeroByte(const std::string& hex) {
    for (std::size_t i = 0; i < hex.size(); i += 2)
        if (hex.compare(i, 2, "00") == 0) return true;
    return false;
}

TEST(EncipheredCode, ComesBackPaddedWithZeros) {
    int decoded = 0;
    for (int i = 0; i < 300; ++i) {
        const std::string text = "pw \xFF" + std::to_string(i * 7919) +
                                 std::string(static_cast<std::size_t>(i % 17), 'x');
        const std::string hex = enciphered(text);
        ASSERT_EQ(hex.size(), (text.size() + 7) / 8 * 16);
        if (hasZeroByte(hex)) continue;
        ++decoded;
        std::string out(hex.size() / 2 + 5, '~');
        ASSERT_EQ(
            ZQUT_DecodeFromString(hex.c_str(), out.data(), static_cast<unsigned int>(out.size())),
            0);
        ASSERT_EQ(out, text + std::string(out.size() - text.size(), '\0'));
        // In place, and with room for the blocks alone.
        std::string same = hex;
        ASSERT_EQ(ZQUT_DecodeFromString(same.c_str(), same.data(),
                                        static_cast<unsigned int>(same.size() / 2)),
                  0);
        ASSERT_STREQ(same.substr(0, hex.size() / 2).c_str(), text.c_str());
    }
    EXPECT_GT(decoded, 250);

    char out[4] = "~~~";
    EXPECT_EQ(ZQUT_EncodeToString("", out, 3), 0);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(ZQUT_DecodeFromString("", out, 3), 0);
    std::string longText(20000, 'q');
    EXPECT_EQ(enciphered(longText).size(), 40000U);
}

// The packing of cipher blocks stops at their first zero byte.
TEST(EncipheredCode, AZeroByteInACipherBlockHidesTheRestOfIt) {
    const qel::encodings::TeaKey zeroKey{};
    unsigned char out[8];
    ASSERT_EQ(qel::encodings::decipherFromHex("41EA3A0A94baa940", out, 8, zeroKey), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out), 8), std::string(8, '\0'));
    unsigned char cut[8];
    ASSERT_EQ(qel::encodings::decipherFromHex("41ea003a94baa940", out, 8, zeroKey), 0);
    ASSERT_EQ(qel::encodings::decipherFromHex("41ea000000000000", cut, 8, zeroKey), 0);
    EXPECT_EQ(std::memcmp(out, cut, 8), 0);
}

TEST(EncipheredCode, HasItsCodes) {
    std::string out(40, '~');
    EXPECT_EQ(ZQUT_EncodeToString("123456789", out.data(), 31), ZQUT_OUTPUT_TOO_SMALL);
    EXPECT_EQ(out[0], '~') << "not cleared";
    EXPECT_EQ(ZQUT_EncodeToString("123456789", out.data(), -1), ZQUT_OUTPUT_TOO_SMALL);
    EXPECT_EQ(ZQUT_EncodeToString("123456789", out.data(), 32), 0);
    EXPECT_EQ(std::strlen(out.c_str()), 32U) << "terminated beyond the size";
    EXPECT_EQ(out[33], '~');
    EXPECT_EQ(ZQUT_EncodeToString("", &out[33], 0), 0);
    EXPECT_EQ(out[33], '~');

    const struct {
        const char* hex;
        unsigned int room;
        int code;
        bool cleared;
    } rows[] = {
        {"123456789abcde", 16, ZQUT_MALFORMED, false},           // 14 digits
        {"0123456789abcdef01234567", 16, ZQUT_MALFORMED, true},  // 12 bytes
        {"0123456789abcdeg", 16, ZQUT_MALFORMED, true},
        {"0123456789 bcde+", 16, ZQUT_MALFORMED, true},
        {"0123456789abcdef", 7, ZQUT_OUTPUT_TOO_SMALL, true},
        {nullptr, 16, ZQUT_MALFORMED, false},
    };
    for (const auto& row : rows) {
        std::string plain(17, '~');
        EXPECT_EQ(ZQUT_DecodeFromString(row.hex, plain.data(), row.room), row.code);
        EXPECT_EQ(plain, row.cleared ? std::string(row.room, '\0') + std::string(17 - row.room, '~')
                                     : std::string(17, '~'));
    }
    EXPECT_EQ(ZQUT_DecodeFromString("0123456789abcdef", nullptr, 8), ZQUT_OUTPUT_TOO_SMALL);
}

}  // namespace
