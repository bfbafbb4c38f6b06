// Strings and arrays without memory: a string that was being built is null, an array that cannot
// grow is as its header says.
#include <cstring>

#include "QelUtility/CSLock.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

constexpr char kLong[] = "a text of more than sixty-three characters, so that its block must grow";
constexpr char kShort[] = "left";

bool isNull(const VStr& text) {
    return text.GetLength() == 0 && text.Compare(nullptr) == 0;
}

// The text as it should be, or a null string when there was no memory for it; and a string that can
// be used as any other.
void expectWholeOrNull(VStr& text, const char* whole, const Attempt& attempt) {
    if (attempt.starved()) {
        EXPECT_TRUE(isNull(text)) << text;
    } else {
        EXPECT_STREQ(text, whole);
    }
    text = "used again";
    text += ", and grown past its first block by one more piece of text";
    EXPECT_EQ(text.GetLength(), 68);
}

// Runs `change` on a string that holds "left".
template <typename Change>
void changed(Attempt& attempt, const char* whole, Change change) {
    VStr text(kShort);
    attempt.armed([&] { change(text); });
    expectWholeOrNull(text, whole, attempt);
}

const Operation kStrings[] = {
    {"ModAlloc",
     [](Attempt& attempt) {
         char* block = nullptr;
         unsigned int capacity = 99;
         attempt.armed([&] { block = VStr::ModAlloc(100, &capacity); });
         EXPECT_EQ(block == nullptr, attempt.starved());
         EXPECT_EQ(capacity, attempt.starved() ? 0U : 128U);
         VStr owner;
         owner <<= block;
     }},
    {"ModGrow",
     [](Attempt& attempt) {
         VStr text(kShort);
         char* block = nullptr;
         attempt.armed([&] { block = text.ModGrow(1000); });
         EXPECT_EQ(block == nullptr, attempt.starved());
         expectWholeOrNull(text, kShort, attempt);
     }},
    {"Constructors",
     [](Attempt& attempt) {
         const VStr source(kLong);
         VStr made[4];
         attempt.armed([&] {
             VStr a(kLong);
             VStr b(kLong, 10);
             VStr c(source);
             VStr d('x', 100);
             made[0] <<= a;
             made[1] <<= b;
             made[2] <<= c;
             made[3] <<= d;
         });
         const int lengths[] = {source.GetLength(), 10, source.GetLength(), 100};
         for (int i = 0; i < 4; ++i) {
             EXPECT_TRUE(made[i].GetLength() == lengths[i] ||
                         (attempt.starved() && isNull(made[i])));
         }
     }},
    {"AssignString",
     [](Attempt& attempt) {
         const VStr source(kLong);
         changed(attempt, kLong, [&](VStr& text) { text = source; });
     }},
    {"AssignText",
     [](Attempt& attempt) { changed(attempt, kLong, [](VStr& text) { text = kLong; }); }},
    {"AssignCharacter",
     [](Attempt& attempt) { changed(attempt, "c", [](VStr& text) { text = 'c'; }); }},
    {"CopyOwnText",
     [](Attempt& attempt) {
         changed(attempt, "ft",
                 [](VStr& text) { text.Copy(static_cast<const char*>(text) + 2, 2); });
     }},
    {"GetBuffer",
     [](Attempt& attempt) {
         VStr text(kShort);
         char* buffer = nullptr;
         attempt.armed([&] { buffer = text.GetBuffer(500); });
         if (!attempt.starved()) std::memset(buffer + 4, 'x', 496);
         text.ReleaseBuffer(attempt.starved() ? 0 : 500);
         EXPECT_EQ(text.GetLength(), attempt.starved() ? 0 : 500);
     }},
    {"ReleaseBufferOfNull",
     [](Attempt& attempt) {
         VStr text;
         attempt.armed([&] { text.ReleaseBuffer(3); });
         EXPECT_EQ(text.GetLength(), attempt.starved() ? 0 : 3);
     }},
    {"CatstrTwo",
     [](Attempt& attempt) {
         VStr a(kShort);
         const VStr b(kLong);
         VStr text;
         attempt.armed([&] { text.Catstr(a, b); });
         expectWholeOrNull(text, (std::string(kShort) + kLong).c_str(), attempt);
         EXPECT_STREQ(a, kShort);
     }},
    {"CatstrOntoItsSecond",
     [](Attempt& attempt) {
         VStr a(kLong);
         changed(attempt, (std::string(kLong) + kShort).c_str(),
                 [&](VStr& text) { text.Catstr(a, text); });
     }},
    {"CatstrText",
     [](Attempt& attempt) {
         changed(attempt, (std::string(kShort) + kLong).c_str(),
                 [](VStr& text) { text.Catstr(kLong); });
     }},
    {"AppendItself",
     [](Attempt& attempt) {
         VStr text(kLong);
         attempt.armed([&] { text += text; });
         expectWholeOrNull(text, (std::string(kLong) + kLong).c_str(), attempt);
     }},
    {"AppendItsTail",
     [](Attempt& attempt) {
         VStr text(kLong);
         attempt.armed([&] { text += static_cast<const char*>(text) + 2; });
         expectWholeOrNull(text, (std::string(kLong) + (kLong + 2)).c_str(), attempt);
     }},
    {"AppendCharacter",
     [](Attempt& attempt) {
         const std::string full(63, 'x');
         VStr text(full.c_str());
         attempt.armed([&] { text += 'y'; });
         expectWholeOrNull(text, (full + "y").c_str(), attempt);
     }},
    {"Substr",
     [](Attempt& attempt) { changed(attempt, "ef", [](VStr& text) { text.Substr(1, 2); }); }},
    {"Pieces",
     [](Attempt& attempt) {
         VStr text(kShort);
         VStr pieces[7];
         attempt.armed([&] {
             pieces[0] = text.Mid(1, 2);
             pieces[1] = text.Mid(1);
             pieces[2] = text(0, 1);
             pieces[3] = text.Left(2);
             pieces[4] = text.Right(2);
             pieces[5] = text.SpanIncluding("el");
             pieces[6] = text.SpanExcluding("f");
         });
         const char* whole[] = {"ef", "eft", "l", "le", "ft", "le", "le"};
         for (int i = 0; i < 7; ++i) {
             if (!attempt.starved() || !isNull(pieces[i])) {
                 EXPECT_STREQ(pieces[i], whole[i]);
             }
         }
         EXPECT_STREQ(text, kShort);
     }},
    {"Cutstr",
     [](Attempt& attempt) { changed(attempt, "lt", [](VStr& text) { text.Cutstr(1, 2); }); }},
    {"Insert",
     [](Attempt& attempt) {
         VStr inserted("XY");
         changed(attempt, "leXYft", [&](VStr& text) { text.Insert(text, 2, inserted); });
         EXPECT_STREQ(inserted, "XY");
     }},
    {"InsertIntoNull",
     [](Attempt& attempt) {
         VStr source;
         VStr inserted("XY");
         VStr target(kShort);
         attempt.armed([&] { target.Insert(source, 0, inserted); });
         expectWholeOrNull(source, "XY", attempt);
         EXPECT_STREQ(target, kShort);
     }},
    {"InsertCopy",
     [](Attempt& attempt) {
         // The argument's copy may be the one that there is no memory for: nothing to insert then.
         VStr text(kShort);
         const VStr inserted("XY");
         attempt.armed([&] { text.Insert(2, inserted); });
         EXPECT_TRUE(std::strcmp(text, "leXYft") == 0 ||
                     (attempt.starved() && (isNull(text) || std::strcmp(text, kShort) == 0)));
     }},
    {"Trim",
     [](Attempt& attempt) {
         VStr text("  left  ");
         attempt.armed([&] {
             text.TrimLeft();
             text.TrimRight();
         });
         EXPECT_STREQ(text, kShort);
     }},
    {"Format",
     [](Attempt& attempt) {
         changed(attempt, "left and 00000042 and 1234567890123", [](VStr& text) {
             text.Format("%s and %08d and %I64d", static_cast<const char*>(text), 42,
                         1234567890123LL);
         });
     }},
    {"FormatWide",
     [](Attempt& attempt) {
         // The C library needs memory of its own for so many digits.
         VStr text(kShort);
         attempt.armed([&] { text.Format("%.3000f", 1.0); });
         EXPECT_TRUE(text.GetLength() == 3002 || (attempt.starved() && text.GetLength() == 0));
     }},
};
INSTANTIATE_TEST_SUITE_P(Strings, Exhaustion, testing::ValuesIn(kStrings), operationName);

// --- Arrays --------------------------------------------------------------------------------------

// An array that could not get its block keeps its size, reads null strings and takes new elements
// once it has been emptied.
void expectUsable(VStrArray& array) {
    for (int i = -1; i <= array.GetSize(); ++i) {
        array.SetAt(i, "x");
        static_cast<void>(array.GetAt(i));
    }
    array.RemoveAll();
    EXPECT_EQ(array.Add("again"), 0);
    EXPECT_STREQ(array[0], "again");
}

// Each element of `array` as given, or null where there was no memory.
void expectElements(VStrArray& array, const std::vector<const char*>& whole,
                    const Attempt& attempt) {
    ASSERT_EQ(array.GetSize(), static_cast<int>(whole.size()));
    for (std::size_t i = 0; i < whole.size(); ++i) {
        VStr& element = array.ElementAt(static_cast<int>(i));
        if (attempt.starved() && isNull(element)) continue;
        EXPECT_STREQ(element, whole[i]);
    }
    expectUsable(array);
}

template <typename Change>
void changedArray(Attempt& attempt, const std::vector<const char*>& whole, Change change) {
    VStrArray array;
    array.Add("one");
    array.Add("two");
    attempt.armed([&] { change(array); });
    expectElements(array, whole, attempt);
}

const Operation kArrays[] = {
    {"SetSize",
     [](Attempt& attempt) {
         changedArray(attempt, {"one", "two", "", ""}, [](VStrArray& a) { a.SetSize(4); });
     }},
    {"Add",
     [](Attempt& attempt) {
         changedArray(attempt, {"one", "two", "one"}, [](VStrArray& a) { a.Add(a[0]); });
     }},
    {"AddPart",
     [](Attempt& attempt) {
         changedArray(attempt, {"one", "two", "th"}, [](VStrArray& a) { a.Add("three", 2); });
     }},
    {"SetAt",
     [](Attempt& attempt) {
         changedArray(attempt, {"uno", "du"}, [](VStrArray& a) {
             a.SetAt(0, "uno");
             a.SetAt(1, "due", 2);
         });
     }},
    {"GetAt",
     [](Attempt& attempt) {
         VStrArray array;
         array.Add("one");
         VStr got;
         VStr indexed;
         attempt.armed([&] {
             got <<= array.GetAt(0).GetBuffer(0) != nullptr ? array.ElementAt(0) : got;
             indexed = static_cast<const VStrArray&>(array)[5];
         });
         EXPECT_STREQ(got, "one");
     }},
    {"AppendItself",
     [](Attempt& attempt) {
         changedArray(attempt, {"one", "two", "one", "two"}, [](VStrArray& a) { a.Append(a); });
     }},
    {"AssignAndCopy",
     [](Attempt& attempt) {
         VStrArray source;
         source.Add("uno");
         source.Add(nullptr);
         changedArray(attempt, {"uno", ""}, [&](VStrArray& a) { a = source; });
         EXPECT_EQ(source.GetSize(), 2);
     }},
    {"CopyConstruct",
     [](Attempt& attempt) {
         VStrArray source;
         source.Add("uno");
         attempt.armed([&] {
             const VStrArray copy(source);
             static_cast<void>(copy);
         });
         EXPECT_STREQ(source[0], "uno");
     }},
    {"InsertAt",
     [](Attempt& attempt) {
         changedArray(attempt, {"one", "x", "x", "two"},
                      [](VStrArray& a) { a.InsertAt(1, "x", 2); });
     }},
    {"RemoveAt",
     [](Attempt& attempt) { changedArray(attempt, {"two"}, [](VStrArray& a) { a.RemoveAt(0); }); }},
};
INSTANTIATE_TEST_SUITE_P(Arrays, Exhaustion, testing::ValuesIn(kArrays), operationName);

// The growing arrays keep what they have; a refused element is reported.
template <typename Add>
void addedPastTheStep(Attempt& attempt, Add add) {
    Bx_VStrArray array;
    for (int i = 0; i < 128; ++i) array.Add("item");
    int index = -2;
    attempt.armed([&] { index = add(array); });
    EXPECT_TRUE(index == 128 || (attempt.starved() && index == -1));
    ASSERT_EQ(array.GetSize(), index == 128 ? 129 : 128);
    for (int i = 0; i < 128; ++i) ASSERT_STREQ(array[i], "item");
    array.Add("again");
    EXPECT_STREQ(array[array.GetSize() - 1], "again");
}

const Operation kGrowingArrays[] = {
    {"Add",
     [](Attempt& attempt) {
         addedPastTheStep(attempt, [](Bx_VStrArray& a) { return a.Add("new"); });
     }},
    {"AddVStr",
     [](Attempt& attempt) {
         VStr taken("new");
         addedPastTheStep(attempt, [&](Bx_VStrArray& a) { return a.AddVStr(taken); });
         if (attempt.starved()) {
             EXPECT_STREQ(taken, "new");
         } else {
             EXPECT_TRUE(isNull(taken));
         }
     }},
    {"Copy",
     [](Attempt& attempt) {
         Bx_VStrArray source;
         source.Add("one");
         source.Add("two");
         Bx_VStrArray target;
         target.Add("old");
         attempt.armed([&] { target = source; });
         ASSERT_TRUE(target.GetSize() == 2 || (attempt.starved() && target.GetSize() == 0));
         const char* whole[] = {"one", "two"};
         for (int k = 0; k < target.GetSize(); ++k) {
             if (!attempt.starved() || !isNull(target[k])) {
                 EXPECT_STREQ(target[k], whole[k]);
             }
         }
         const int size = target.GetSize();
         EXPECT_EQ(target.Add("again"), size);
     }},
    {"FindItem",
     [](Attempt& attempt) {
         Bx_VStrArray array;
         array.Add("one");
         array.Add("two");
         int found = -2;
         int folded = -2;
         attempt.armed([&] {
             found = array.FindItem("two");
             folded = array.FindItemNoCase("TWO");
         });
         EXPECT_TRUE(found == 1 || (attempt.starved() && found == -1));
         EXPECT_EQ(folded, 1);
     }},
    {"Lock",
     [](Attempt& attempt) {
         CSLockable lockable;
         attempt.armed([&] {
             CSLock outer(&lockable);
             const CSLock inner(&lockable);
             outer.unlock();
             outer.lock();
         });
     }},
};
INSTANTIATE_TEST_SUITE_P(GrowingArrays, Exhaustion, testing::ValuesIn(kGrowingArrays),
                         operationName);

}  // namespace

}  // namespace qel::test
