// The field catalogue: rows at the ends of the tables and at the places where the order is easy to
// get wrong, and every way in which an identifier can name nothing.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "QelUtility/BxFieldIDs.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;

TEST(FieldIDs, DescribesFields) {
    for (Row& row : list("catalogue/fields.txt")) {
        SCOPED_TRACE(row["name"]);
        const auto hex = [&row](const char* field) {
            return static_cast<unsigned int>(std::stoul(row[field], nullptr, 16));
        };
        const unsigned int id = hex("id");
        FieldData data;
        std::memset(&data, 0x5A, sizeof data);
        ASSERT_EQ(BxUtil_GetFieldDataByID(id, &data), 0);
        EXPECT_STREQ(data.name, row["name"].c_str());
        EXPECT_EQ(data.accessType, id >> 24 & 0xF);
        EXPECT_EQ(data.recordType, id >> 28);
        EXPECT_EQ(data.fieldId, id);
        EXPECT_EQ(data.propertyId, hex("property id"));
        EXPECT_EQ(data.propertyIndex, hex("property id") & 0xFFFFFF);
        EXPECT_STREQ(data.propertyName, row["property"].c_str());
        EXPECT_EQ(data.selector, hex("selector"));
        const std::pair<int, const char*> numbers[] = {{data.dataType, "type"},
                                                       {data.occurrence, "occurrence"},
                                                       {data.valueIndex, "value index"},
                                                       {data.componentCount, "components"},
                                                       {data.maxLength, "max length"}};
        for (const auto& [value, field] : numbers) EXPECT_EQ(value, number(row, field)) << field;
    }
}

TEST(FieldIDs, SaysWhyAnIdentifierNamesNothing) {
    for (Row& row : list("catalogue/no-fields.txt")) {
        SCOPED_TRACE(row["id"]);
        const auto id = static_cast<unsigned int>(std::stoul(row["id"], nullptr, 16));
        const qel::test::TraceCapture trace;
        FieldData data;
        std::memset(&data, 0x5A, sizeof data);
        EXPECT_EQ(BxUtil_GetFieldDataByID(id, &data), -1);
        EXPECT_TRUE(trace.hasError(row["problem"] + ".-1", "BxFieldIDs"));
        EXPECT_EQ(data.recordType, id >> 28);
        EXPECT_EQ(data.accessType, id >> 24 & 0xF);
        EXPECT_EQ(data.fieldId, id);
        EXPECT_EQ(data.propertyId, 0x5A5A5A5AU) << "kept";
        EXPECT_EQ(data.maxLength, 0x5A5A5A5A);
    }
    EXPECT_EQ(BxUtil_GetFieldDataByID(0x11000000, nullptr), -1);
}

}  // namespace
