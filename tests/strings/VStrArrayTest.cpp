#include "QelUtility/VStrArray.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(VStrArray, AppendGivesTheFirstIndex) {
    VStrArray a;
    a.Add("x");
    VStrArray b;
    EXPECT_EQ(a.Append(b), -1);
    b.Add("y");
    b.Add("z");
    EXPECT_EQ(a.Append(b), 1);
    ASSERT_EQ(a.GetSize(), 3);
    EXPECT_STREQ(a[2], "z");
}

TEST(BxArray, IndexesAreChecked) {
    CBxArray<VStr> array;
    array.Add("a");
    EXPECT_STREQ(array[0], "a");
    EXPECT_THROW(array[1], int);
    EXPECT_THROW(array[-1], int);
}

}  // namespace
