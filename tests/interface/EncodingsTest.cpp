// Codes and character sets through the shared library alone.
#include <gtest/gtest.h>

#include "QelUtility/QelUtility.h"

namespace {

TEST(InterfaceEncodings, Codes) {
    char text[64];
    unsigned char bytes[16];
    EXPECT_EQ(Bx_Base64_Encode(reinterpret_cast<const unsigned char*>("Man"), 3, text, 64), 4);
    EXPECT_EQ(Bx_Base64_Decode("TWFu", bytes, sizeof(bytes)), 3);
    EXPECT_STREQ(MD5String("", text), "d41d8cd98f00b204e9800998ecf8427e");
    ASSERT_EQ(ZQUT_EncodeToString("secret", text, sizeof(text)), 0);
    EXPECT_EQ(ZQUT_DecodeFromString(text, bytes, sizeof(bytes)), 0);
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes), "secret");
}

// Reaches the protected step of the converter, as a derived class of a caller would.
class Derived : public CBxCharConvSvcs {
  public:
    using CBxCharConvSvcs::BxConvChar_guts;
};

TEST(InterfaceEncodings, CharacterSets) {
    Derived converter;
    ASSERT_EQ(converter.InitializeFrom("8859-1"), 0);
    VStr string("Caf\xE9");
    EXPECT_EQ(converter.BxConvChar(string), 0);
    EXPECT_STREQ(string, "Caf\xC3\xA9");
    ASSERT_EQ(converter.InitializeTo("8859-1"), 0);
    const char* in = string;
    auto inLeft = static_cast<unsigned>(string.GetLength());
    char bytes[16];
    char* out = bytes;
    unsigned outLeft = sizeof(bytes);
    EXPECT_EQ(converter.BxConvChar_guts(in, inLeft, out, outLeft), 0);
    EXPECT_EQ(out - bytes, 4);
    EXPECT_EQ(converter.BxConvChar(in, inLeft, out, outLeft), 0);
    EXPECT_EQ(converter.Initialize("UTF-8", "UTF-8"), QEL_NOT_INITIALIZED);
    EXPECT_STREQ(CBxCharConvSvcs::GetCharSetNames()[0], "UTF-8");

    CBxCharConvSvcs copy(converter);
    copy = converter;
    _iconv_info* descriptor = copy.iconv_open("UTF-8", "936");
    EXPECT_EQ(copy.iconv(descriptor, nullptr, nullptr, nullptr, nullptr), 0U);
    EXPECT_EQ(copy.iconv_close(descriptor), 0);
}

}  // namespace
