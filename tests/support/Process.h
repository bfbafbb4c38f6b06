// Runs another program to its end and keeps what it wrote. Standard input comes from, and both
// outputs go to, files of the call's own, so that neither side ever waits for a full pipe. Any
// thread.
#ifndef QEL_TESTS_SUPPORT_PROCESS_H
#define QEL_TESTS_SUPPORT_PROCESS_H

#include <map>
#include <string>
#include <vector>

namespace qel::test {

struct ProcessResult {
    int exitCode = -1;  // 128 + the signal's number when a signal ended the program
    std::string out;
    std::string err;
};

struct ProcessOptions {
    std::string input;                               // what standard input holds
    std::map<std::string, std::string> environment;  // set beside what this process has
    std::string outputTo;                            // standard output goes to this file instead
    bool closeOutput = false;                        // the program starts without standard output
    std::string directory;                           // where it starts; empty: here
};

// `arguments` without the program's name, UTF-8. Throws std::runtime_error when the program cannot
// be started.
[[nodiscard]] ProcessResult runProcess(const std::string& program,
                                       const std::vector<std::string>& arguments,
                                       const ProcessOptions& options = {});

}  // namespace qel::test

#endif
