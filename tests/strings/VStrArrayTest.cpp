// Arrays of strings: bounds, blocks and copies; what VStrArray's operations give is in
// OperationsTest.cpp.
#include "QelUtility/VStrArray.h"

#include <gtest/gtest.h>

#include <climits>

#include "Shown.h"
#include "support/Throws.h"

namespace {

using qel::test::shownAll;

TEST(VStrArray, CopiesReadsOutsideAndRemoves) {
    VStrArray a;
    a.Add("a");
    VStrArray two;
    two.Copy(a);
    EXPECT_EQ(two.Append(VStrArray()), -1);
    EXPECT_EQ(two.Append(a), 1);
    EXPECT_EQ(shownAll(two), "a,a");
    const VStrArray& constant = a;
    for (const int outside : {-1, 1, INT_MAX}) {
        EXPECT_STREQ(a.GetAt(outside), "");
        EXPECT_STREQ(constant[outside], "");
    }
    two.RemoveAll();
    EXPECT_EQ(two.GetSize(), 0);
    EXPECT_EQ(two.GetUpperBound(), -1);
}

// Makes the claimed room of an array visible.
template <class Array>
struct Opened : Array {
    int room() const { return this->m_lastIndex + 1; }
};

TEST(BxArray, GrowsBy128AndChecksIndexes) {
    Opened<CBxArray<VStr>> array;
    EXPECT_EQ(array.GetPtr(), nullptr);
    EXPECT_EQ(array.room(), 0);
    for (int i = 0; i < 128; ++i) EXPECT_EQ(array.Add("element"), i);
    EXPECT_EQ(array.room(), 128);
    array.Add(array[0]);
    EXPECT_EQ(array.room(), 256);
    EXPECT_STREQ(array[128], "element");
    for (const int outside : {-1, 129, INT_MAX, INT_MIN})
        EXPECT_EQ(qel::test::thrownBy([&] { array[outside]; }), -1) << outside;
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetPtr(), nullptr);
    EXPECT_EQ(array.room(), 0);
}

TEST(BxArray, FindsByTextAndCopiesDeep) {
    CBxArray<VStr> array;
    array.Add("a");
    array.Add("");
    VStr empty;
    empty.Copy("");
    array.Add(empty);
    EXPECT_EQ(shownAll(array), "a,(null),(null)");
    array[2] = empty;
    EXPECT_EQ(array.FindItem("A"), -1);
    EXPECT_EQ(array.FindItem(empty), 1);
    CBxArray<VStr> copy(array);
    copy[0] = "changed";
    const CBxArray<VStr>& same = array;
    array = same;
    EXPECT_EQ(shownAll(array), "a,(null),(empty)");
    array = copy;
    copy = CBxArray<VStr>();
    EXPECT_EQ(shownAll(array), "changed,(null),(empty)");
    EXPECT_EQ(array.Add("more"), 3);
}

TEST(BxVStrArray, AddVStrTakesTheTextOver) {
    Opened<Bx_VStrArray> array;
    VStr v("text");
    const char* block = v;
    EXPECT_EQ(array.AddVStr(v), 0);
    EXPECT_TRUE(qel::test::isNull(v));
    // A list of a million items is not moved eight thousand times.
    for (int i = 1; i < 1'000'000; ++i) array.AddVStr(v);
    EXPECT_EQ(array.room() % 128, 0);
    EXPECT_LT(array.room() - array.GetSize(), 128);
    // Growing moves the strings: their blocks stay where they were.
    EXPECT_EQ(static_cast<const char*>(array[0]), block);
    Bx_VStrArray full;
    for (int i = 0; i < 128; ++i) full.Add("own");
    full.AddVStr(full[0]);
    EXPECT_STREQ(full[128], "own");
}

TEST(BxVStrArray, FindItemNoCase) {
    Bx_VStrArray array;
    array.Add("Alpha");
    array.Add("");
    EXPECT_EQ(array.FindItemNoCase("aLPHA"), 0);
    EXPECT_EQ(array.FindItemNoCase(""), -1);
    EXPECT_EQ(array.FindItemNoCase(nullptr), 1);
    Bx_VStrArray copy(array);
    copy[0] = "Beta";
    EXPECT_EQ(array.FindItemNoCase("beta"), -1);
    copy = array;
    EXPECT_EQ(copy.FindItemNoCase("ALPHA"), 0);
}

}  // namespace
