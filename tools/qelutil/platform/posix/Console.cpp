#include "platform/Console.h"

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

// POSIX leaves its declaration to the program; where the system has one too, it is the same.
extern "C" char** environ;

namespace qel::cli::platform {

namespace {

#if defined(TIOCGWINSZ) && !defined(QEL_PORTABLE_POSIX)
int columnsOf(int stream) {
    winsize size{};
    return ::ioctl(stream, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}
#else
int columnsOf(int /*stream*/) {
    return 0;
}
#endif

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

bool inputIsTerminal() {
    return ::isatty(STDIN_FILENO) == 1;
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

OutputDiversion::OutputDiversion() : kept_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
    std::fflush(stdout);
    if (kept_ >= 0) ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

OutputDiversion::~OutputDiversion() {
    if (kept_ < 0) return;
    std::fflush(stdout);
    ::dup2(kept_, STDOUT_FILENO);
    ::close(kept_);
}

bool ownsItsWindow() {
    return false;
}

bool showFile(const std::filesystem::path& file) {
    // What the desktop's program prints is not this program's output.
    posix_spawn_file_actions_t actions;
    if (::posix_spawn_file_actions_init(&actions) != 0) return false;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    std::string opener = "xdg-open";
    std::string name = std::filesystem::absolute(file);
    char* const words[] = {opener.data(), name.data(), nullptr};
    pid_t child = 0;
    const int failure = ::posix_spawnp(&child, opener.c_str(), &actions, nullptr, words, environ);
    ::posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    return failure == 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

int firstWeekday() {
    int first = 1;
#if defined(_NL_TIME_FIRST_WEEKDAY) && !defined(QEL_PORTABLE_POSIX)
    const locale_t locale = ::newlocale(LC_TIME_MASK, "", nullptr);
    if (locale == nullptr) return first;
    // A day counted from another one, which the locale gives as a date.
    const char* offset = ::nl_langinfo_l(_NL_TIME_FIRST_WEEKDAY, locale);
    // The date is a number in the first bytes of what is a pointer elsewhere.
    const char* const date = ::nl_langinfo_l(_NL_TIME_WEEK_1STDAY, locale);
    std::uint32_t origin = 0;
    std::memcpy(&origin, &date, sizeof origin);
    constexpr std::uint32_t kMonday = 19971201;
    first = (offset[0] - 1 + (origin == kMonday ? 1 : 0)) % 7 + 1;
    ::freelocale(locale);
#endif
    return first;
}

const char* endOfInputKeys() {
    return "Ctrl-D";
}

}  // namespace qel::cli::platform
