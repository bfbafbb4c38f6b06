// Trace logs of other computers, as `qelutil log FILE...` shows them. One thread.
#ifndef QELUTIL_COMMANDS_LOGFILES_H
#define QELUTIL_COMMANDS_LOGFILES_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/Command.h"

namespace qel::cli {

struct LogFilesOptions {
    std::vector<std::string> files;
    bool errors = false;
    std::string thread;
    std::string since;
    std::string through;
    std::string search;
    std::optional<std::size_t> tail;
    bool summary = false;
    bool follow = false;
    bool json = false;
};

// The names of the options that --set takes.
[[nodiscard]] std::vector<std::string> traceOptionKeys();

// Throws UsageError and InputError.
void showLogFiles(Context& context, const LogFilesOptions& options);

}  // namespace qel::cli

#endif
