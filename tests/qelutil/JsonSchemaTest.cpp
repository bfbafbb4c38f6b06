// What every command prints with --json is what docs/json/qelutil.schema.json says.
#include <algorithm>
#include <filesystem>

#include "Qelutil.h"

namespace qel::test {
namespace {

using Json = nlohmann::ordered_json;

bool isOfType(const Json& value, const std::string& type) {
    if (type == "object") return value.is_object();
    if (type == "array") return value.is_array();
    if (type == "string") return value.is_string();
    if (type == "integer") return value.is_number_integer();
    if (type == "boolean") return value.is_boolean();
    return type == "null" && value.is_null();
}

// As much of JSON Schema as the document uses. Gives the first fault, "" when there is none.
class Schema {
  public:
    explicit Schema(Json root) : root_(std::move(root)) {}

    [[nodiscard]] std::string faultOf(const std::string& name, const Json& value) const {
        return fault(root_.at("$defs").at(name), value, name);
    }

  private:
    [[nodiscard]] std::string fault(const Json& schema, const Json& value,
                                    const std::string& where) const {
        if (schema.contains("$ref")) {
            const auto target = schema["$ref"].get<std::string>().substr(1);
            return fault(root_.at(Json::json_pointer(target)), value, where);
        }
        if (schema.contains("enum")) {
            const auto& all = schema["enum"];
            return std::find(all.begin(), all.end(), value) != all.end() ? "" : where + ": value";
        }
        const Json types = schema["type"].is_array() ? schema["type"] : Json{schema["type"]};
        if (std::none_of(types.begin(), types.end(),
                         [&](const Json& type) { return isOfType(value, type); }))
            return where + ": type";
        if (value.is_array() && schema.contains("items"))
            for (const Json& each : value)
                if (std::string text = fault(schema["items"], each, where + "[]"); !text.empty())
                    return text;
        if (!value.is_object() || !schema.contains("properties")) return "";
        for (const Json& name : schema.value("required", Json::array()))
            if (!value.contains(name.get<std::string>()))
                return where + ": lacks " + name.get<std::string>();
        for (const auto& [name, each] : value.items()) {
            if (!schema["properties"].contains(name)) return where + ": has " + name;
            std::string text = fault(schema["properties"][name], each, where + "." + name);
            if (!text.empty()) return text;
        }
        return "";
    }

    Json root_;
};

TEST_F(QelutilTest, JsonIsAsItsSchemaSays) {
    const Schema schema(
        Json::parse(readFile(QEL_TEST_SOURCE_DIR "/docs/json/qelutil.schema.json")));
    const std::string calendar =
        "BEGIN:VCALENDAR\nVERSION:1.0\nBEGIN:VEVENT\nDTSTART:20050101\nRNUM:2\nSTATUS:SENT\n"
        "SEQUENC:1\nRRULE:D1 #3\nEND:VEVENT\nEND:VCALENDAR\n";
    std::filesystem::create_directory(state_.path() / "folder");
    writeFile(state_.file("folder/a.vcs"), calendar);
    writeFile(state_.file("folder/b.vcf"), "BEGIN:VCARD\n");
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::string input;
    } kCases[] = {
        {"convert", {"convert", "-n", "--json"}, calendar},
        {"convert", {"convert", "-v", "--json", "-o", state_.file("a.ics")}, calendar},
        {"convert", {"convert", "-n", "--json", state_.file("folder")}, ""},
        {"rule", {"rule", "W2 MO #3", "--start", "20050613", "--json"}, ""},
        {"rule", {"rule", "FREQ=DAILY;BYHOUR=9,11", "--start", "20050613", "--json"}, ""},
        {"expand",
         {"expand", "D1 #9", "--start", "20050613", "--exclude", "20050614", "--json"},
         ""},
        {"date", {"date", "20050615T083000Z", "20050615", "PT5M", "--json"}, ""},
        {"zone list", {"zone", "list", "--json"}, ""},
        {"zone convert", {"zone", "convert", "20050615T083000Z", "--to", "berlin", "--json"}, ""},
        {"zone changes", {"zone", "changes", "berlin", "--year", "2005", "--json"}, ""},
        {"charset", {"charset", "--list", "--json"}, ""},
        {"field", {"field", "--list", "--json"}, ""},
        {"status", {"status", "--list", "--json"}, ""},
        {"stream", {"stream", "--json", "--types", "int"}, "1a\x1fsome\x1f-"},
        {"log", {"log", "--json"}, ""},
    };
    for (const auto& [name, arguments, input] : kCases) {
        const Json document = runJson(arguments, input);
        EXPECT_EQ(schema.faultOf(name, document), "") << document.dump(2);
    }
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
    // What the schema does not say is a fault, so that the test can fail.
    EXPECT_NE(schema.faultOf("zone list", Json::parse(R"([{"number": "1"}])")), "");
}

}  // namespace
}  // namespace qel::test
