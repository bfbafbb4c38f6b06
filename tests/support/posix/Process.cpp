#include "support/Process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "support/TempDir.h"

namespace qel::test {

namespace {

// Only calls that are safe between fork and exec. Never returns.
[[noreturn]] void become(char* const* words, const char* in, const char* out, const char* err,
                         const ProcessOptions& options) {
    const int input = ::open(in, O_RDONLY);
    const int output = ::open(out, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int error = ::open(err, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (input < 0 || output < 0 || error < 0) ::_exit(126);
    if (::dup2(input, 0) < 0 || ::dup2(output, 1) < 0 || ::dup2(error, 2) < 0) ::_exit(126);
    ::close(input);
    ::close(output);
    ::close(error);
    if (options.closeOutput) ::close(1);
    if (!options.directory.empty() && ::chdir(options.directory.c_str()) != 0) ::_exit(126);
    ::execvp(words[0], words);
    ::_exit(127);
}

// The command that runs programs of the machine that this is built for; empty where it runs them.
std::vector<std::string> emulator() {
    std::istringstream words(QEL_TEST_EMULATOR);
    return {std::istream_iterator<std::string>(words), {}};
}

}  // namespace

ProcessResult runProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options) {
    const TempDir files;
    const std::string in = files.file("in");
    const std::string out = options.outputTo.empty() ? files.file("out") : options.outputTo;
    const std::string err = files.file("err");
    writeFile(in, options.input);
    std::vector<std::string> texts = emulator();
    texts.push_back(program);
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> words;
    for (std::string& text : texts) words.push_back(text.data());
    words.push_back(nullptr);

    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("cannot fork");
    if (child == 0) {
        for (const auto& [name, value] : options.environment)
            ::setenv(name.c_str(), value.c_str(), 1);
        become(words.data(), in.c_str(), out.c_str(), err.c_str(), options);
    }
    int status = 0;
    if (::waitpid(child, &status, 0) != child) throw std::runtime_error("cannot wait");
    ProcessResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (result.exitCode == 126 || result.exitCode == 127)
        throw std::runtime_error("cannot start " + program);
    if (options.outputTo.empty()) result.out = readFile(out);
    result.err = readFile(err);
    return result;
}

}  // namespace qel::test
