#include "platform/Console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace qel::cli::platform {

namespace {

int columnsOf(int stream) {
    winsize size{};
    return ::ioctl(stream, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace

void prepareStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
        // The lowest free number is `stream` itself. The wrong direction makes every use fail, as
        // it would on the closed stream; only messages may go nowhere.
        const int mode = stream == STDOUT_FILENO ? O_RDONLY : O_WRONLY;
        if (::open("/dev/null", mode) == -1) std::_Exit(1);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

std::vector<std::string> arguments(int argc, char** argv) {
    if (argc < 1) return {};
    return {argv + 1, argv + argc};
}

bool outputIsTerminal() {
    return ::isatty(STDOUT_FILENO) == 1;
}

bool errorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

int outputColumns() {
    return columnsOf(STDOUT_FILENO);
}

int errorColumns() {
    return columnsOf(STDERR_FILENO);
}

bool outputUnderstandsEscapes() {
    const char* terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::strcmp(terminal, "dumb") != 0;
}

bool errorUnderstandsEscapes() {
    return outputUnderstandsEscapes();
}

}  // namespace qel::cli::platform
