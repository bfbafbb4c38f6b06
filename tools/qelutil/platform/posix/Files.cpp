#include "platform/Files.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include "platform/RandomName.h"

namespace qel::cli::platform {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(int number) {
    throw std::system_error(number, std::generic_category());
}

// The names of files that are not finished. Each is owned by its slot, so that it can be read
// whenever a signal comes.
constexpr std::size_t kSlots = 256;
std::array<std::atomic<const char*>, kSlots> unfinished;
static_assert(std::atomic<const char*>::is_always_lock_free);
// Threads that change the list, or are about to. Nobody begins to when the program is ending.
std::atomic<int> changing{0};
std::atomic<bool> ending{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// REQUIRES: this thread does not change the list.
void removeUnfinished() {
    ending = true;
    while (changing != 0) ::sched_yield();
    for (std::atomic<const char*>& each : unfinished)
        if (const char* const path = each.exchange(nullptr)) ::unlink(path);
}

void endBySignal(int number) {
    removeUnfinished();
    // Whoever waits for the program sees which signal ended it. It comes when this has returned.
    std::signal(number, SIG_DFL);
    ::raise(number);
}

// Signals that end a program and that it can see.
constexpr int kEnds[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU};

// Keeps them waiting, so that a file and its place in the list come and go together: a signal that
// comes to this thread, and the end of the program in another one.
class SignalsWait {
  public:
    SignalsWait() {
        sigset_t ends;
        ::sigemptyset(&ends);
        for (const int each : kEnds) ::sigaddset(&ends, each);
        ::pthread_sigmask(SIG_BLOCK, &ends, &before_);
        ++changing;
        if (!ending) return;
        --changing;
        for (;;) ::pause();
    }
    ~SignalsWait() {
        --changing;
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;

  private:
    sigset_t before_{};
};

void watchSignals() {
    static std::once_flag watched;
    std::call_once(watched, [] {
        for (const int each : kEnds) {
            struct sigaction action {};
            // What the caller had the program ignore (nohup, a job in the background) stays
            // ignored.
            if (::sigaction(each, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
            action.sa_handler = endBySignal;
            ::sigaction(each, &action, nullptr);
        }
    });
}

std::size_t enlist(const char* path) {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
        const char* none = nullptr;
        if (unfinished[slot].compare_exchange_strong(none, path)) return slot;
    }
    return kSlots;  // never so many at once
}

std::optional<FileId> idOf(const struct stat& facts) {
    if (!S_ISREG(facts.st_mode)) return std::nullopt;
    return FileId{static_cast<std::uint64_t>(facts.st_dev),
                  static_cast<std::uint64_t>(facts.st_ino)};
}

std::optional<FileId> idOf(int stream) {
    struct stat facts {};
    return ::fstat(stream, &facts) == 0 ? idOf(facts) : std::nullopt;
}

// Who may read and write `like` may do so with the file; where its owner or group cannot be given,
// no group gets what was meant for another. Memory cards have one owner and one mode for all files,
// and refuse even to set these.
void makeLike(int file, const fs::path& like) {
    constexpr mode_t kPermissions = 0777;
    constexpr mode_t kGroup = 0070;
    struct stat wanted {};
    struct stat has {};
    if (::stat(like.c_str(), &wanted) != 0 || !S_ISREG(wanted.st_mode)) return;
    if (::fstat(file, &has) != 0) fail(errno);
    mode_t mode = wanted.st_mode & kPermissions;
    if ((has.st_uid != wanted.st_uid || has.st_gid != wanted.st_gid) &&
        ::fchown(file, wanted.st_uid, wanted.st_gid) != 0 && has.st_gid != wanted.st_gid &&
        ::fchown(file, static_cast<uid_t>(-1), wanted.st_gid) != 0)
        mode &= ~kGroup;
    if (mode != (has.st_mode & kPermissions) && ::fchmod(file, mode) != 0) fail(errno);
}

void sync(int file) {
    while (::fsync(file) != 0) {
        if (errno == EINTR) continue;
        // Some file systems keep nothing that could be written later.
        if (errno == EINVAL || errno == ENOSYS || errno == EROFS) return;
        fail(errno);
    }
}

}  // namespace

std::optional<FileId> identityOf(const fs::path& path) {
    struct stat facts {};
    return ::stat(path.c_str(), &facts) == 0 ? idOf(facts) : std::nullopt;
}

std::optional<FileId> identityOfInput() {
    return idOf(STDIN_FILENO);
}

std::optional<FileId> identityOfOutput() {
    return idOf(STDOUT_FILENO);
}

fs::path openable(const fs::path& path) {
    return path;
}

std::vector<FolderItem> itemsOf(const fs::path& folder, std::error_code& failure) {
    std::vector<FolderItem> items;
    fs::directory_iterator each(folder, failure);
    for (; !failure && each != fs::directory_iterator(); each.increment(failure)) {
        std::error_code unknown;
        std::uintmax_t size = each->file_size(unknown);
        if (unknown) size = 0;
        items.push_back({each->path().filename(), each->is_directory(unknown),
                         each->is_symlink(unknown), each->is_other(unknown), size});
    }
    return items;
}

WritableFile WritableFile::createIn(const fs::path& folder, const fs::path& like) {
    constexpr int kTries = 100;
    constexpr mode_t kForOwner = 0600;
    constexpr mode_t kAsUmaskSays = 0666;
    watchSignals();
    const mode_t mode = identityOf(like) ? kForOwner : kAsUmaskSays;
    WritableFile file;
    for (int tries = 0; !file.isOpen(); ++tries) {
        file.path_ = folder / randomName();
        const SignalsWait wait;
        file.handle_ =
            ::open(file.path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (file.isOpen())
            file.slot_ = enlist(file.path_.c_str());
        else if (errno != EEXIST || tries == kTries)
            fail(errno);
    }
    makeLike(static_cast<int>(file.handle_), like);
    return file;
}

WritableFile WritableFile::createNameless(const fs::path& folder) {
    const SignalsWait wait;
    const fs::path path = folder / randomName();
    constexpr mode_t kForOwner = 0600;
    WritableFile file(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kForOwner));
    if (!file.isOpen()) fail(errno);
    if (::unlink(path.c_str()) != 0) fail(errno);
    return file;
}

WritableFile WritableFile::open(const fs::path& path) {
    WritableFile file(::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    if (!file.isOpen()) fail(errno);
    return file;
}

WritableFile::WritableFile(WritableFile&& other) noexcept {
    *this = std::move(other);
}

WritableFile& WritableFile::operator=(WritableFile&& other) noexcept {
    if (this == &other) return *this;
    discard();
    const SignalsWait wait;
    handle_ = std::exchange(other.handle_, kClosed);
    path_ = std::move(other.path_);
    other.path_.clear();
    slot_ = other.slot_;
    onDisk_ = other.onDisk_;
    if (!path_.empty() && slot_ < kSlots) unfinished[slot_] = path_.c_str();
    return *this;
}

WritableFile::~WritableFile() {
    discard();
}

void WritableFile::discard() noexcept {
    if (isOpen()) ::close(static_cast<int>(std::exchange(handle_, kClosed)));
    if (path_.empty()) return;
    const SignalsWait wait;
    ::unlink(path_.c_str());
    if (slot_ < kSlots) unfinished[slot_] = nullptr;
    path_.clear();
}

void WritableFile::write(const char* bytes, std::size_t size) {
    onDisk_ = false;
    while (size != 0) {
        const ssize_t done = ::write(static_cast<int>(handle_), bytes, size);
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) fail(errno);
        bytes += done;
        size -= static_cast<std::size_t>(done);
    }
}

void WritableFile::rewind() {
    if (::lseek(static_cast<int>(handle_), 0, SEEK_SET) != 0) fail(errno);
}

std::size_t WritableFile::read(char* bytes, std::size_t room) {
    for (;;) {
        const ssize_t got = ::read(static_cast<int>(handle_), bytes, room);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) fail(errno);
    }
}

void WritableFile::close() {
    if (!isOpen()) return;
    // What a network drive could not keep is known here at the latest.
    if (::close(static_cast<int>(std::exchange(handle_, kClosed))) != 0 && errno != EINTR)
        fail(errno);
}

void WritableFile::sync() {
    if (!std::exchange(onDisk_, true)) platform::sync(static_cast<int>(handle_));
}

FileId WritableFile::replace(const fs::path& target) {
    const int file = static_cast<int>(handle_);
    makeLike(file, target);
    sync();
    const FileId id = idOf(file).value_or(FileId{});
    close();
    const SignalsWait wait;
    if (::rename(path_.c_str(), target.c_str()) != 0) fail(errno);
    if (slot_ < kSlots) unfinished[slot_] = nullptr;
    path_.clear();
    return id;
}

fs::path settingsFolder() {
    // A relative path there is invalid and ignored.
    const char* folder = std::getenv("XDG_CONFIG_HOME");
    if (folder != nullptr && *folder == '/') return folder;
    const char* home = std::getenv("HOME");
    return home == nullptr || *home == '\0' ? fs::path() : fs::path(home) / ".config";
}

void endByClosedPipe() {
    removeUnfinished();
    std::signal(SIGPIPE, SIG_DFL);
    ::raise(SIGPIPE);
    constexpr int kEndedBySignal = 128;
    ::_exit(kEndedBySignal + SIGPIPE);  // where the signal is blocked
}

}  // namespace qel::cli::platform
