// Paths, streams and directories. Files get the access rights of the directory they are made in,
// which for the default ones is the user's own profile.
#include "platform/Files.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// shlobj.h needs windows.h before it.
#include <shlobj.h>

#include <cerrno>
#include <cstring>

namespace qel::platform {

const char kPathSeparator = '\\';

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A descriptor over a handle of our own making: others may rename and delete the file while it is
// open, which the C library's own open would not let them, and no child inherits it.
int openDescriptor(const char* path, DWORD access, DWORD share, DWORD creation,
                   int flags) noexcept {
    const HANDLE handle =
        CreateFileA(path, access, share, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        errno = missing ? ENOENT : EACCES;
        return -1;
    }
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        CloseHandle(handle);
        errno = EINVAL;
        return -1;
    }
    const int descriptor =
        _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), flags | _O_NOINHERIT);
    if (descriptor < 0) CloseHandle(handle);
    return descriptor;
}

// With the right to append alone, every write goes to the file's end.
int openAppending(const char* path, DWORD share) noexcept {
    return openDescriptor(path, FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, share,
                          OPEN_ALWAYS, _O_APPEND | _O_TEXT | _O_WRONLY);
}

std::FILE* streamOver(int descriptor, const char* mode) noexcept {
    if (descriptor < 0) return nullptr;
    std::FILE* stream = _fdopen(descriptor, mode);
    if (stream == nullptr) _close(descriptor);
    return stream;
}

FileIdentity identityOf(HANDLE handle) noexcept {
    BY_HANDLE_FILE_INFORMATION information{};
    if (GetFileInformationByHandle(handle, &information) == FALSE) return {};
    return {
        information.dwVolumeSerialNumber,
        static_cast<std::uint64_t>(information.nFileIndexHigh) << 32 | information.nFileIndexLow,
        true};
}

// The C library's codes for the failures that a caller may show; the rest is "access denied".
int failed() noexcept {
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
        errno = ENOENT;
    else if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)
        errno = EEXIST;
    else
        errno = EACCES;
    return -1;
}

}  // namespace

bool isPathSeparator(char c) noexcept {
    return c == '\\';
}

std::size_t directoryLength(const char* path) noexcept {
    // The C library's split of a path takes slashes for separators too, and a drive's colon.
    std::size_t length = std::strlen(path);
    while (length > 0 && path[length - 1] != '\\' && path[length - 1] != '/' &&
           !(length == 2 && path[1] == ':'))
        --length;
    return length;
}

// Windows finds the file's end and writes in one step; Wine takes two.
bool appendsAreAtomic() noexcept {
    static const bool windows = [] {
        const HMODULE ntdll = GetModuleHandleA("ntdll.dll");
        return ntdll == nullptr || GetProcAddress(ntdll, "wine_get_version") == nullptr;
    }();
    return windows;
}

// The run-time library turns line ends into CR LF a few kilobytes at a time.
bool messagesAreWhole() noexcept {
    return false;
}

int openForMessage(const char* path, std::int64_t* size) noexcept {
    const int file = openAppending(path, kShareAll);
    if (file >= 0) *size = _filelengthi64(file);
    return file;
}

std::FILE* openForRead(const char* path) noexcept {
    return streamOver(
        openDescriptor(path, GENERIC_READ, kShareAll, OPEN_EXISTING, _O_RDONLY | _O_BINARY), "rb");
}

std::FILE* openForWrite(const char* path) noexcept {
    return streamOver(
        openDescriptor(path, GENERIC_WRITE, kShareAll, CREATE_ALWAYS, _O_WRONLY | _O_BINARY), "wb");
}

bool endsInLine(const char* path) noexcept {
    const int file =
        openDescriptor(path, GENERIC_READ, kShareAll, OPEN_EXISTING, _O_RDONLY | _O_BINARY);
    if (file < 0) return true;
    char last = '\n';
    if (_lseeki64(file, -1, SEEK_END) >= 0) (void)_read(file, &last, 1);
    _close(file);
    return last == '\n';
}

int openHeld(const char* path) noexcept {
    return openAppending(path, kShareAll & ~FILE_SHARE_DELETE);
}

std::size_t appendTo(int file, const char* data, std::size_t size) noexcept {
    std::size_t written = 0;
    while (written < size) {
        const int count = _write(file, data + written, static_cast<unsigned>(size - written));
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
    }
    return written;
}

void closeAppended(int file) noexcept {
    _close(file);
}

bool stillNamed(int /*file*/, const char* /*path*/) noexcept {
    // Nobody can have taken the name from a file that is open without sharing deletion.
    return true;
}

bool fileExists(const char* path) noexcept {
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

std::int64_t fileSize(const char* path) noexcept {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExA(path, GetFileExInfoStandard, &data) == FALSE) return -1;
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 |
                                     data.nFileSizeLow);
}

std::int64_t changeStamp(const char* path) noexcept {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExA(path, GetFileExInfoStandard, &data) == FALSE) return -1;
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime)
                                         << 32 |
                                     data.ftLastWriteTime.dwLowDateTime);
}

FileIdentity fileIdentity(const char* path) noexcept {
    const HANDLE handle = CreateFileA(path, 0, kShareAll, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return {};
    const FileIdentity identity = identityOf(handle);
    CloseHandle(handle);
    return identity;
}

int removeFile(const char* path) noexcept {
    return DeleteFileA(path) != FALSE ? 0 : failed();
}

int renameFile(const char* from, const char* to) noexcept {
    return MoveFileA(from, to) != FALSE ? 0 : failed();
}

bool directoryWritable(const char* directory) noexcept {
    return _access(directory, 2) == 0;
}

bool createDirectory(const char* directory) noexcept {
    if (CreateDirectoryA(directory, nullptr) != FALSE) return true;
    const DWORD attributes = GetFileAttributesA(directory);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool currentDirectory(char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(room), out);
    const bool whole = length > 0 && length < room;
    if (!whole) out[0] = '\0';
    return whole;
}

bool userStateDirectory(char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    char path[MAX_PATH] = "";
    if (SHGetFolderPathA(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT,
                         path) != S_OK)
        return false;
    const std::size_t length = std::strlen(path);
    if (length == 0 || length >= room) return false;
    std::memcpy(out, path, length + 1);
    return true;
}

}  // namespace qel::platform
