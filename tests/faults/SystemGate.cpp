// The system's calls about files under their own names, so that this program's go through the gate
// of AllocationGate.h. None of their headers is included: what those declare may be a macro or an
// inline function.
#include <dlfcn.h>

#include <cstddef>
#include <type_traits>

#include "faults/AllocationGate.h"

namespace {

using qel::test::Fault;
using qel::test::refuses;

// The system's own function of a name, with what it is called with.
template <typename Result, typename... Arguments>
Result own(const char* name, Arguments... arguments) {
    using Function = Result (*)(Arguments...);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))(arguments...);
}

template <typename Result, typename... Arguments>
Result gated(const char* name, Arguments... arguments) {
    if (!refuses(Fault::kCalls)) return own<Result>(name, arguments...);
    if constexpr (std::is_pointer_v<Result>)
        return nullptr;
    else
        return -1;
}

// One that waits, and may be interrupted then.
template <typename Result, typename... Arguments>
Result waiting(const char* name, Arguments... arguments) {
    return refuses(Fault::kInterrupted) ? -1 : gated<Result>(name, arguments...);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, unsigned mode) {
    return gated<int>("open", path, flags, mode);
}
int mkostemp(char* name, int flags) {
    return gated<int>("mkostemp", name, flags);
}
void* fdopen(int file, const char* mode) {
    return gated<void*>("fdopen", file, mode);
}
// The file is closed all the same.
int close(int file) {
    const int result = own<int>("close", file);
    return refuses(Fault::kCalls) ? -1 : result;
}
int fstat(int file, void* status) {
    return gated<int>("fstat", file, status);
}
int stat(const char* path, void* status) {
    return gated<int>("stat", path, status);
}
int lstat(const char* path, void* status) {
    return gated<int>("lstat", path, status);
}
long read(int file, void* data, std::size_t size) {
    return waiting<long>("read", file, data, size);
}
long pread(int file, void* data, std::size_t size, long at) {
    return gated<long>("pread", file, data, size, at);
}
long write(int file, const void* data, std::size_t size) {
    return waiting<long>("write", file, data, size);
}
int flock(int file, int how) {
    return waiting<int>("flock", file, how);
}
int mkdir(const char* path, unsigned mode) {
    return gated<int>("mkdir", path, mode);
}
int rename(const char* from, const char* to) {
    return gated<int>("rename", from, to);
}
char* getcwd(char* path, std::size_t room) {
    return gated<char*>("getcwd", path, room);
}
char* realpath(const char* path, char* resolved) {
    return gated<char*>("realpath", path, resolved);
}
long readlink(const char* path, char* out, std::size_t room) {
    return gated<long>("readlink", path, out, room);
}
}
