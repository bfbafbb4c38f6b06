#include "platform/Files.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/RandomName.h"

namespace qel::cli::platform {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(DWORD code) {
    throw std::system_error(static_cast<int>(code), std::system_category());
}

HANDLE handleOf(std::intptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

// INVALID_HANDLE_VALUE is -1 as well.
std::intptr_t numberOf(HANDLE handle) {
    return reinterpret_cast<std::intptr_t>(handle);
}

// Paths of this length and longer need the prefix that the system knows them by: a folder's path
// must leave room for a short name.
constexpr std::size_t kLongPath = MAX_PATH - 12;

// The path as the system takes it, whatever its length.
std::wstring systemPath(const fs::path& path) {
    constexpr std::wstring_view kPrefix = L"\\\\?\\";
    constexpr std::wstring_view kShares = L"\\\\";
    const std::wstring& name = path.native();
    if (name.empty() || name.starts_with(kPrefix) || name.starts_with(L"\\\\.\\")) return name;
    std::wstring full(GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
    if (full.size() < kLongPath) return name;
    full.resize(
        GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.starts_with(kPrefix)) return full;
    const bool isShare = full.starts_with(kShares);
    if (isShare) full.replace(0, kShares.size(), L"UNC\\");
    return std::wstring(kPrefix) + full;
}

FolderItem itemOf(const WIN32_FIND_DATAW& found) {
    const auto has = [&](DWORD attribute) { return (found.dwFileAttributes & attribute) != 0; };
    constexpr unsigned kHalf = 32;
    FolderItem item;
    item.name = found.cFileName;
    item.isFolder = has(FILE_ATTRIBUTE_DIRECTORY);
    // Clouds and archives mark their files too; those are files.
    item.isLink =
        has(FILE_ATTRIBUTE_REPARSE_POINT) && (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
                                              found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
    item.isOther = has(FILE_ATTRIBUTE_DEVICE);
    item.size = std::uint64_t{found.nFileSizeHigh} << kHalf | found.nFileSizeLow;
    return item;
}

// The names of files that are not finished. The console's thread reads them.
constexpr std::size_t kSlots = 256;
std::array<std::atomic<const wchar_t*>, kSlots> unfinished;
// Threads that change the list, or are about to. Nobody begins to when the program is ending.
std::atomic<int> changing{0};
std::atomic<bool> ending{false};

// Keeps the end of the program waiting, so that a file and its place in the list come and go
// together.
class EndWaits {
  public:
    EndWaits() {
        ++changing;
        if (!ending) return;
        --changing;
        Sleep(INFINITE);
    }
    ~EndWaits() { --changing; }
    EndWaits(const EndWaits&) = delete;
    EndWaits& operator=(const EndWaits&) = delete;
};

// REQUIRES: this thread does not change the list.
void removeUnfinished() {
    ending = true;
    while (changing != 0) Sleep(0);
    for (std::atomic<const wchar_t*>& each : unfinished)
        if (const wchar_t* const path = each.exchange(nullptr)) DeleteFileW(path);
}

// Ctrl-C and Ctrl-Break are SIGINT elsewhere, a closed window or the end of the session SIGTERM.
BOOL WINAPI endByConsole(DWORD event) {
    constexpr UINT kInterrupted = 130;
    constexpr UINT kTerminated = 143;
    removeUnfinished();
    TerminateProcess(GetCurrentProcess(), event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT
                                              ? kInterrupted
                                              : kTerminated);
    return TRUE;
}

void watchConsole() {
    static std::once_flag watched;
    std::call_once(watched, [] { SetConsoleCtrlHandler(endByConsole, TRUE); });
}

std::size_t enlist(const wchar_t* path) {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
        const wchar_t* none = nullptr;
        if (unfinished[slot].compare_exchange_strong(none, path)) return slot;
    }
    return kSlots;  // never so many at once
}

std::optional<FileId> idOf(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION facts{};
    if (file == nullptr || GetFileType(file) != FILE_TYPE_DISK ||
        GetFileInformationByHandle(file, &facts) == 0 ||
        (facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return std::nullopt;
    constexpr unsigned kHalf = 32;
    return FileId{facts.dwVolumeSerialNumber,
                  std::uint64_t{facts.nFileIndexHigh} << kHalf | facts.nFileIndexLow};
}

// Opens a new file; INVALID_HANDLE_VALUE when there is one of that name. It may be deleted while it
// is open, by the console's thread.
HANDLE create(const fs::path& path, DWORD flags) {
    const HANDLE file =
        CreateFileW(systemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW, flags, nullptr);
    if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) fail(GetLastError());
    return file;
}

// Who may read and write `like` may do so with `path`. File systems without access lists, and those
// that may not be read, leave it as its folder has it.
void makeLike(const fs::path& path, const fs::path& like) {
    constexpr SECURITY_INFORMATION kAccess = DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    const std::wstring model = systemPath(like);
    GetFileSecurityW(model.c_str(), kAccess, nullptr, 0, &size);
    if (size == 0) return;
    std::vector<unsigned char> access(size);
    if (GetFileSecurityW(model.c_str(), kAccess, access.data(), size, &size) != 0)
        SetFileSecurityW(path.c_str(), kAccess, access.data());
}

constexpr int kTries = 100;

}  // namespace

fs::path openable(const fs::path& path) {
    return systemPath(path);
}

std::vector<FolderItem> itemsOf(const fs::path& folder, std::error_code& failure) {
    std::vector<FolderItem> items;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(systemPath(folder / L"*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring_view name = found.cFileName;
            if (name != L"." && name != L"..") items.push_back(itemOf(found));
        } while (FindNextFileW(search, &found) != 0);
    }
    const DWORD code = GetLastError();
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
    // An empty drive lists nothing, not even ".".
    if (code != ERROR_NO_MORE_FILES && code != ERROR_FILE_NOT_FOUND)
        failure.assign(static_cast<int>(code), std::system_category());
    return items;
}

std::optional<FileId> identityOf(const fs::path& path) {
    const HANDLE file = CreateFileW(systemPath(path).c_str(), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    const std::optional<FileId> id = idOf(file);
    CloseHandle(file);
    return id;
}

std::optional<FileId> identityOfInput() {
    return idOf(GetStdHandle(STD_INPUT_HANDLE));
}

std::optional<FileId> identityOfOutput() {
    return idOf(GetStdHandle(STD_OUTPUT_HANDLE));
}

WritableFile WritableFile::createIn(const fs::path& folder, const fs::path& like) {
    watchConsole();
    WritableFile file;
    for (int tries = 0; !file.isOpen(); ++tries) {
        if (tries == kTries) fail(ERROR_FILE_EXISTS);
        file.path_ = systemPath(folder / randomName());
        const EndWaits wait;
        file.handle_ = numberOf(create(file.path_, FILE_ATTRIBUTE_NORMAL));
        if (file.isOpen()) file.slot_ = enlist(file.path_.c_str());
    }
    makeLike(file.path_, like);
    return file;
}

WritableFile WritableFile::createNameless(const fs::path& folder) {
    WritableFile file;
    for (int tries = 0; !file.isOpen(); ++tries) {
        if (tries == kTries) fail(ERROR_FILE_EXISTS);
        file.handle_ = numberOf(
            create(folder / randomName(), FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE));
    }
    return file;
}

WritableFile WritableFile::open(const fs::path& path) {
    WritableFile file(numberOf(CreateFileW(systemPath(path).c_str(), GENERIC_WRITE,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                           OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
    if (!file.isOpen()) fail(GetLastError());
    return file;
}

WritableFile::WritableFile(WritableFile&& other) noexcept {
    *this = std::move(other);
}

WritableFile& WritableFile::operator=(WritableFile&& other) noexcept {
    if (this == &other) return *this;
    discard();
    const EndWaits wait;
    slot_ = other.slot_;
    onDisk_ = other.onDisk_;
    const bool listed = !other.path_.empty() && slot_ < kSlots;
    if (listed) unfinished[slot_] = nullptr;
    handle_ = std::exchange(other.handle_, kClosed);
    path_ = std::move(other.path_);
    other.path_.clear();
    if (listed) unfinished[slot_] = path_.c_str();
    return *this;
}

WritableFile::~WritableFile() {
    discard();
}

void WritableFile::discard() noexcept {
    if (isOpen()) CloseHandle(handleOf(std::exchange(handle_, kClosed)));
    if (path_.empty()) return;
    const EndWaits wait;
    if (slot_ < kSlots) unfinished[slot_] = nullptr;
    DeleteFileW(path_.c_str());
    path_.clear();
}

void WritableFile::write(const char* bytes, std::size_t size) {
    constexpr std::size_t kMost = std::size_t{1} << 20;
    onDisk_ = false;
    while (size != 0) {
        DWORD done = 0;
        if (WriteFile(handleOf(handle_), bytes, static_cast<DWORD>(std::min(size, kMost)), &done,
                      nullptr) == 0)
            fail(GetLastError());
        bytes += done;
        size -= done;
    }
}

void WritableFile::rewind() {
    if (SetFilePointer(handleOf(handle_), 0, nullptr, FILE_BEGIN) == INVALID_SET_FILE_POINTER)
        fail(GetLastError());
}

std::size_t WritableFile::read(char* bytes, std::size_t room) {
    constexpr std::size_t kMost = std::size_t{1} << 20;
    DWORD got = 0;
    if (ReadFile(handleOf(handle_), bytes, static_cast<DWORD>(std::min(room, kMost)), &got,
                 nullptr) == 0)
        fail(GetLastError());
    return got;
}

void WritableFile::close() {
    if (isOpen() && CloseHandle(handleOf(std::exchange(handle_, kClosed))) == 0)
        fail(GetLastError());
}

void WritableFile::sync() {
    if (!std::exchange(onDisk_, true) && FlushFileBuffers(handleOf(handle_)) == 0)
        fail(GetLastError());
}

FileId WritableFile::replace(const fs::path& target) {
    sync();
    const FileId id = idOf(handleOf(handle_)).value_or(FileId{});
    makeLike(path_, target);
    close();
    const EndWaits wait;
    if (MoveFileExW(path_.c_str(), systemPath(target).c_str(), MOVEFILE_REPLACE_EXISTING) == 0)
        fail(GetLastError());
    if (slot_ < kSlots) unfinished[slot_] = nullptr;
    path_.clear();
    return id;
}

fs::path settingsFolder() {
    const wchar_t* folder = _wgetenv(L"APPDATA");
    return folder == nullptr ? fs::path() : fs::path(folder);
}

void endByClosedPipe() {
    constexpr UINT kBrokenPipe = 141;  // as where a signal says so
    removeUnfinished();
    TerminateProcess(GetCurrentProcess(), kBrokenPipe);
    std::abort();
}

}  // namespace qel::cli::platform
