// The parsers without memory: nothing is thrown, an item that there was no memory for is null, and
// what is found by its name is never another's value.
#include <cstring>

#include "QelUtility/BxParseValues.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

constexpr char kLongItem[] =
    "an item of more than sixty-three characters so that it takes two grains";

// Each item is as given, or null; there may be fewer.
template <typename Parser>
void expectItems(Parser& parser, const std::vector<std::string>& whole, const Attempt& attempt) {
    const auto size = static_cast<std::size_t>(parser.GetSize());
    ASSERT_TRUE(size == whole.size() || (attempt.starved() && size < whole.size()));
    for (std::size_t i = 0; i < size; ++i) {
        const VStr& item = parser[static_cast<int>(i)];
        if (attempt.starved() && item.GetLength() == 0) continue;
        EXPECT_NE(std::find(whole.begin(), whole.end(), static_cast<const char*>(item)),
                  whole.end())
            << item;
    }
    parser.RemoveSymbols();
    EXPECT_EQ(parser.BuildSymbolArray("p,q"), 0);
    EXPECT_EQ(parser.GetSize(), 2);
}

const Operation kValues[] = {
    {"Split",
     [](Attempt& attempt) {
         const std::string text = std::string("one,,") + kLongItem + ",last";
         CBxParseValues parser;
         parser.SetAddEmptyItems(true);
         int result = -2;
         attempt.armed([&] { result = parser.BuildSymbolArray(text.c_str()); });
         EXPECT_EQ(result, 0);
         parser.SetAddEmptyItems(false);
         expectItems(parser, {"one", "", kLongItem, "last"}, attempt);
     }},
    {"SplitEscapes",
     [](Attempt& attempt) {
         CBxParseValues parser;
         parser.SetSeparators(";\\");
         parser.EscapeNewLines(true);
         const std::string text = std::string("a\\;b\\nc;") + kLongItem + "\\;x";
         attempt.armed([&] { parser.BuildSymbolArray(text.c_str()); });
         parser.SetSeparators(",");
         expectItems(parser, {"a;b\r\nc", std::string(kLongItem) + ";x"}, attempt);
     }},
    {"Join",
     [](Attempt& attempt) {
         CBxParseValues parser;
         parser.BuildSymbolArray("one and a little more;x,two");
         VStr out("old");
         const char* text = nullptr;
         attempt.armed([&] { text = parser.ArrayToString(out, ";", true); });
         const char* whole = "one and a little more\\;x;two";
         EXPECT_TRUE(std::strcmp(text, whole) == 0 || (attempt.starved() && *text == '\0')) << text;
         EXPECT_STREQ(out, text);
     }},
    {"CopyParser",
     [](Attempt& attempt) {
         CBxParseValues parser;
         parser.BuildSymbolArray("one,two");
         CBxParseValues target;
         attempt.armed([&] {
             const CBxParseValues copy(parser);
             target = copy;
         });
         expectItems(target, {"one", "two"}, attempt);
     }},
    {"Pairs",
     [](Attempt& attempt) {
         const std::string text = std::string("FREQ=DAILY,COUNT=3,TEXT=") + kLongItem + ",=none";
         CBxParsePairValues parser;
         attempt.armed([&] { parser.BuildSymbolArray(text.c_str()); });
         const auto expectValue = [&](const char* name, const char* whole) {
             const VStr value = parser.GetValueOf(name);
             if (!attempt.starved() || value.GetLength() != 0) {
                 EXPECT_STREQ(value, whole) << name;
             }
         };
         expectValue("FREQ", "DAILY");
         expectValue("COUNT", "3");
         expectValue("TEXT", kLongItem);
         expectValue("", "none");
         expectValue(nullptr, "none");
         parser.BuildSymbolArray("NEW=value");
         EXPECT_STREQ(parser.GetValueOf("NEW"), "value");
     }},
    {"PairValue",
     [](Attempt& attempt) {
         CBxParsePairValues parser;
         parser.BuildSymbolArray("A=1,=none");
         VStr value;
         attempt.armed([&] {
             VStr found = parser.GetValueOf("A");
             value <<= found;
         });
         EXPECT_STREQ(value, attempt.starved() ? "" : "1");
         EXPECT_STREQ(parser.GetValueOf("A"), "1");
     }},
    {"CopyPairs",
     [](Attempt& attempt) {
         CBxParsePairValues parser;
         parser.BuildSymbolArray("A=1,B=2,C=3");
         CBxParsePairValues target;
         target.BuildSymbolArray("A=old");
         attempt.armed([&] {
             const CBxParsePairValues copy(parser);
             target = copy;
         });
         const char* names[] = {"A", "B", "C"};
         const char* values[] = {"1", "2", "3"};
         for (int i = 0; i < 3; ++i) {
             const VStr value = target.GetValueOf(names[i]);
             if (!attempt.starved() || value.GetLength() != 0) {
                 EXPECT_STREQ(value, values[i]);
             }
         }
     }},
};
INSTANTIATE_TEST_SUITE_P(Values, Exhaustion, testing::ValuesIn(kValues), operationName);

}  // namespace

}  // namespace qel::test
