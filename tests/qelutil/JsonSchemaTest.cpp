// What every command prints with --json is what docs/json/qelutil.schema.json says.
#include <filesystem>

#include "Qelutil.h"

namespace qel::test {
namespace {

using Json = nlohmann::ordered_json;

#ifndef _WIN32
// Reads a schema and a list of documents; prints those that do not follow it.
constexpr char kValidate[] = R"(
import json, sys, jsonschema
schema, documents = json.load(sys.stdin)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for document in documents:
    for error in validator.iter_errors(document):
        best = jsonschema.exceptions.best_match([error])
        print(document.get("command"), list(best.absolute_path), best.message)
)";
#endif

TEST_F(QelutilTest, JsonIsAsItsSchemaSays) {
    const std::string calendar =
        "BEGIN:VCALENDAR\nVERSION:1.0\nBEGIN:VEVENT\nDTSTART:20050101\nRNUM:2\nSTATUS:SENT\n"
        "SEQUENC:1\nRRULE:D1 #3\nEND:VEVENT\nEND:VCALENDAR\n";
    std::filesystem::create_directory(state_.path() / "folder");
    writeFile(state_.file("folder/a.vcs"), calendar);
    writeFile(state_.file("folder/b.vcf"), "BEGIN:VCARD\n");
    writeFile(state_.file("other.log"),
              "[3B96] 11/22 06:09:00.481 004: 11/22 06:09:00.481 003: Error a.b.2005 at M line 18\n"
              "[3B96] 11/22 08:09:00.481 000: done\nof old\n");
    const struct {
        std::vector<std::string> arguments;
        std::string input;
    } kCases[] = {
        {{"convert", "-n", "--json"}, calendar},
        {{"convert", "-v", "--json", "-o", state_.file("a.ics")}, calendar},
        {{"convert", "-n", "--json", state_.file("folder")}, ""},
        {{"show", "--json"}, calendar},
        {{"show", "--json", "--next", "1", "--since", "20050101"}, calendar},
        {{"rule", "W2 MO #3", "--start", "20050613", "--json"}, ""},
        {{"rule", "FREQ=DAILY;BYHOUR=9,11", "--start", "20050613", "--json"}, ""},
        {{"expand", "D1 #9", "--start", "20050613", "--exclude", "20050614", "--json"}, ""},
        {{"date", "20050615T083000Z", "20050615", "PT5M", "--json"}, ""},
        {{"zone", "list", "--json"}, ""},
        {{"zone", "show", "Europe/Berlin", "--json"}, ""},
        {{"zone", "convert", "20050615T083000Z", "--to", "berlin", "--json"}, ""},
        {{"zone", "changes", "berlin", "--year", "2005", "--json"}, ""},
        {{"charset", "--list", "--json"}, ""},
        {{"field", "--list", "--json"}, ""},
        {{"status", "--list", "--json"}, ""},
        {{"stream", "--json", "--types", "int"}, "1a\x1fsome\x1f-"},
        {{"log", "--json"}, ""},
        {{"log", "--json", state_.file("other.log")}, ""},
        {{"log", "--json", "--summary", state_.file("other.log")}, ""},
    };
    Json documents = Json::array();
    for (const auto& [arguments, input] : kCases) documents.push_back(runJson(arguments, input));
#ifndef _WIN32
    const auto validate = [this](const Json& all) {
        ProcessOptions options;
        const Json schema = Json::parse(run({"schema"}).out);
        options.input = Json::array({schema, all}).dump();
        const ProcessResult result = runProcess("/usr/bin/python3", {"-c", kValidate}, options);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result.out;
    };
    EXPECT_EQ(validate(documents), "");
    // What the schema does not say is a fault, and so is a document of no command.
    documents[1]["files"][0]["more"] = 1;
    EXPECT_TRUE(contains(validate(documents), "convert "));
    EXPECT_NE(validate(Json::array({Json::object()})), "");
#endif
    // The facts of one message agree with each other and with the sum.
    const Json file = runJson({"convert", "-n", "--json"}, calendar)["files"][0];
    ASSERT_FALSE(file["messages"].empty());
    std::size_t lost = 0;
    for (const Json& message : file["messages"]) {
        EXPECT_GE(message["code"], 100) << message;
        EXPECT_NE(message["name"], "") << message;
        EXPECT_EQ(message["notCarriedOver"], message["fate"] == "lost") << message;
        if (message["notCarriedOver"]) ++lost;
    }
    EXPECT_EQ(file["notCarriedOver"], lost);
}

}  // namespace
}  // namespace qel::test
