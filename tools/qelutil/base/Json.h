// How every command writes its facts with --json: one document as docs/json/qelutil.schema.json
// describes it, members in the order in which they were set, two blanks of indentation, a line end.
// One thread.
#ifndef QELUTIL_BASE_JSON_H
#define QELUTIL_BASE_JSON_H

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace qel::cli {

using Json = nlohmann::ordered_json;

// A text value: the text itself when it is UTF-8, else with each stray byte written as \xNN (and
// nothing else escaped), for JSON holds no other bytes.
[[nodiscard]] std::string jsonText(std::string_view text);

// The version of the documents, their first member: it grows when a member is removed or gets
// another meaning.
inline constexpr int kJsonFormat = 1;

// The document of a command ("zone list") with these members.
void writeJson(std::ostream& out, std::string_view command, const Json& members);

// A document with one member, an array that may be too long to hold: it is written element by
// element.
class JsonArrayWriter {
  public:
    JsonArrayWriter(std::ostream& out, std::string command, std::string member)
        : out_(out), command_(std::move(command)), member_(std::move(member)) {}
    void add(const Json& element);
    // To be called once, at the end; without an element before it, the array is empty.
    void finish();

  private:
    void begin();

    std::ostream& out_;
    std::string command_;
    std::string member_;
    bool begun_ = false;
};

}  // namespace qel::cli

#endif
