#include "Fuzz.h"

namespace qel::fuzz {

std::vector<Registered>& targets() {
    static std::vector<Registered> all;
    return all;
}

void silenceTrace() {
    // A folder that nobody can make: the log counts as not writable, decided once.
#ifndef QEL_FUZZ_ENGINE
    return;  // the replay's traces go where those of the tests go
#else
    ::setenv("BX_ERR_LOG_FILE_PATH", "/proc/self/none/fuzz.log", 1);
    ::setenv("BX_OPTIONS_FILE_PATH", "/proc/self/none/fuzz.opt", 1);
#endif
}

}  // namespace qel::fuzz
