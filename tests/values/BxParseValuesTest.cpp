#include "QelUtility/BxParseValues.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Items as the tests write them: "<null>" is a null string.
template <class Parser>
std::vector<std::string> items(Parser& parser) {
    std::vector<std::string> result;
    for (int i = 0; i < parser.GetSize(); ++i) {
        const VStr& item = parser[i];
        result.emplace_back(item.Compare(nullptr) == 0 ? "<null>" : static_cast<const char*>(item));
    }
    return result;
}

struct Row {
    const char* separators;
    const char* text;
    bool emptyItems;
    bool newLines;
    std::vector<std::string> expected;
};

const Row kRows[] = {
    {",", "a,b", false, false, {"a", "b"}},
    {",", "a,b,", true, false, {"a", "b", "<null>"}},
    {",", ",a", true, false, {"<null>", "a"}},
    {",", "a,,b", false, false, {"a", "b"}},
    {",", "a,,b", true, false, {"a", "<null>", "b"}},
    {",", ",", true, false, {"<null>", "<null>"}},
    {",", "", false, false, {}},
    {",", "", true, false, {"<null>"}},
    {",", nullptr, true, false, {"<null>"}},
    {nullptr, "a,b", false, false, {"a,b"}},
    {"", "a,b\\", false, false, {"a,b\\"}},
    // Without the backslash in the set an escape is ordinary text.
    {",", "a\\,b", false, false, {"a\\", "b"}},
    {",", "\\", false, true, {"\\"}},
    // With it, only "," ";" "\" are escapable, whatever else is in the set.
    {",\\", "a\\,b,c", false, false, {"a,b", "c"}},
    {",\\", "x\\\\y", false, false, {"x\\y"}},
    {",\\", "x\\qy", false, false, {"x\\qy"}},
    {"|\\", "x\\|y", false, false, {"x\\", "y"}},
    {",\\", "\\,a,\\\\", false, false, {",a", "\\"}},
    {",\\", "a\\,", true, false, {"a,"}},
    {",\\", "a\\,,", true, false, {"a,", "<null>"}},
    {",\\", "a\\", false, false, {"a\\"}},
    {",\\", "\\\\\\", false, false, {"\\\\"}},
    {",\\", "line1\\nline2", false, false, {"line1\\nline2"}},
    {",\\", "line1\\nline2\\N", false, true, {"line1\r\nline2\\N"}},
    {",\\", "\xE9\\,\xFF,\x80", false, false, {"\xE9,\xFF", "\x80"}},
};

TEST(ParseValues, TextsGiveTheirItemsInBothParsers) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::string(row.separators ? row.separators : "-") + " | " +
                     (row.text ? row.text : "-") + (row.emptyItems ? " | empty" : ""));
        const auto check = [&row](auto parser) {
            parser.SetSeparators(row.separators);
            parser.SetAddEmptyItems(row.emptyItems);
            parser.EscapeNewLines(row.newLines);
            EXPECT_EQ(parser.BuildSymbolArray(row.text), 0);
            EXPECT_EQ(items(parser), row.expected);
        };
        check(CBxParseValues());
        check(CBxParsePairValues());
    }
}

TEST(ParseValues, ItemsPileUpUntilTheyAreRemoved) {
    CBxParseValues parser;
    EXPECT_EQ(parser.GetNextSymbol(), 2018);
    parser.BuildSymbolArray("a,b");
    parser.BuildSymbolArray("c");
    EXPECT_EQ(parser.GetSize(), 3);
    EXPECT_THROW(parser[3], int);
    EXPECT_EQ(parser.GetSymbols().FindItem("c"), 2);
    parser.RemoveSymbols();
    EXPECT_EQ(parser.GetSize(), 0);
    // The copy reads on in the same text, with items of its own.
    parser.BuildSymbolArray("x,y");
    CBxParseValues copy(parser);
    copy[0] = "changed";
    EXPECT_STREQ(parser[0], "x");
    parser = copy;
    copy.RemoveSymbols();
    EXPECT_STREQ(parser[0], "changed");
}

TEST(ParseValues, ProcessEscapesByItself) {
    CBxParseValues parser;
    VStr item("before");
    EXPECT_EQ(parser.ProcessEscapes(item), 0);
    parser.SetSeparators(",");
    // With the backslash an ordinary character the parse stops before its last item.
    EXPECT_EQ(parser.BuildSymbolArray("a"), 0);
    EXPECT_EQ(parser.ProcessEscapes(item), 0);
    EXPECT_STREQ(item, "before");
}

TEST(ParseValues, JoiningEscapesTheFirstSeparatorAlone) {
    const struct {
        std::vector<const char*> items;
        const char* sep;
        bool escape;
        const char* expected;
    } rows[] = {
        {{"a,b", "c"}, ",", true, "a\\,b,c"},
        {{"a,b", "c"}, ",", false, "a,b,c"},
        {{",", ",,a,,"}, ",", true, "\\,,\\,\\,a\\,\\,"},
        {{"x;y"}, ",;", true, "x"},
        {{"x,;y", "z"}, ",;", true, "x\\,,;z"},
        {{";x", "z"}, ",;", true, ",;z"},
        {{"a\\b"}, ",", true, "a\\b"},
        {{"", "b", ""}, ",", true, ",b,"},
        {{"a", "b"}, "", true, "ab"},
        {{"a", "b"}, nullptr, true, "ab"},
        {{}, ",", true, ""},
    };
    for (const auto& row : rows) {
        CBxParsePairValues parser;
        for (const char* item : row.items) parser.GetSymbols().Add(item);
        VStr out("old");
        EXPECT_STREQ(parser.ArrayToString(out, row.sep, row.escape), row.expected);
        EXPECT_STREQ(out, row.expected);
    }
    CBxParseValues own;
    own.BuildSymbolArray("a,b");
    EXPECT_STREQ(own.ArrayToString(own[0], ";", false), "a;b");
}

TEST(ParsePairValues, TheFirstValueOfANameHolds) {
    CBxParsePairValues parser;
    parser.SetSeparators(";");
    parser.BuildSymbolArray("A=1;B=2=3;C;A=7;=nameless; D = 4 ;E=");
    EXPECT_EQ(parser.GetSize(), 7);
    EXPECT_STREQ(parser.GetValueOf("A"), "1");
    EXPECT_STREQ(parser.GetValueOf("B"), "2=3");
    EXPECT_STREQ(parser.GetValueOf("a"), "");
    EXPECT_STREQ(parser.GetValueOf("C"), "");
    EXPECT_STREQ(parser.GetValueOf(""), "nameless");
    EXPECT_STREQ(parser.GetValueOf(nullptr), "nameless");
    EXPECT_STREQ(parser.GetValueOf(" D "), " 4 ");
    EXPECT_STREQ(parser.GetValueOf("E"), "");

    parser.RemoveSymbols();
    parser.BuildSymbolArray("A=9;F=6");
    EXPECT_STREQ(parser.GetValueOf("A"), "1");
    const CBxParsePairValues untouched(parser);
    parser.BuildSymbolArray("G=8");
    CBxParsePairValues copy(untouched);
    EXPECT_STREQ(copy.GetValueOf("F"), "6");
    EXPECT_STREQ(copy.GetValueOf("G"), "");

    // A pair is made of the item after its escapes, the items themselves stay whole.
    CBxParsePairValues escaped;
    escaped.SetSeparators(";\\");
    escaped.BuildSymbolArray("K=a\\;b;L=c");
    EXPECT_STREQ(escaped.GetValueOf("K"), "a;b");
    EXPECT_STREQ(escaped[0], "K=a;b");
}

// Neither the number of items nor the number of escapes in one of them makes a parse slow.
TEST(ParseValues, HugeTexts) {
    std::string items = "x";
    std::string escapes;
    for (int i = 0; i < 500'000; ++i) {
        items += ",x";
        escapes += "\\,";
    }
    CBxParseValues parser;
    parser.SetSeparators(",\\");
    parser.BuildSymbolArray(items.c_str());
    EXPECT_EQ(parser.GetSize(), 500'001);
    parser.BuildSymbolArray(escapes.c_str());
    EXPECT_EQ(parser[500'001].GetLength(), 500'000);
    VStr joined;
    parser.ArrayToString(joined, ",", true);
    EXPECT_EQ(joined.GetLength(), static_cast<int>(items.size() + 1 + escapes.size()));
}

}  // namespace
