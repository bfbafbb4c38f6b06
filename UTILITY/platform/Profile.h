// INI files: "[section]" lines and "key=value" lines. Names are compared without regard to case,
// blanks around names and values do not count, and one pair of quotes around a value is dropped.
// Callable from any thread.
#ifndef QEL_PLATFORM_PROFILE_H
#define QEL_PLATFORM_PROFILE_H

#include <cstddef>

namespace qel::platform {

// The value, cut at room - 1 bytes; an empty text when it is missing or the file cannot be read.
void readProfile(const char* path, const char* section, const char* key, char* out,
                 std::size_t room) noexcept;
// Sets one value and keeps every other line; with kIfMissing a value that is there and not empty
// stays, and that counts as written. Threads and processes that write one file at the same time
// take turns, looking for the value included. False, with the file as it was, when it cannot be
// written, when others had it for 200 ms, or (elsewhere than on Windows) when the line would not
// read back as it was given.
enum class ProfileWrite { kAlways, kIfMissing };
bool writeProfile(const char* path, const char* section, const char* key, const char* value,
                  ProfileWrite when = ProfileWrite::kAlways) noexcept;

}  // namespace qel::platform

#endif
