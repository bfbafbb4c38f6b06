// How every command writes its facts with --json: one document, members in the order in which they
// were set, two blanks of indentation, a line end. One thread.
#ifndef QELUTIL_BASE_JSON_H
#define QELUTIL_BASE_JSON_H

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace qel::cli {

using Json = nlohmann::ordered_json;

// A text value: the text itself when it is UTF-8, else with each stray byte written as \xNN (and
// nothing else escaped), for JSON holds no other bytes.
[[nodiscard]] std::string jsonText(std::string_view text);

void writeJson(std::ostream& out, const Json& document);

// An array that may be too long to hold, written element by element as writeJson would write it.
class JsonArrayWriter {
  public:
    explicit JsonArrayWriter(std::ostream& out) : out_(out) {}
    void add(const Json& element);
    // To be called once, at the end; without an element before it, the array is empty.
    void finish();

  private:
    std::ostream& out_;
    bool begun_ = false;
};

}  // namespace qel::cli

#endif
