// Texts of unknown origin, shown to a person or put into JSON.
#include "base/Text.h"

#include <gtest/gtest.h>

#include "base/Json.h"

namespace {

using namespace qel::cli;

TEST(Text, OnlyWellFormedUtf8IsTakenForCharacters) {
    for (const char* good :
         {"a", "\xC3\xA9", "\xE2\x82\xAC", "\xED\x9F\xBF", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isUtf8(good)) << printable(good);
    for (const char* bad :
         {"\x80", "\xC0\xAF", "\xC3", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE2\x82",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC3\xC3"})
        EXPECT_FALSE(isUtf8(bad)) << printable(bad);
}

TEST(Text, NothingShownSteersTheTerminal) {
    using namespace std::string_literals;
    EXPECT_EQ(printable("plain caf\xC3\xA9"), "plain caf\xC3\xA9");
    EXPECT_EQ(printable("a\0b\x1b[2J\r\n\t\x7f\xFF\xC2\x9B"s),
              "a\\x00b\\x1b[2J\\r\\n\\t\\x7f\\xff\\xc2\\x9b");
    // What turns the direction of text, and its neighbours.
    EXPECT_EQ(
        printable("\u200E\u200F\u202A\u202E\u2066\u2069\u061C"),
        "\\xe2\\x80\\x8e\\xe2\\x80\\x8f\\xe2\\x80\\xaa\\xe2\\x80\\xae\\xe2\\x81\\xa6\\xe2\\x81\\xa9"
        "\\xd8\\x9c");
    const std::string seen = "\u00A0\u200D\u2010\u2029\u202F\u2065\u206A\u061B\u061D\u05D0";
    EXPECT_EQ(printable(seen), seen);
    EXPECT_EQ(printable(std::string(100, 'x'), 10), "xxxxxxxxxx...");
    EXPECT_EQ(jsonText("a\xFFz\n\xC3\xA9"), "a\\xffz\n\xC3\xA9");
}

}  // namespace
