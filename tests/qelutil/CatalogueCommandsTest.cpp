// qelutil field, status and stream: what the connector's numbers and streams mean.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using namespace std::string_literals;
using Json = nlohmann::ordered_json;

class CatalogueCommandsTest : public QelutilTest {};

TEST_F(CatalogueCommandsTest, FieldsByNumberAndByName) {
    const Json fields = runJson(
        {"field", "--json", "0x11000000", "34000007", "--type", "contact", "phone_home_fax"});
    ASSERT_EQ(fields.size(), 3U);
    EXPECT_EQ(fields[0]["name"], "SUMMARY");
    EXPECT_EQ(fields[0]["max_length"], 4001);
    EXPECT_EQ(fields[1]["name"], "Adr_Work_1_PO");
    EXPECT_EQ(fields[1]["property_id"], "0x32000000");
    EXPECT_EQ(fields[1]["components"], 7);
    EXPECT_EQ(fields[2]["id"], "0x3300002A");
    EXPECT_EQ(fields[2]["selector"], "0x10006");
    EXPECT_EQ(runJson({"field", "--json", "uid"}).size(), 2U);

    // Every row of the list is found again by its own number.
    const Json all = runJson({"field", "--list", "--json"});
    EXPECT_EQ(all.size(), 312U);
    std::vector<std::string> words = {"field", "--json"};
    for (const Json& field : all) words.push_back(field["id"]);
    EXPECT_EQ(runJson(words), all);

    const ProcessResult some = run({"field", "0x42000000", "0x61000000", "0x15000000", "0x11000026",
                                    "NoSuchField", "0x31000000"});
    EXPECT_EQ(some.exitCode, 1);
    EXPECT_EQ(some.out.find("0x31000000  contact  property  N "), 0U) << some.out;
    for (const char* says :
         {"0x42000000 names no field: there are none", "no record type 6", "no access type 5",
          "indexes 0 to 37, and not 38", "no field is named \"NoSuchField\""})
        EXPECT_TRUE(contains(some.err, says));
    for (const std::vector<std::string>& usage : {std::vector<std::string>{"field"},
                                                  {"field", "--list", "UID"},
                                                  {"field", "--list", "--type", "fax"}})
        EXPECT_EQ(run(usage).exitCode, 2);
}

TEST_F(CatalogueCommandsTest, StatusesAndOperationsBothWays) {
    const Json found = runJson({"status", "--json", "23", "uidnotfound", "Status=Busy", "<add>",
                                "MODIFY_STATUS", "20013"});
    const char* const kExpected[] = {
        "ClientInstanceExists",      "UIDNotFound", "Busy", "ADD", "MODIFY_STATUS",
        "RECOVER_CLIENT_INSTANCE_ID"};
    ASSERT_EQ(found.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(found[i]["name"], kExpected[i]);
    EXPECT_EQ(found[3]["code"], 20000);
    EXPECT_EQ(found[4]["kind"], "reply");
    EXPECT_EQ(runJson({"status", "--list", "--json"}).size(), 43U + 12U + 13U);
    for (const char* none : {"43", "20004", "-1x", "", "<ADD >", "99999999999999999999"}) {
        const ProcessResult result = run({"status", "--", none, "0"});
        EXPECT_EQ(result.exitCode, 1) << none;
        EXPECT_EQ(result.out, "0      Status=EOK\n") << none;
    }
    EXPECT_EQ(run({"status"}).exitCode, 2);
}

TEST_F(CatalogueCommandsTest, StreamsValueByValue) {
    const ProcessResult plain = runWithInput({"stream"},
                                             "1a\x1f\x1f-\x1f"s
                                             "ab\x1f"s);
    EXPECT_EQ(plain.out,
              "1 @0          \"1a\"  26\n"
              "2 @3          \"\"  0\n"
              "3 @4          \"-\"  -1\n"
              "4 @6          \"ab\"  171\n"
              "5 @9          \"\"  0\n");
    const Json typed =
        runJson({"stream", "--json", "--types", "int,text,texts,stream,binary,ints,int64"},
                "fffffffe\x1fzz\x1f"s
                "2\x1f"s
                "a\x1f"s
                "b\x1f"s
                "3\x1fq\x1fr\x1f"s
                "4\x1f\xFF"s
                "A\xFE"s
                "1f\xFE"s
                "fe\x1f"s
                "1\x1f-\x1f"s
                "ffffffff00000000"s);
    ASSERT_EQ(typed.size(), 7U);
    EXPECT_EQ(typed[0]["content"], -2);
    EXPECT_EQ(typed[2]["content"], (Json{"a", "b"}));
    EXPECT_EQ(typed[3]["content"], (Json{"q", "r"}));
    EXPECT_EQ(typed[4]["content"], "00411ffe");
    EXPECT_EQ(typed[5]["content"], Json::array({-1}));
    EXPECT_EQ(typed[6]["content"], -4294967296LL);
    EXPECT_EQ(runJson({"stream", "--json"}).size(), 0U);

    // More than is read at once, with a value longer than that within, up to a NUL byte.
    std::string large;
    for (int i = 0; i < 100'000; ++i) large += "1a2b\x1fhello\x1f";
    const std::size_t longAt = large.size();
    large += std::string(1'000'000, 'x') + "\x1f";
    const std::size_t end = large.size();
    const ProcessResult cut = runWithInput({"stream", "--json"}, large + "\0more"s);
    EXPECT_TRUE(contains(cut.err, "at offset " + std::to_string(end) + "; 4 bytes"));
    const Json values = Json::parse(cut.out);
    ASSERT_EQ(values.size(), 200'002U);
    EXPECT_EQ(
        values[199'999],
        (Json{{"value", 200'000}, {"offset", longAt - 6}, {"text", "hello"}, {"number", nullptr}}));
    EXPECT_EQ(values[200'000]["text"].get<std::string>().size(), 1'000'000U);
    EXPECT_EQ(values[200'001],
              (Json{{"value", 200'002}, {"offset", end}, {"text", ""}, {"number", 0}}));

    const struct {
        std::vector<std::string> types;
        std::string input;
        const char* says;
    } kBad[] = {
        {{"int", "int"}, "1\x1fzz", "value 2 at offset 2 as int: it is no number"},
        {{"texts"},
         "7fffffff\x1f"s
         "ab",
         "the stream ends before it (code 2023)"},
        {{"stream"},
         "-\x1f"s
         "ab",
         "code 2023"},
        {{"binary"},
         "4\x1f\xFE"s
         "1",
         "malformed escape"},
        {{"binary"},
         "4\x1f"s
         "abc",
         "not as many bytes as announced"},
        {{"int", "int"}, "1", "holds 1 values, and 2 types"},
        {{"text"}, "a\0bc"s, "a NUL byte ends the stream at offset 1; 2 bytes"},
    };
    for (const auto& [types, input, says] : kBad) {
        std::vector<std::string> words = {"stream"};
        for (const std::string& type : types) words.insert(words.end(), {"--types", type});
        fails(1, words, says, input);
    }
    EXPECT_EQ(run({"stream", "--types", "float", "-t", "a"}).exitCode, 2);
}

}  // namespace
