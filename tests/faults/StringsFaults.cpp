// Strings, arrays and parsers without memory: a string that was being built is null, an array that
// cannot grow keeps what it has, what is found by its name is never another's value. All can be
// used again.
#include <cstring>

#include "QelUtility/BxParseValues.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

constexpr char kLong[] = "a text of more than sixty-three characters, so that its block must grow";
VStr source(kLong);
VStr inserted("XY");
const std::string kFull(63, 'x');

// `change` on a string that holds `before`.
Operation onString(const char* name, const char* before, void (*change)(VStr& text),
                   const Outcome& starved = {kNull}) {
    return {name, starved,
            [before, change](Attempt& attempt) {
                VStr text(before);
                attempt.armed([&] { change(text); });
                const std::string left = shown(text);
                text = "used again";
                text += ", and grown past its first block by one more piece of text";
                return seen(left, "and " + shown(text));
            }};
}

const Operation kStrings[] = {
    onString("ModGrow", "left", [](VStr& text) { text.ModGrow(1000); }),
    onString("Construct", "left", [](VStr& text) { text = VStr(kLong); }),
    onString("ConstructCopy", "left", [](VStr& text) { text = VStr(source); }),
    onString("ConstructRun", "left", [](VStr& text) { text = VStr('x', 100); }),
    onString("AssignString", "left", [](VStr& text) { text = source; }),
    onString("CopyOwnText", "left",
             [](VStr& text) { text.Copy(static_cast<const char*>(text) + 2, 2); }),
    onString("GetBuffer", "left",
             [](VStr& text) {
                 char* const buffer = text.GetBuffer(500);
                 if (buffer != nullptr && text.GetLength() == 4) std::memset(buffer + 4, 'x', 496);
                 text.ReleaseBuffer(text.GetLength() == 4 ? 500 : 0);
             },
             {kNull, ""}),
    onString("ReleaseBufferOfNull", "", [](VStr& text) { text.ReleaseBuffer(0); }),
    onString("CatstrTwo", "left", [](VStr& text) { text.Catstr(inserted, source); }),
    onString("CatstrOntoItsSecond", "left", [](VStr& text) { text.Catstr(source, text); }),
    onString("AppendItself", kLong, [](VStr& text) { text += text; }),
    onString("AppendItsTail", kLong,
             [](VStr& text) { text += static_cast<const char*>(text) + 2; }),
    onString("AppendCharacter", kFull.c_str(), [](VStr& text) { text += 'y'; }),
    onString("Substr", "left", [](VStr& text) { text.Substr(1, 2); }),
    onString("Mid", "left", [](VStr& text) { text = text.Mid(1, 2); }),
    onString("Cutstr", "left", [](VStr& text) { text.Cutstr(1, 2); }),
    onString("Insert", "left", [](VStr& text) { text.Insert(text, 2, inserted); }),
    // The argument's copy may be the one that there is no memory for: nothing to insert then.
    onString("InsertCopy", "left", [](VStr& text) { text.Insert(2, inserted); }, {kNull, "left"}),
    onString("Trim", "  left  ",
             [](VStr& text) {
                 text.TrimLeft();
                 text.TrimRight();
             }),
    onString("Format", "left",
             [](VStr& text) {
                 text.Format("%s and %08d and %lld", static_cast<const char*>(text), 42,
                             1234567890123LL);
             }),
    // The C library needs memory of its own for so many digits.
    onString("FormatWide", "left", [](VStr& text) { text.Format("%.3000f", 1.0); }, {kNull, ""}),
    {"ModAlloc",
     {"(null) 0"},
     [](Attempt& attempt) {
         unsigned int capacity = 99;
         char* block = nullptr;
         attempt.armed([&] { block = VStr::ModAlloc(100, &capacity); });
         VStr owner;
         owner <<= block;
         return seen(together(block == nullptr ? kNull : "block", capacity));
     }},
    {"Create",
     {"none"},
     [](Attempt& attempt) {
         VStr* made = nullptr;
         attempt.armed([&] { made = VStr_Create("text"); });
         const std::string is = made == nullptr ? "none" : VStr_Text(made);
         VStr_Destroy(made);
         return seen(is);
     }},
};
INSTANTIATE_TEST_SUITE_P(Strings, Exhaustion, testing::ValuesIn(kStrings), operationName);

// --- Arrays --------------------------------------------------------------------------------------

template <typename Array>
void fill(Array& array, int count) {
    static const char* const kTexts[] = {"one", "two"};
    for (int i = 0; i < count; ++i) array.Add(kTexts[i % 2]);
}

// Its size and its elements, and the array empty and in use again.
template <typename Array>
Outcome seenAndEmptied(Array& array) {
    Outcome outcome = seen(array.GetSize());
    for (int i = 0; i < array.GetSize(); ++i) outcome.push_back(shown(VStr(array[i])));
    array.RemoveAll();
    const int index = array.Add("again");
    outcome.push_back(together(index, VStr(array[0])));
    return outcome;
}

// `change` on an array of two elements. One that could not get its block keeps its size and reads
// null strings.
Operation onArray(const char* name, void (*change)(VStrArray& array)) {
    return {name,
            {kNull},
            [change](Attempt& attempt) {
                VStrArray array;
                fill(array, 2);
                attempt.armed([&] { change(array); });
                const Outcome outside = seen(array.GetAt(-1), array.GetAt(array.GetSize()));
                for (int i = -1; i <= array.GetSize(); ++i) array.SetAt(i, array.GetAt(i));
                Outcome outcome = seenAndEmptied(array);
                outcome.insert(outcome.end(), outside.begin(), outside.end());
                return outcome;
            }};
}

// `add` to a growing array whose block is full; what it says, and the array, which has one more
// element or is as it was.
Operation onFullArray(const char* name, int (*add)(Bx_VStrArray& array, VStr& text)) {
    return {name,
            {"-1 128 new"},
            [add](Attempt& attempt) {
                Bx_VStrArray array;
                fill(array, 128);
                VStr text("new");
                int index = -2;
                attempt.armed([&] { index = add(array, text); });
                Outcome outcome = seen(together(index, array.GetSize(), text));
                for (int i = 0; i < 128; ++i) outcome.push_back(shown(array[i]));
                fill(array, 1);
                outcome.push_back(shown(array[array.GetSize() - 1]));
                return outcome;
            }};
}

template <typename Array>
Operation onCopy(const char* name) {
    return {name,
            {kNull, "", "0"},
            [](Attempt& attempt) {
                Array copied;
                fill(copied, 2);
                Array target;
                fill(target, 1);
                attempt.armed([&] {
                    const Array copy(copied);
                    target = copy;
                });
                // What is missing of the copy's end is nothing that was there before.
                Outcome outcome = seenAndEmptied(target);
                if (outcome[0] == "0") outcome.insert(outcome.begin() + 1, 2, kNull);
                return outcome;
            }};
}

const Operation kArrays[] = {
    onArray("SetSize", [](VStrArray& array) { array.SetSize(4); }),
    onArray("Add", [](VStrArray& array) { array.Add(array[0]); }),
    onArray("SetAt", [](VStrArray& array) { array.SetAt(0, "uno"); }),
    onArray("AppendItself", [](VStrArray& array) { array.Append(array); }),
    onArray("InsertAt", [](VStrArray& array) { array.InsertAt(1, "x", 2); }),
    onArray("RemoveAt", [](VStrArray& array) { array.RemoveAt(0); }),
    onArray("GetAt", [](VStrArray& array) { VStr(array.GetAt(0)).Catstr(array[5]); }),
    onCopy<VStrArray>("Copy"),
    onCopy<Bx_VStrArray>("CopyGrowing"),
    onFullArray("AddToFull", [](Bx_VStrArray& array, VStr&) { return array.Add("new"); }),
    onFullArray("AddVStrToFull",
                [](Bx_VStrArray& array, VStr& text) { return array.AddVStr(text); }),
};
INSTANTIATE_TEST_SUITE_P(Arrays, Exhaustion, testing::ValuesIn(kArrays), operationName);

// --- Parsers -------------------------------------------------------------------------------------

constexpr char kLongItem[] =
    "an item of more than sixty-three characters so that it takes two grains";
const std::string kList = std::string("one,,") + kLongItem + ",last";
const std::string kEscaped = std::string("a\\;b\\nc;") + kLongItem + "\\;x";
const std::string kPairs = std::string("FREQ=DAILY,COUNT=3,TEXT=") + kLongItem + ",=none";

// A list and a list of pairs, each with what it was given before. Some items may be missing.
struct Parsers {
    CBxParseValues list;
    CBxParseValues filled;
    CBxParsePairValues pairs;
    CBxParsePairValues filledPairs;
    VStr text{"old"};

    Parsers() {
        filled.BuildSymbolArray("one and a little more;x,two");
        filledPairs.BuildSymbolArray("A=1,COUNT=2,=none");
    }
    Outcome left(const Attempt&) {
        Outcome outcome = seen(text);
        for (int i = 0; i < list.GetSize(); ++i) outcome.push_back(shown(list[i]));
        outcome.resize(6, kNull);
        for (const char* name : {"FREQ", "COUNT", "TEXT", "", "A"})
            outcome.push_back(shown(pairs.GetValueOf(name)));
        list.SetAddEmptyItems(false);
        list.SetSeparators(",");
        list.RemoveSymbols();
        list.BuildSymbolArray("p,q");
        pairs.BuildSymbolArray("NEW=value");
        outcome.push_back(together(list[0], list[1], pairs.GetValueOf("NEW")));
        return outcome;
    }
};

const Operation kParsers[] = {
    on<Parsers>("Split", {kNull, "", "one", kLongItem, "last"},
                [](Parsers& made) {
                    made.list.SetAddEmptyItems(true);
                    made.list.BuildSymbolArray(kList.c_str());
                }),
    on<Parsers>("SplitEscapes", {kNull, "a;b\r\nc", kLongItem + std::string(";x")},
                [](Parsers& made) {
                    made.list.SetSeparators(";\\");
                    made.list.EscapeNewLines(true);
                    made.list.BuildSymbolArray(kEscaped.c_str());
                }),
    on<Parsers>("Join", {kNull},
                [](Parsers& made) { made.filled.ArrayToString(made.text, ";", true); }),
    on<Parsers>("Pairs", {kNull},
                [](Parsers& made) { made.pairs.BuildSymbolArray(kPairs.c_str()); }),
    on<Parsers>("PairValue", {kNull},
                [](Parsers& made) { made.text = made.filledPairs.GetValueOf("A"); }),
};
INSTANTIATE_TEST_SUITE_P(Parsers, Exhaustion, testing::ValuesIn(kParsers), operationName);

}  // namespace

}  // namespace qel::test
