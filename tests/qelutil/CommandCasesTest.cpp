// What single calls of the program print and say: tables of them, one driver.
#include "Qelutil.h"
#include "support/Tables.h"

namespace qel::test {
namespace {

using Json = nlohmann::ordered_json;

// The words of a command line, those with blanks in them between '...'.
std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    bool inWord = false;
    bool quoted = false;
    for (const char c : line) {
        if (c == '\'') {
            quoted = !quoted;
        } else if (c == ' ' && !quoted) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        if (c != '\'') words.back() += c;
    }
    return words;
}

// "/fields/0/name" of a document; with " size" after it, the number of values there.
std::string valueOf(const Json& document, const std::string& pointer) {
    const Json::json_pointer place(pointer.substr(0, pointer.find(' ')));
    if (!document.contains(place)) return "nothing there";
    const Json& value = document[place];
    if (pointer.ends_with(" size")) return std::to_string(value.size());
    return value.is_string() ? value.get<std::string>() : value.dump();
}

class CommandCases : public QelutilTest {
  protected:
    void runCase(Row& row) const {
        const ProcessResult result = runWithInput(wordsOf(row["run"]), row["in"]);
        const int exitCode = number(row, "exit");
        EXPECT_EQ(result.exitCode, exitCode) << result.err;
        const auto document = Json::parse(result.out, nullptr, false);
        bool says = false;
        for (const auto& [field, value] : row) {
            if (value.empty()) continue;
            if (field.starts_with("says")) {
                EXPECT_TRUE(contains(result.err, value));
                says = true;
            } else if (field.starts_with("prints")) {
                EXPECT_TRUE(contains(result.out, value));
            } else if (field.starts_with("json ")) {
                ASSERT_FALSE(document.is_discarded()) << result.out;
                EXPECT_EQ(valueOf(document, field.substr(5)), value) << field;
            } else if (field == "out" || field == "bytes") {
                EXPECT_EQ(result.out, field == "out" ? value + "\n" : value);
            }
        }
        EXPECT_TRUE(exitCode != 0 || says || result.err.empty()) << result.err;
        if (exitCode == 2) {
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(result.err.find("qelutil: "), 0U) << result.err;
        }
    }
};

TEST_F(CommandCases, AreAsTheirTablesSay) {
    for (Row& row : cases("qelutil/commands.txt")) {
        SCOPED_TRACE(row["case"]);
        runCase(row);
    }
    for (const char* file : {"dates", "zone-times", "bad-codes", "refused"}) {
        for (Row& row : list("qelutil/" + std::string(file) + ".txt")) {
            SCOPED_TRACE(row["run"]);
            runCase(row);
        }
    }
}

// What is printed is read again: each field by its number, each time of this zone by the other way.
TEST_F(CommandCases, WhatIsPrintedIsReadAgain) {
    const Json all = runJson({"field", "--list", "--json"});
    EXPECT_EQ(all["fields"].size(), 312U);
    std::vector<std::string> words = {"field", "--json"};
    for (const Json& field : all["fields"]) words.push_back(field["id"]);
    EXPECT_EQ(runJson(words), all);
    const Json moved =
        runJson({"zone", "convert", "20050115T120000", "20050715T120000", "--json"})["times"];
    for (const auto& there : moved) {
        const auto back = runJson({"zone", "convert", there["output"], "--json"});
        EXPECT_EQ(back["times"][0]["output"], there["input"]);
    }
    const std::string cipher = run({"encode", "cipher", "--text", "a secret of Zo\xC3\xAB"}).out;
    EXPECT_EQ(cipher.size(), 33U);
    EXPECT_EQ(runWithInput({"decode", "cipher"}, "\n " + cipher).out, "a secret of Zo\xC3\xAB\n");
}

}  // namespace
}  // namespace qel::test
