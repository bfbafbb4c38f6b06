// What strings and arrays do with texts: each operation at its edges, by two tables, and long runs
// of operations in a random order.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "Shown.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;
using qel::test::shown;
using qel::test::shownAll;
using std::string;
using std::to_string;

string sign(int number) {
    return number < 0 ? "below" : number > 0 ? "above" : "same";
}

// An operation's subject, another text and two numbers. It gives the changed subject or what it
// returns.
struct Call {
    VStr& s;
    VStr& w;
    int n;
    int m;
    [[nodiscard]] const char* text() const {
        return qel::test::isNull(w) ? nullptr : static_cast<const char*>(w);
    }
    [[nodiscard]] char letter() const { return w.GetAt(0); }
};

const std::map<string, string (*)(Call)> kOperations = {
    {"construct n", [](Call c) { return shown(VStr(c.text(), c.n)); }},
    {"construct copy", [](Call c) { return shown(VStr(c.s)); }},
    {"repeat", [](Call c) { return shown(VStr(c.letter(), c.n)); }},
    {"copy", [](Call c) { return shown(c.s.Copy(c.text())); }},
    {"copy n", [](Call c) { return shown(c.s.Copy(c.text(), c.n)); }},
    {"copy from n", [](Call c) { return shown(c.s.Copy(c.s + c.n)); }},
    {"copy itself n", [](Call c) { return shown(c.s.Copy(c.s, c.n)); }},
    {"assign", [](Call c) { return shown(c.s = c.w); }},
    {"assign text", [](Call c) { return shown(c.s = c.text()); }},
    {"assign char", [](Call c) { return shown(c.s = c.letter()); }},
    {"release", [](Call c) { return c.s.ReleaseBuffer(c.n), shown(c.s); }},
    {"empty", [](Call c) { return c.s.Empty(), shown(c.s); }},
    {"truncate", [](Call c) { return c.s.Truncate(c.n), shown(c.s); }},
    {"append", [](Call c) { return shown(c.s += c.w); }},
    {"append text", [](Call c) { return shown(c.s += c.text()); }},
    {"append char", [](Call c) { return shown(c.s += c.letter()); }},
    {"append itself", [](Call c) { return shown(c.s += c.s); }},
    {"catstr", [](Call c) { return shown(c.s.Catstr(c.w)); }},
    {"catstr text", [](Call c) { return shown(c.s.Catstr(c.text())); }},
    {"catstr itself", [](Call c) { return shown(c.s.Catstr(c.s)); }},
    {"join", [](Call c) { return shown(VStr('o', 99).Catstr(c.s, c.w)); }},
    {"prepend", [](Call c) { return shown(c.s.Catstr(c.w, c.s)); }},
    {"left", [](Call c) { return shown(c.s.Left(c.n)); }},
    {"right", [](Call c) { return shown(c.s.Right(c.n)); }},
    {"mid", [](Call c) { return shown(c.s.Mid(c.n)); }},
    {"mid n", [](Call c) { return shown(c.s.Mid(c.n, c.m)); }},
    {"()", [](Call c) { return shown(c.s(c.n, c.m)); }},
    {"substr", [](Call c) { return shown(c.s.Substr(c.n, c.m)); }},
    {"substr of", [](Call c) { return shown(VStr("old").Substr(c.s, c.n, c.m)); }},
    {"including", [](Call c) { return shown(c.s.SpanIncluding(c.text())); }},
    {"excluding", [](Call c) { return shown(c.s.SpanExcluding(c.text())); }},
    {"cut", [](Call c) { return shown(c.s.Cutstr(c.n, c.m)); }},
    {"cut of", [](Call c) { return shown(VStr("old").Cutstr(c.s, c.n, c.m)); }},
    {"insert", [](Call c) { return shown(c.s.Insert(c.n, c.w)); }},
    {"insert of", [](Call c) { return shown(VStr("old").Insert(c.s, c.n, c.w)); }},
    {"insert itself", [](Call c) { return shown(c.s.Insert(c.s, c.n, c.s)); }},
    {"trim left", [](Call c) { return c.s.TrimLeft(), shown(c.s); }},
    {"trim right", [](Call c) { return c.s.TrimRight(), shown(c.s); }},
    {"trimmed length", [](Call c) { return to_string(c.s.ComputeTrimmedLength()); }},
    {"same when trimmed", [](Call c) { return to_string(c.s.IdenticalWhenTrimmed(c.w)); }},
    {"find", [](Call c) { return to_string(c.s.Find(c.text())); }},
    {"find char", [](Call c) { return to_string(c.s.Find(c.letter())); }},
    {"find last", [](Call c) { return to_string(c.s.ReverseFind(c.letter())); }},
    {"find one of", [](Call c) { return to_string(c.s.FindOneOf(c.text())); }},
    {"compare", [](Call c) { return sign(c.s.Compare(c.text())); }},
    {"compare no case", [](Call c) { return sign(c.s.CompareNoCase(c.text())); }},
};

// What `text` shows, in `s`.
void make(VStr& s, const string& text) {
    const std::size_t length = text.find('(');
    if (text == "(empty)")
        s.Copy("");
    else if (length == string::npos)
        s.Copy(text.c_str());
    else if (text != "(null)")
        s.Copy(text.substr(0, length).c_str(), std::stoi(text.substr(length + 1)));
}

TEST(StringOperations, GiveWhatTheTableSays) {
    for (Row& row : list("strings/operations.txt")) {
        SCOPED_TRACE(row["text"] + " " + row["operation"] + " " + row["with"]);
        VStr text;
        VStr with;
        make(text, row["text"]);
        make(with, row["with"]);
        const auto operation = kOperations.at(row["operation"]);
        EXPECT_EQ(operation({text, with, number(row, "n"), number(row, "m")}), row["gives"]);
    }
}

// Under a sanitizer this shows what no table thinks of: lengths and blocks of all sizes, one after
// the other.
TEST(StringOperations, InAnyOrderKeepTheirTextInsideItsLength) {
    std::mt19937 random{1};
    VStr s;
    for (int step = 0; step < 60000; ++step) {
        VStr with("ab, \tZ\xE9"[random() % 7],
                  static_cast<int>(random() % (step % 8 == 0 ? 200 : 12)));
        const int length = s.GetLength();
        const int n = static_cast<int>(random() % static_cast<unsigned>(length + 3)) - 1;
        const auto& [name, operation] = *std::next(
            kOperations.begin(), static_cast<std::ptrdiff_t>(random() % kOperations.size()));
        if (name == "copy from n" && (n < 0 || n > length)) continue;
        operation({s, with, n, static_cast<int>(random() % 12) - 1});
        ASSERT_LE(std::strlen(s), static_cast<std::size_t>(s.GetLength())) << name;
        if (s.GetLength() > 5000) s.Truncate(100);
    }
}

struct ArrayCall {
    VStrArray& a;
    const char* text;
    int i;
    int n;
};

const std::map<string, void (*)(ArrayCall)> kArrayOperations = {
    {"add", [](ArrayCall c) { EXPECT_EQ(c.a.Add(c.text), c.n); }},
    {"add n", [](ArrayCall c) { EXPECT_EQ(c.a.Add(c.text, c.n), c.i); }},
    {"add itself", [](ArrayCall c) { c.a.Add(c.a[c.i], c.n); }},
    {"insert", [](ArrayCall c) { c.a.InsertAt(c.i, c.text, c.n); }},
    {"insert itself", [](ArrayCall c) { c.a.InsertAt(c.i, c.a[c.i], c.n); }},
    {"remove", [](ArrayCall c) { c.a.RemoveAt(c.i, c.n); }},
    {"set", [](ArrayCall c) { c.a.SetAt(c.i, c.text); }},
    {"set n", [](ArrayCall c) { c.a.SetAt(c.i, c.text, c.n); }},
    {"set itself", [](ArrayCall c) { c.a.SetAt(c.i, c.a[0] + c.n); }},
    {"element", [](ArrayCall c) { c.a.ElementAt(c.i) = c.text; }},
    {"size", [](ArrayCall c) { c.a.SetSize(c.n); }},
    {"append itself", [](ArrayCall c) { EXPECT_EQ(c.a.Append(c.a), c.n); }},
    {"copy", [](ArrayCall c) { c.a = VStrArray(c.a); }},
    {"assign itself", [](ArrayCall c) { c.a = static_cast<const VStrArray&>(c.a); }},
};

TEST(ArrayOperations, GiveWhatTheTableSays) {
    for (Row& row : list("strings/arrays.txt")) {
        SCOPED_TRACE(row["array"] + " " + row["operation"] + " " + row["text"]);
        VStrArray array;
        for (const string& element : qel::test::split(row["array"], ','))
            array.Add(element == "(null)" ? nullptr : element.c_str());
        const char* const text = row["text"] == "(null)" ? nullptr : row["text"].c_str();
        kArrayOperations.at(row["operation"])({array, text, number(row, "i"), number(row, "n")});
        EXPECT_EQ(shownAll(array), row["gives"]);
    }
}

}  // namespace
