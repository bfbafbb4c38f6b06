// An input that can be read once only (standard input, a pipe), kept so that it can be read again:
// a temporary file that has no name, or is removed by the system, holds it. One thread.
#ifndef QELUTIL_BASE_SPOOL_H
#define QELUTIL_BASE_SPOOL_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "base/Files.h"

namespace qel::cli {

class Spool {
  public:
    // Reads the head of `input`, which must outlive the spool. Throws InputError as it does.
    explicit Spool(InputFile& input);

    // The first bytes of the input, at most 64 KB; all of it when it is shorter.
    [[nodiscard]] std::string_view head() const { return head_; }

    // Keeps all of the input. False when there is no room for it: it can still be read once, as
    // before. Throws InputError when the input fails.
    [[nodiscard]] bool keepAll();

    // The next bytes, from the beginning, kept or not; 0 at the end.
    // Throws InputError when a medium fails.
    [[nodiscard]] std::size_t read(char* bytes, std::size_t room);
    // The next read() begins at the beginning. REQUIRES: nothing read yet, or keepAll() was true.
    void rewind();

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    InputFile& input_;
    // In this order the input is: the head, what the file holds, the rest of a piece that the file
    // had no room for, what is still to come.
    std::string head_;
    std::unique_ptr<std::FILE, Close> file_;
    std::uint64_t inFile_ = 0;
    std::string rest_;
    std::uint64_t at_ = 0;
};

}  // namespace qel::cli

#endif
