#include "QelUtility/BxParseValues.h"

#include <gtest/gtest.h>

#include <string>

#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::Row;

// The items in brackets; "<null>" is a null string.
template <class Parser>
std::string items(Parser& parser) {
    std::string text;
    for (int i = 0; i < parser.GetSize(); ++i) {
        const VStr& item = parser[i];
        const std::string shown =
            item.Compare(nullptr) == 0 ? "<null>" : static_cast<const char*>(item);
        text += (i == 0 ? "[" : " [") + shown + "]";
    }
    return text;
}

template <class Parser>
std::string split(Parser parser, Row& row) {
    parser.SetSeparators(row["separators"].c_str());
    parser.SetAddEmptyItems(row["empty items"] == "yes");
    parser.EscapeNewLines(row["new lines"] == "yes");
    EXPECT_EQ(parser.BuildSymbolArray(row["text"].c_str()), 0);
    return items(parser);
}

TEST(ParseValues, TextsGiveTheirItemsInBothParsers) {
    for (Row& row : list("values/items.txt")) {
        SCOPED_TRACE(row["separators"] + " splits " + row["text"]);
        EXPECT_EQ(split(CBxParseValues(), row), row["items"]);
        EXPECT_EQ(split(CBxParsePairValues(), row), row["items"]);
    }
    CBxParseValues nothing;
    nothing.SetSeparators(nullptr);
    nothing.SetAddEmptyItems(true);
    nothing.BuildSymbolArray(nullptr);
    nothing.BuildSymbolArray("a,b");
    EXPECT_EQ(items(nothing), "[<null>] [a,b]");
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
    for (Row& row : list("values/joined.txt")) {
        SCOPED_TRACE(row["items"]);
        CBxParsePairValues parser;
        for (const std::string& item : qel::test::split(row["items"], '/'))
            parser.GetSymbols().Add(item.c_str());
        VStr out("old");
        EXPECT_STREQ(parser.ArrayToString(out, row["separators"].c_str(), row["escapes"] != "no"),
                     row["text"].c_str());
        EXPECT_STREQ(out, row["text"].c_str());
    }
    CBxParseValues own;
    own.BuildSymbolArray("a,b");
    EXPECT_STREQ(own.ArrayToString(own[0], ";", false), "a;b");
    EXPECT_STREQ(own.ArrayToString(own[0], nullptr, true), "a;bb");
}

TEST(ParsePairValues, TheFirstValueOfANameHolds) {
    CBxParsePairValues parser;
    parser.SetSeparators(";");
    parser.BuildSymbolArray("A=1;B=2=3;C;A=7;=nameless; D = 4 ;E=");
    EXPECT_EQ(parser.GetSize(), 7);
    for (const auto& [name, value] : {std::pair{"A", "1"},
                                      {"B", "2=3"},
                                      {"a", ""},
                                      {"C", ""},
                                      {"", "nameless"},
                                      {" D ", " 4 "},
                                      {"E", ""},
                                      {static_cast<const char*>(nullptr), "nameless"}})
        EXPECT_STREQ(parser.GetValueOf(name), value);

    parser.RemoveSymbols();
    parser.BuildSymbolArray("A=9;F=6");
    EXPECT_STREQ(parser.GetValueOf("A"), "1");
    const CBxParsePairValues untouched(parser);
    parser.BuildSymbolArray("G=8");
    CBxParsePairValues copy;
    copy = untouched;
    EXPECT_EQ(copy.GetNextSymbol(), 2018);
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
