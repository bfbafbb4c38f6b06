// Strings, arrays, locks and parsers through the shared library alone: every member is called, so
// that one that is not exported fails the link.
#include <gtest/gtest.h>

#include "QelUtility/BxParseValues.h"
#include "QelUtility/CSLock.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"

namespace {

std::string text(const VStr& string) {
    return static_cast<const char*>(string);
}

TEST(InterfaceStrings, StringsAreBuiltChangedAndSearched) {
    VStr a("abc");
    VStr b("defg", 3);
    VStr joined;
    joined.Catstr(a, b).Catstr(VStr('-', 2)).Catstr("end");
    joined += '!';
    joined += VStr("?");
    joined += "";
    EXPECT_EQ(text(joined), "abcdef--end!?");
    EXPECT_EQ(joined.Find("def"), 3);
    EXPECT_EQ(joined.Find('-'), 6);
    EXPECT_EQ(joined.ReverseFind('-'), 7);
    EXPECT_EQ(joined.FindOneOf("?!"), 11);
    EXPECT_EQ(text(joined.Left(3)) + text(joined.Right(2)) + text(joined.Mid(3, 3)), "abc!?def");
    EXPECT_EQ(text(joined.Mid(8)) + text(joined(0, 1)), "end!?a");
    EXPECT_EQ(text(joined.SpanIncluding("abcdef")) + text(joined.SpanExcluding("-")),
              "abcdefabcdef");
    VStr part;
    part.Substr(joined, 0, 6).Substr(1, 4);
    EXPECT_EQ(text(part), "bcde");
    VStr cut;
    cut.Cutstr(part, 1, 1).Cutstr(0, 1);
    VStr inserted("xy");
    cut.Insert(1, inserted);
    cut.Insert(cut, 0, a);
    EXPECT_EQ(text(cut), "abcdxye");
    EXPECT_EQ(cut.Compare("abcdxye"), 0);
    EXPECT_EQ(cut.CompareNoCase("ABCDXYE"), 0);
    cut[0] = 'A';
    cut.SetAt(1, 'B');
    EXPECT_EQ(cut.GetAt(1), 'B');
    EXPECT_THROW(VStr().SetAt(0, 'x'), char*);
    cut.Truncate(2);
    EXPECT_EQ(cut.GetLength(), 2);
    EXPECT_FALSE(cut.IsEmpty() || !cut);
}

TEST(InterfaceStrings, BuffersChangeHands) {
    unsigned capacity = 0;
    char* block = VStr::ModAlloc(64, &capacity);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(capacity, 128U);
    strcpy(block, "  given \r\n");
    VStr taken;
    taken <<= block;
    EXPECT_EQ(taken.ComputeTrimmedLength(), 7);
    VStr same("  given");
    EXPECT_TRUE(taken.IdenticalWhenTrimmed(same));
    taken.TrimRight();
    taken.TrimLeft();
    VStr moved;
    moved <<= taken;
    EXPECT_TRUE(taken.IsEmpty());
    strcpy(moved.GetBuffer(100), "written");
    moved.ReleaseBuffer();
    EXPECT_EQ(text(moved), "written");
    EXPECT_NE(moved.ModGrow(1000), nullptr);
    moved.Format("%s-%d", "n", 5);
    VStr assigned;
    assigned = moved;
    assigned = 'c';
    assigned = "literal";
    VStr copied(assigned);
    copied.Copy("some", 2).Copy(assigned);
    EXPECT_EQ(text(moved) + text(copied), "n-5literal");
    copied.Empty();
    copied.Remove();
}

// A static member that derived classes reach.
struct Derived : VStrArray {
    static bool nullStringIsNull() { return m_EmptyVStr.Compare(nullptr) == 0; }
};

TEST(InterfaceStrings, ArraysHoldThem) {
    EXPECT_TRUE(Derived::nullStringIsNull());
    VStrArray exact;
    exact.Add("one");
    exact.Add("twofold", 3);
    exact.InsertAt(1, "half", 2);
    exact.RemoveAt(1);
    exact.SetAt(0, "ONE");
    exact.SetAt(2, "deuce", 2);
    exact.ElementAt(1) = "middle";
    exact[1] += "!";
    VStrArray other(exact);
    other = exact;
    other.Copy(exact);
    other.Append(exact);
    other.SetSize(4);
    const VStrArray& fixed = other;
    EXPECT_EQ(text(fixed[0]) + text(other.GetAt(1)) + text(other[2]), "ONEmiddle!de");
    EXPECT_EQ(other.GetSize() + other.GetUpperBound(), 7);
    other.RemoveAll();

    Bx_VStrArray grown;
    VStr given("given");
    EXPECT_EQ(grown.AddVStr(given), 0);
    EXPECT_EQ(grown.Add("Second"), 1);
    Bx_VStrArray twin(grown);
    twin = grown;
    EXPECT_EQ(twin.FindItem("given") + twin.FindItemNoCase("second"), 1);
    EXPECT_EQ(text(twin[1]) + text(twin.GetPtr()[0]), "Secondgiven");
    EXPECT_THROW(twin[2], int);
    CBxArray<VStr> plain(twin);
    plain = twin;
    plain.RemoveAll();
    EXPECT_EQ(plain.GetSize(), 0);
}

TEST(InterfaceStrings, ParsersAndLocksWork) {
    CBxParseValues values;
    values.SetSeparators(",;\\");
    values.SetAddEmptyItems(true);
    values.EscapeNewLines(false);
    EXPECT_EQ(values.BuildSymbolArray("a\\,b;;c"), 0);
    CBxParseValues copy(values);
    copy = values;
    ASSERT_EQ(copy.GetSize(), 3);
    EXPECT_EQ(text(copy[0]), "a,b");
    EXPECT_EQ(copy.GetSymbols().GetSize(), 3);
    VStr joined;
    EXPECT_STREQ(copy.ArrayToString(joined, "|", false), "a,b||c");
    copy.RemoveSymbols();

    CBxParsePairValues pairs;
    pairs.SetSeparators(";");
    EXPECT_EQ(pairs.BuildSymbolArray("FREQ=DAILY;COUNT=3"), 0);
    CBxParsePairValues pairsCopy(pairs);
    pairsCopy = pairs;
    EXPECT_EQ(text(pairsCopy.GetValueOf("COUNT")), "3");
    EXPECT_EQ(pairsCopy.GetNextSymbol(), QEL_END_OF_INPUT);

    CSLockable guarded;
    CSLockable another(guarded);
    another = guarded;
    CSLock lock(&guarded);
    lock.unlock();
    lock.lock();
    const CSLock again(&guarded);
}

}  // namespace
