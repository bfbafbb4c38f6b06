// Codecs, converters and the catalogue without memory.
#include <cstring>

#include "QelUtility/BxCharConv.h"
#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxFieldIDs.h"
#include "QelUtility/BxMime.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "QelUtility/BxStatusNames.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

constexpr char kLatin[] = "Caf\xE9 cr\xE8me";
constexpr char kUtf8[] = "Caf\xC3\xA9 cr\xC3\xA8me";

// The C library loads its tables at the first use, and gives back what nobody has used for a while;
// the main thread's descriptors hold on to them.
class HeldTables : public testing::Environment {
  public:
    void SetUp() override {
        for (const char* set : {"8859-1", "936", "950"}) {
            CBxCharConvSvcs converter;
            VStr text("a");
            converter.InitializeFrom(set);
            converter.BxConvChar(text);
            converter.InitializeTo(set);
            converter.BxConvChar(text);
        }
    }
};

const testing::Environment* const heldTables = testing::AddGlobalTestEnvironment(new HeldTables);

// A converter that converts, whatever happened to it before.
void expectUsable(CBxCharConvSvcs& converter) {
    ASSERT_EQ(converter.InitializeFrom("8859-1"), 0);
    VStr text(kLatin);
    EXPECT_EQ(converter.BxConvChar(text), 0);
    EXPECT_STREQ(text, kUtf8);
}

const Operation kConverters[] = {
    {"Initialize",
     [](Attempt& attempt) {
         CBxCharConvSvcs converter;
         int result = -2;
         attempt.armed([&] { result = converter.InitializeFrom("8859-1"); });
         EXPECT_EQ(converter.IsInitialized(), result == 0);
         EXPECT_TRUE(attempt.starved()
                         ? result == QEL_OUT_OF_MEMORY || result == QEL_NOT_INITIALIZED
                         : result == 0);
         expectUsable(converter);
     }},
    {"Copy",
     [](Attempt& attempt) {
         CBxCharConvSvcs source;
         source.InitializeFrom("8859-1");
         CBxCharConvSvcs target;
         target.InitializeTo("936");
         attempt.armed([&] {
             CBxCharConvSvcs copy(source);
             target = copy;
         });
         EXPECT_TRUE(attempt.starved() || target.IsInitialized());
         if (target.IsInitialized()) {
             EXPECT_STREQ(target.ToName(), "UTF-8");
             EXPECT_STREQ(target.FromName(), "8859-1");
         }
         expectUsable(target);
         expectUsable(source);
     }},
    {"ConvertString",
     [](Attempt& attempt) {
         CBxCharConvSvcs converter;
         converter.InitializeFrom("8859-1");
         VStr text(kLatin);
         int result = -2;
         attempt.armed([&] { result = converter.BxConvChar(text); });
         EXPECT_STREQ(text, result == 0 ? kUtf8 : kLatin);
         EXPECT_TRUE(attempt.starved()
                         ? result == 0 || result == QEL_OUT_OF_MEMORY || result == BX_CONV_FAILED
                         : result == 0);
         expectUsable(converter);
     }},
    {"ConvertBytes",
     [](Attempt& attempt) {
         // The first byte decodes as nothing and is given up; what is known of it is kept in memory
         // that may be refused too.
         CBxCharConvSvcs converter;
         converter.InitializeTo("936");
         const char text[] =
             "\xFF"
             "abc";
         const char* in = text;
         unsigned int inLeft = 4;
         char room[32] = "";
         char* out = room;
         unsigned int outLeft = sizeof room;
         int result = -2;
         attempt.armed([&] { result = converter.BxConvChar(in, inLeft, out, outLeft); });
         if (result == 0) {
             EXPECT_STREQ(room, "abc");
         } else {
             EXPECT_TRUE(attempt.starved());
             EXPECT_EQ(result, BX_CONV_FAILED);
             EXPECT_EQ(out, room);
         }
         expectUsable(converter);
     }},
    {"Descriptor",
     [](Attempt& attempt) {
         CBxCharConvSvcs converter;
         _iconv_info* const failed = reinterpret_cast<_iconv_info*>(~std::uintptr_t{0});
         _iconv_info* cd = nullptr;
         unsigned int count = 0;
         const char* in = kUtf8;
         unsigned int inLeft = sizeof kUtf8 - 1;
         char room[64];
         char* out = room;
         unsigned int outLeft = sizeof room;
         attempt.armed([&] {
             cd = converter.iconv_open("950", "UTF-8");
             if (cd != failed) count = converter.iconv(cd, &in, &inLeft, &out, &outLeft);
         });
         if (cd == failed) {
             EXPECT_EQ(converter.LastError(), 12);
             return;
         }
         EXPECT_EQ(count == 1, inLeft == 0);
         if (count != 1) {
             EXPECT_TRUE(attempt.starved());
             EXPECT_TRUE(converter.LastError() == 12 || converter.LastError() == 9);
         }
         EXPECT_EQ(converter.iconv_close(cd), 0);
     }},
};
INSTANTIATE_TEST_SUITE_P(Converters, Exhaustion, testing::ValuesIn(kConverters), operationName);

const Operation kCodecs[] = {
    {"InPlainBuffers",
     [](Attempt& attempt) {
         // These need no memory of their own.
         char digest[33];
         char hex[64];
         char text[64];
         char quoted[64];
         unsigned char decoded[64];
         attempt.armed([&] {
             MD5String("", digest);
             ZQUT_EncodeToString("abc", hex, sizeof hex);
             ZQUT_DecodeFromString(hex, text, sizeof text);
             Bx_Base64_Encode(reinterpret_cast<const unsigned char*>("abc"), 3, quoted, 64);
             Bx_Base64_Decode(quoted, decoded, sizeof decoded);
             encodeQP("a=b", 3, 0, quoted, sizeof quoted, nullptr);
             encodeQuotedPrintable("a=b", 3, quoted, sizeof quoted, nullptr);
             decodeQP(quoted, 5, text, sizeof text, nullptr);
         });
         EXPECT_FALSE(attempt.starved());
         EXPECT_STREQ(digest, "d41d8cd98f00b204e9800998ecf8427e");
         EXPECT_STREQ(text, "a=b");
     }},
    {"MimeDelimiter",
     [](Attempt& attempt) {
         char value[] = "multipart/mixed; boundary=\"mark\"\r\nX: y";
         VStr out("old");
         const char* result = nullptr;
         attempt.armed([&] { result = GetMIMEDelimiter(value, out); });
         EXPECT_EQ(result == nullptr, attempt.starved());
         EXPECT_STREQ(out, attempt.starved() ? "old" : "mark");
     }},
    {"StatusText",
     [](Attempt& attempt) {
         VStr text;
         attempt.armed([&] {
             VStr made = StatusText(0);
             text <<= made;
         });
         EXPECT_STREQ(text, attempt.starved() ? "" : "Status=EOK");
     }},
    {"FieldData",
     [](Attempt& attempt) {
         FieldData field{};
         int known = -2;
         int unknown = -2;
         unsigned long code = 0;
         attempt.armed([&] {
             known = BxUtil_GetFieldDataByID(0x11000000, &field);
             unknown = BxUtil_GetFieldDataByID(0x1F000000, &field);
             OperationFromTag("<ADD>", code);
             OperationName(20000);
         });
         EXPECT_EQ(known, 0);
         EXPECT_EQ(unknown, -1);
         EXPECT_EQ(code, 20000U);
     }},
};
INSTANTIATE_TEST_SUITE_P(Codecs, Exhaustion, testing::ValuesIn(kCodecs), operationName);

}  // namespace

}  // namespace qel::test
