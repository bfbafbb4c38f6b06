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
    {",", "a,b", true, false, {"a", "b"}},
    {",", "a,b,", false, false, {"a", "b"}},
    {",", "a,b,", true, false, {"a", "b", "<null>"}},
    {",", ",a", false, false, {"a"}},
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
    {",\\", "x\\;y", false, false, {"x;y"}},
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

}  // namespace
