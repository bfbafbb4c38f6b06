// Null pointers and empty rooms are answered as the interface says; nothing is read or written
// through them.
#include <gtest/gtest.h>

#include <cstring>

#include "QelUtility/BxCharConv.h"
#include "QelUtility/BxDataStream.h"
#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxFileUtil.h"
#include "QelUtility/BxHost.h"
#include "QelUtility/BxRepeat.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptExpand.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"
#include "QelUtility/ZQDate.h"
#include "QelUtility/ZQDuration.h"

namespace {

TEST(NullArguments, OfDatesAndRepeatsAreErrors) {
    EXPECT_EQ(ZQ_CodeDateToAlpha(38517, nullptr), nullptr);
    EXPECT_EQ(ZQ_CodeTimeToAlpha(0, nullptr), nullptr);
    EXPECT_EQ(ZQ_AlphaToCodeTime(nullptr), 0);
    EXPECT_EQ(UTCDateToZQTRDateTime("20050615", nullptr), 0);
    EXPECT_EQ(ZQ_DurationToSeconds("PT1M", nullptr), 0);

    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    int next = 0;
    int other = 0;
    EXPECT_EQ(ZQRepeatNextDate(&repeat, nullptr, &other), QEL_REPEAT_ENGINE);
    EXPECT_EQ(ZQRepeatNextDate(&repeat, &next, nullptr), QEL_REPEAT_ENGINE);
    EXPECT_EQ(ZQRepeatJump(&repeat, 38517, nullptr), QEL_FAILED);
    DateBlock list;
    ASSERT_EQ(DateBlock_Init(&list, 0, 64, 4096), QEL_OK);
    for (int missing = 0; missing < 4; ++missing) {
        ZQTR_REPEAT* const record = missing == 0 ? nullptr : &repeat;
        DateBlock* const block = missing == 1 ? nullptr : &list;
        int* const valid = missing == 2 ? nullptr : &next;
        int* const total = missing == 3 ? nullptr : &other;
        EXPECT_EQ(Unfold_ListDates(record, 9, 0, 99, block, valid, total), QEL_NOT_INITIALIZED);
        EXPECT_EQ(Unfold_Repeat(record, 9, 0, 0, 99, block, valid, total), QEL_NOT_INITIALIZED);
    }
    EXPECT_EQ(list.data, nullptr);

    _rruleRepeat rule;
    BxUtil_InitializeRRULE(&rule);
    VStr text;
    EXPECT_EQ(BxUtil_RRuleToBxRepeat(&rule, nullptr, "20050615", nullptr, nullptr, nullptr),
              QEL_FAILED);
    EXPECT_EQ(BxUtil_BxRepeatToRRule(&repeat, nullptr, text, text, 0, nullptr), QEL_FAILED);
    for (const auto read :
         {BxUtil_PositionaltoRRULE, BxUtil_PositionalV20toRRULE, BxUtil_PositionalV10toRRULE}) {
        EXPECT_EQ(read("D1 #1", nullptr, nullptr), QEL_FAILED);
        EXPECT_EQ(read(nullptr, &rule, nullptr), read("", &rule, nullptr));
    }
    for (const auto write : {BxUtil_RRULEtoIETF, BxUtil_RRULEtoV10IETF, BxUtil_RRULEtoPositional})
        EXPECT_EQ(write(nullptr, text, true), nullptr);
}

TEST(NullArguments, OfTheHostCodecsAndFilesAreErrors) {
    char room[40] = "as it was";
    for (const auto ask :
         {GetProfileDirectoryWithUserName, GetCurrentModelID, BxHost_GetRegistryRoot}) {
        EXPECT_FALSE(ask(nullptr, sizeof room));
        EXPECT_FALSE(ask(room, 0));
    }
    EXPECT_FALSE(BxHost_GetString(BXHOST_COMPANY, nullptr, sizeof room));
    EXPECT_FALSE(BxHost_GetString(BXHOST_COMPANY, room, 0));
    EXPECT_STREQ(room, "as it was");

    const auto* const bytes = reinterpret_cast<const unsigned char*>("abc");
    EXPECT_EQ(Bx_Base64_Encode(bytes, 3, nullptr, 9), -1);
    EXPECT_EQ(ZQUT_EncodeToString(nullptr, nullptr, 0), 0);
    EXPECT_EQ(ZQUT_EncodeToString(nullptr, nullptr, 9), ZQUT_OUTPUT_TOO_SMALL);
    EXPECT_EQ(ZQUT_DecodeFromString("", nullptr, 0), 0);
    EXPECT_EQ(ZQUT_DecodeFromString("", nullptr, 9), ZQUT_OUTPUT_TOO_SMALL);

    unsigned char* data = nullptr;
    unsigned long size = 7;
    EXPECT_EQ(BxFile_LoadFile("file", &data, nullptr), QEL_NOT_INITIALIZED);
    EXPECT_EQ(BxFile_LoadFile(nullptr, &data, &size), QEL_NOT_INITIALIZED);
    EXPECT_EQ(size, 0u);
}

TEST(NullArguments, OfTextsAndStreamsAreEmpty) {
    for (const char* each : {static_cast<const char*>(nullptr), "", "made"}) {
        VStr* const made = VStr_Create(each);
        ASSERT_NE(made, nullptr);
        EXPECT_STREQ(VStr_Text(made), each != nullptr ? each : "");
        VStr_Destroy(made);
    }
    EXPECT_STREQ(VStr_Text(nullptr), "");
    VStr_Destroy(nullptr);
    VStr text("text");
    EXPECT_TRUE(text.SpanIncluding(nullptr).IsEmpty());
    EXPECT_TRUE(text.Copy(nullptr).IsEmpty());
    EXPECT_EQ(text.Copy(nullptr, 3).GetLength(), 0);

    CBxDataStream stream;
    stream.Initialize("one");
    const unsigned long length = stream.Len();
    stream.AppendRawBytes(nullptr, 3);
    EXPECT_EQ(stream.Len(), length);
    stream.ReplaceBuffer(nullptr, 3);
    EXPECT_EQ(stream.Len(), 0u);
}

}  // namespace
