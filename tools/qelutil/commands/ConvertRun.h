// One run of `qelutil convert`: reads the files, writes the results, shows what became of them.
// Belongs to one thread; others convert files before their turn, each for itself, and all that is
// seen of a file happens in its turn.
#ifndef QELUTIL_COMMANDS_CONVERTRUN_H
#define QELUTIL_COMMANDS_CONVERTRUN_H

#include <string>
#include <vector>

#include "base/Command.h"

namespace qel::cli {

struct ConvertOptions {
    std::vector<std::string> files;
    std::string to;
    std::string output = "-";
    std::string outputDir;
    std::string report;
    std::string zone;
    std::string charset;
    std::string countMeans;
    std::string only;
    bool distinctUids = false;
    unsigned threads = 1;
    unsigned fileThreads = 1;  // of them, those that work on one file
    std::size_t split = 0;     // bytes of one result at most; 0: all in one
    bool beside = false;
    bool open = false;
    bool overwrite = false;
    bool strict = false;
    bool dryRun = false;
    bool json = false;
    bool verbose = false;
};

// Throws UsageError for options that do not go together and InputError when nothing can be done.
void runConvert(Context& context, ConvertOptions options);

}  // namespace qel::cli

#endif
