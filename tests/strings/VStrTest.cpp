#include "QelUtility/VStr.h"

#include <gtest/gtest.h>

namespace {

// Whether the string has a block: only this tells null from allocated empty.
bool isNull(const VStr& s) {
    return s.Compare(nullptr) == 0;
}

TEST(VStr, BlocksAreAlwaysAboveTheRequest) {
    const struct {
        int request;
        unsigned int size;
    } rows[] = {{0, 64}, {1, 64}, {63, 64}, {64, 128}, {100, 128}, {127, 128}, {128, 192}};
    for (const auto& row : rows) {
        unsigned int size = 0;
        VStr owner;
        owner <<= VStr::ModAlloc(row.request, &size);
        EXPECT_EQ(size, row.size) << row.request;
    }
    unsigned int size = 7;
    EXPECT_EQ(VStr::ModAlloc(-1, &size), nullptr);
    EXPECT_EQ(size, 0U);
}

TEST(VStr, NullAndAllocatedEmpty) {
    EXPECT_TRUE(isNull(VStr()));
    EXPECT_TRUE(isNull(VStr("")));
    EXPECT_TRUE(isNull(VStr("abc", 0)));
    EXPECT_TRUE(isNull(VStr(static_cast<const char*>(nullptr), 3)));

    VStr empty;
    empty.Copy("");
    EXPECT_FALSE(isNull(empty));
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(empty.Compare(""), 0);
    EXPECT_LT(VStr().Compare(""), 0);
    EXPECT_TRUE(isNull(VStr(empty)));
    EXPECT_FALSE(isNull(VStr("x").Copy("abc", 0)));
    VStr zero("x");
    zero = '\0';
    EXPECT_FALSE(isNull(zero));
    VStr released;
    released.ReleaseBuffer(0);
    EXPECT_FALSE(isNull(released));
    zero = static_cast<const char*>(nullptr);
    EXPECT_TRUE(isNull(zero));
    empty += "";
    EXPECT_TRUE(isNull(empty));
}

}  // namespace
