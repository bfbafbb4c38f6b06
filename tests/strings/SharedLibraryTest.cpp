// The strings, arrays and locks as a program meets them that has the headers and the shared library
// alone: exported classes, the array's explicit specialisation, a static member, exceptions.
#include <gtest/gtest.h>

#include "QelUtility/CSLock.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"

namespace {

struct Derived : VStrArray {
    bool nullStringIsNull() { return m_EmptyVStr.Compare(nullptr) == 0; }
};

struct Guarded : CSLockable {
    int value = 0;
};

TEST(SharedLibrary, StringsAndArraysCrossItsBorder) {
    VStr s("text");
    VStr moved;
    moved <<= s;
    Bx_VStrArray array;
    array.AddVStr(moved);
    array.Add(VStr("x").Catstr("y"));
    const CBxArray<VStr> copy(array);
    EXPECT_STREQ(array[1], "xy");
    EXPECT_EQ(array.FindItemNoCase("TEXT"), 0);
    try {
        array[2];
        FAIL();
    } catch (int code) {
        EXPECT_EQ(code, -1);
    }
    try {
        s.SetAt(0, 'x');
        FAIL();
    } catch (char* message) {
        EXPECT_STREQ(message, "VStr null-value error");
    }
    EXPECT_TRUE(Derived().nullStringIsNull());
    Guarded guarded;
    CSLock guard(&guarded);
    CSLock nested(&guarded);
    guarded.value = 1;
}

}  // namespace
