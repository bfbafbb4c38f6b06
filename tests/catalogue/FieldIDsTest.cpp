// The field catalogue: rows at the ends of the tables and at the places where the order is easy to
// get wrong, and every way in which an identifier can name nothing.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "QelUtility/BxFieldIDs.h"
#include "support/TraceCapture.h"

namespace {

struct Expected {
    unsigned int id;
    unsigned int propertyId;
    const char* name;
    const char* propertyName;
    int dataType;
    unsigned int selector;
    int occurrence;
    int valueIndex;
    int componentCount;
    int maxLength;
};

const Expected kRows[] = {
    {0x11000000, 0x11000000, "SUMMARY", "SUMMARY", 1, 0, 0, 0, 1, 4001},
    {0x11000002, 0x11000002, "DTSTART", "DTSTART", 0x31, 0, 0, 0, -1, 28},
    {0x21000025, 0x21000025, "URL", "URL", 2, 0, 0, 0, 1, 208},
    {0x14000000, 0x11000005, "Completed_Flag", "COMPLETED", 0x32, 0, 0, -50, -1, 28},
    {0x24000007, 0x21000008, "Alarm_Duration", "VALARM", 2, 0, 0, 2, -1, 308},
    {0x1400000D, 0x11000000, "NULL", "SUMMARY", 1, 0, 0, -59, 1, 4001},
    {0x31000000, 0x31000000, "N", "N", 1, 0, 0, 0, 5, 528},
    {0x31000005, 0x31000005, "CATEGORIES", "CATEGORIES", 2, 0, 0, 0, -5, 1008},
    {0x33000000, 0x32000000, "Adr_Work_1", "__ADR", 2, 0x1, 0, 0, 7, 4001},
    {0x3300000E, 0x32000001, "Phone_Other_FAX", "__TEL", 2, 0x1000C, 0, 0, 1, 4001},
    {0x33000029, 0x32000002, "EMail_Work_2", "__EMAIL", 2, 0x1, 1, 0, 1, 4001},
    {0x3300002A, 0x32000001, "Phone_Home_FAX", "__TEL", 2, 0x10006, 0, 0, 1, 4001},
    {0x34000000, 0x31000000, "Family_Name", "N", 1, 0, 0, 0, 5, 528},
    {0x34000007, 0x32000000, "Adr_Work_1_PO", "__ADR", 2, 0x1, 0, 0, 7, 4001},
    {0x34000014, 0x32000000, "__Adr_Work_2_Country", "__ADR", 2, 0x1, 1, 6, 7, 4001},
    {0x34000037, 0x32000000, "__Adr_Any_2_Country", "__ADR", 2, 0, 1, 6, 7, 4001},
    {0x34000038, 0x31000000, "NULL", "N", 1, 0, 0, -59, 5, 528},
    {0x41000009, 0x41000009, "X-CUSTOM5", "X-CUSTOM5", 2, 0, 0, 0, 1, 1008},
    {0x44000000, 0x41000003, "Confidential_Flag", "CLASS", 2, 0, 0, -56, 1, 58},
    {0x51000021, 0x51000021, "X-CATEGORIES", "X-CATEGORIES", 2, 0, 0, 0, -5, 1008},
    {0x52000001, 0x52000001, "__RECEIVED", "__RECEIVED", 2, 0, 0, 0, 2, 4001},
    {0x54000000, 0x5100001B, "Message-Body", "X-BODY", 2, 0, 0, -57, -1, 32767},
    {0x54000001, 0x51000006, "X-Date", "DATE", 2, 0, 0, -58, 1, 58},
};

TEST(FieldIDs, DescribesFields) {
    for (const Expected& row : kRows) {
        FieldData data;
        std::memset(&data, 0x5A, sizeof data);
        ASSERT_EQ(BxUtil_GetFieldDataByID(row.id, &data), 0) << row.name;
        EXPECT_STREQ(data.name, row.name);
        EXPECT_EQ(data.accessType, row.id >> 24 & 0xF);
        EXPECT_EQ(data.recordType, row.id >> 28);
        EXPECT_EQ(data.fieldId, row.id);
        EXPECT_EQ(data.propertyId, row.propertyId) << row.name;
        EXPECT_EQ(data.propertyIndex, row.propertyId & 0xFFFFFF) << row.name;
        EXPECT_STREQ(data.propertyName, row.propertyName);
        EXPECT_EQ(data.dataType, row.dataType) << row.name;
        EXPECT_EQ(data.selector, row.selector) << row.name;
        EXPECT_EQ(data.occurrence, row.occurrence) << row.name;
        EXPECT_EQ(data.valueIndex, row.valueIndex) << row.name;
        EXPECT_EQ(data.componentCount, row.componentCount) << row.name;
        EXPECT_EQ(data.maxLength, row.maxLength) << row.name;
    }
}

TEST(FieldIDs, SaysWhyAnIdentifierNamesNothing) {
    const std::pair<unsigned int, const char*> rows[] = {
        {0x00000000, "Unknown record type"},
        {0x61000000, "Unknown record type"},
        {0xFFFFFFFF, "Unknown record type"},
        {0x10000000, "Unknown field access type"},
        {0x15000000, "Unknown field access type"},
        {0x11000026, "Invalid table pointer (basic prop)"},
        {0x31FFFFFF, "Invalid table pointer (basic prop)"},
        {0x42000000, "Invalid table pointer (multi prop)"},
        {0x13000000, "Invalid table pointer (sub item)"},
        {0x54000003, "Invalid table pointer (field value)"},
    };
    for (const auto& [id, problem] : rows) {
        qel::test::TraceCapture trace;
        FieldData data;
        std::memset(&data, 0x5A, sizeof data);
        EXPECT_EQ(BxUtil_GetFieldDataByID(id, &data), -1);
        EXPECT_TRUE(trace.hasError(std::string(problem) + ".-1", "BxFieldIDs")) << problem;
        EXPECT_EQ(data.recordType, id >> 28);
        EXPECT_EQ(data.accessType, id >> 24 & 0xF);
        EXPECT_EQ(data.fieldId, id);
        EXPECT_EQ(data.propertyId, 0x5A5A5A5AU) << "kept";
        EXPECT_EQ(data.maxLength, 0x5A5A5A5A);
    }
    EXPECT_EQ(BxUtil_GetFieldDataByID(0x11000000, nullptr), -1);
}

}  // namespace
