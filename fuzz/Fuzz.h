// What every fuzz target builds on. A target is one function over an input's bytes:
//
//   QEL_FUZZ_TARGET(decode_qp) { ... in.text() ... FUZZ_CHECK(length <= text.size()); }
//
// Compiled with QEL_FUZZ_ENGINE each target is a libFuzzer program of its own (`./dev fuzz`).
// Without it the targets of one program register themselves, and Replay.cpp runs each over its
// corpus: so every input that was ever found is a test on both platforms. One thread.
#ifndef QEL_FUZZ_FUZZ_H
#define QEL_FUZZ_FUZZ_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qel::fuzz {

// The input, taken from its front. What is no longer there reads as zero bytes.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    template <class T>
    T take() {
        static_assert(std::is_trivially_copyable_v<T>);
        T value;
        std::memset(static_cast<void*>(&value), 0, sizeof(value));
        const std::size_t length = std::min(sizeof(value), rest_.size());
        std::memcpy(static_cast<void*>(&value), rest_.data(), length);
        rest_.remove_prefix(length);
        return value;
    }
    // A number in [0, limit). REQUIRES: 0 < limit <= 256
    unsigned choose(unsigned limit) { return take<std::uint8_t>() % limit; }
    bool flag() { return choose(2) != 0; }

    // All that is left; a copy, so that the sanitizers see its end.
    std::string text() {
        std::string result(rest_);
        rest_ = {};
        return result;
    }
    // Up to the next line end, which is dropped.
    std::string line() {
        const std::size_t end = rest_.find('\n');
        std::string result(rest_.substr(0, end));
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        return result;
    }
    [[nodiscard]] bool empty() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

using Target = void (*)(Input&);

struct Registered {
    const char* name;
    Target run;
};
std::vector<Registered>& targets();

struct Registration {
    Registration(const char* name, Target run) { targets().push_back({name, run}); }
};

// Traces and errors of the library go nowhere: an input may cause thousands.
void silenceTrace();

[[noreturn]] inline void fail(const char* what, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: not true: %s\n", file, line, what);
    std::abort();
}

}  // namespace qel::fuzz

#define FUZZ_CHECK(condition)                                              \
    do {                                                                   \
        if (!(condition)) qel::fuzz::fail(#condition, __FILE__, __LINE__); \
    } while (false)

#ifdef QEL_FUZZ_ENGINE
#define QEL_FUZZ_TARGET(name)                                                           \
    static void name(qel::fuzz::Input& in);                                             \
    extern "C" int LLVMFuzzerInitialize(int*, char***) {                                \
        qel::fuzz::silenceTrace();                                                      \
        return 0;                                                                       \
    }                                                                                   \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) { \
        qel::fuzz::Input in(data, size);                                                \
        name(in);                                                                       \
        return 0;                                                                       \
    }                                                                                   \
    static void name(qel::fuzz::Input& in)
#else
#define QEL_FUZZ_TARGET(name)                                              \
    static void name(qel::fuzz::Input& in);                                \
    static const qel::fuzz::Registration registration_##name(#name, name); \
    static void name(qel::fuzz::Input& in)
#endif

#endif
