// JSON, written as it comes.
#ifndef QEL_WEB_ENGINE_JSON_H
#define QEL_WEB_ENGINE_JSON_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace qel::web {

class Json {
  public:
    explicit Json(std::string& out) : out_(out) {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    void key(std::string_view name);

    // Bytes that are not UTF-8 become U+FFFD.
    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text == nullptr ? "" : text)); }
    void value(std::int64_t number);
    // Text that is JSON already.
    void raw(std::string_view json);

    template <class Value>
    void field(std::string_view name, const Value& what) {
        key(name);
        if constexpr (std::is_integral_v<Value>)
            value(static_cast<std::int64_t>(what));
        else
            value(what);
    }

  private:
    void open(char bracket);
    void close(char bracket);
    void separate();
    void escape(char control);

    std::string& out_;
    bool first_ = true;
};

}  // namespace qel::web

#endif
