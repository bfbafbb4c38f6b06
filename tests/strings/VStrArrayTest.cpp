#include "QelUtility/VStrArray.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/Throws.h"

namespace {

// Elements as the tests write them: "<null>" is a null string, "" an allocated empty one.
template <class Array>
std::vector<std::string> texts(Array& array) {
    std::vector<std::string> result;
    for (int i = 0; i < array.GetSize(); ++i) {
        const VStr& element = array[i];
        result.emplace_back(element.Compare(nullptr) == 0 ? "<null>"
                                                          : static_cast<const char*>(element));
    }
    return result;
}

using Texts = std::vector<std::string>;

VStrArray arrayOf(const Texts& elements) {
    VStrArray array;
    for (const std::string& element : elements) array.Add(element.c_str());
    return array;
}

TEST(VStrArray, NullAndEmptyElements) {
    VStrArray a;
    EXPECT_EQ(a.Add(""), 0);
    EXPECT_EQ(a.Add(static_cast<const char*>(nullptr)), 1);
    EXPECT_EQ(a.Add("abc", 2), 2);
    EXPECT_EQ(a.Add("abc", 0), 3);
    EXPECT_EQ(a.Add("ab\0cd", 5), 4);
    EXPECT_EQ(texts(a), (Texts{"", "<null>", "ab", "<null>", "ab"}));
    EXPECT_EQ(a[4].GetLength(), 2);
    EXPECT_EQ(a.GetAt(0).Compare(nullptr), 0);
    EXPECT_EQ(a.GetUpperBound(), 4);
    a.SetAt(0, nullptr);
    a.SetAt(1, "xyz", 1);
    a.SetSize(2);
    EXPECT_EQ(texts(a), (Texts{"<null>", "x"}));
    a.SetSize(3);
    EXPECT_EQ(texts(a), (Texts{"<null>", "x", "<null>"}));
    // Null elements arrive allocated empty in another array, copies included.
    VStrArray copy(a);
    EXPECT_EQ(texts(copy), (Texts{"", "x", ""}));
    copy.RemoveAll();
    EXPECT_EQ(copy.GetSize(), 0);
    EXPECT_EQ(copy.GetUpperBound(), -1);
}

TEST(VStrArray, AppendingAndCopying) {
    VStrArray three = arrayOf({"1", "2", "3"});
    EXPECT_EQ(three.Append(VStrArray()), -1);
    EXPECT_EQ(three.Append(arrayOf({"4", "5"})), 3);
    EXPECT_EQ(texts(three), (Texts{"1", "2", "3", "4", "5"}));
    three.SetSize(2);
    EXPECT_EQ(three.Append(three), 2);
    EXPECT_EQ(texts(three), (Texts{"1", "2", "1", "2"}));
    VStrArray other = arrayOf({"x"});
    other.Copy(three);
    EXPECT_EQ(texts(other), texts(three));
    const VStrArray& same = three;
    three = same;
    EXPECT_EQ(three.GetSize(), 0);
}

TEST(VStrArray, InsertingAndRemoving) {
    const struct {
        Texts before;
        int i;
        int count;
        Texts inserted;
    } insertions[] = {
        {{"a", "b"}, 3, 1, {"a", "b", "<null>", "s"}},
        {{"a", "b"}, 5, 0, {"a", "b", "<null>", "<null>", "<null>"}},
        {{"a", "b"}, -1, 1, {"a", "b"}},
        {{"a", "b"}, 1, -1, {"a", "b"}},
        {{"a", "b"}, 1, INT_MAX, {"a", "b"}},
    };
    for (const auto& row : insertions) {
        VStrArray array = arrayOf(row.before);
        array.InsertAt(row.i, "s", row.count);
        EXPECT_EQ(texts(array), row.inserted) << row.i << " " << row.count;
    }
    const struct {
        int i;
        int count;
        Texts left;
    } removals[] = {
        {1, 5, {"a", "b", "c"}},  {-1, 1, {"a", "b", "c"}},      {3, 0, {"a", "b", "c"}},
        {1, -1, {"a", "b", "c"}}, {2, INT_MAX, {"a", "b", "c"}},
    };
    for (const auto& row : removals) {
        VStrArray array = arrayOf({"a", "b", "c"});
        array.RemoveAt(row.i, row.count);
        EXPECT_EQ(texts(array), row.left) << row.i << " " << row.count;
    }
}

TEST(VStrArray, ItsOwnElementsAsArguments) {
    VStrArray a = arrayOf({"first", "second"});
    a.Add(a[0]);
    a.Add(a[1], 3);
    a.SetAt(1, a[0]);
    a.SetAt(0, a[0] + 2);
    a.InsertAt(0, a[1], 2);
    EXPECT_EQ(texts(a), (Texts{"first", "first", "rst", "first", "first", "sec"}));
}

TEST(VStrArray, AccessOutsideReadsNullAndWritesNowhere) {
    VStrArray a = arrayOf({"a"});
    a[5] = "lost";
    a.ElementAt(-1) = "lost";
    a.SetAt(INT_MAX, "lost");
    EXPECT_STREQ(a[5], "");
    EXPECT_STREQ(a.GetAt(-1), "");
    const VStrArray& constant = a;
    EXPECT_STREQ(constant[1], "");
    a.SetSize(-3);
    EXPECT_EQ(texts(a), (Texts{"a"}));
}

TEST(VStrArray, WithoutABlockItKeepsItsSizeAndLosesNoTime) {
    // So many elements have no room where pointers have 32 bits.
    if constexpr (sizeof(void*) > 4) GTEST_SKIP();
    VStrArray huge;
    huge.SetSize(INT_MAX);
    huge.Add("lost");
    VStrArray other = arrayOf({"a", "b"});
    EXPECT_EQ(other.Append(huge), -1);
    other.RemoveAll();
    EXPECT_EQ(other.Append(huge), 0);
    EXPECT_EQ(other.GetSize(), INT_MAX);
    EXPECT_STREQ(other[5], "");
    other.RemoveAt(0, 1);
    other.InsertAt(0, "s", 1);
    EXPECT_EQ(other.GetSize(), INT_MAX);
}

TEST(VStrArray, DerivedClassesReachTheNullString) {
    struct Derived : VStrArray {
        bool works() {
            VStr* two = VStrArrNew(2);
            const bool fresh = two != nullptr && two[1].IsEmpty();
            VStrArrDel(two, 2);
            VStrArrDel(nullptr, 2);
            return fresh && VStrArrNew(-1) == nullptr && m_EmptyVStr.Compare(nullptr) == 0;
        }
    };
    EXPECT_TRUE(Derived().works());
}

// Opens what tells the claimed room of an array.
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
    const VStr* block = array.GetPtr();
    array.Add(array[0]);
    EXPECT_EQ(array.room(), 256);
    EXPECT_NE(array.GetPtr(), block);
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
    EXPECT_EQ(texts(array), (Texts{"a", "<null>", "<null>"}));
    array[2] = empty;
    EXPECT_EQ(array.FindItem("A"), -1);
    EXPECT_EQ(array.FindItem(empty), 1);
    CBxArray<VStr> copy(array);
    copy[0] = "changed";
    const CBxArray<VStr>& same = array;
    array = same;
    EXPECT_EQ(texts(array), (Texts{"a", "<null>", ""}));
    array = copy;
    copy = CBxArray<VStr>();
    EXPECT_EQ(texts(array), (Texts{"changed", "<null>", ""}));
    array.Add("more");
    EXPECT_EQ(array.GetSize(), 4);
}

TEST(BxVStrArray, AddVStrTakesTheTextOver) {
    Bx_VStrArray array;
    VStr v("text");
    const char* block = v;
    EXPECT_EQ(array.AddVStr(v), 0);
    EXPECT_EQ(v.Compare(nullptr), 0);
    for (int i = 1; i < 5000; ++i) array.AddVStr(v);
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

// A list of a million items is not moved eight thousand times.
TEST(BxVStrArray, AMillionItems) {
    Opened<Bx_VStrArray> array;
    VStr v;
    for (int i = 0; i < 1'000'000; ++i) array.AddVStr(v);
    EXPECT_EQ(array.GetSize(), 1'000'000);
    EXPECT_EQ(array.room() % 128, 0);
    EXPECT_LT(array.room() - array.GetSize(), 128);
}

}  // namespace
