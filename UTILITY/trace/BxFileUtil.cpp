#include "QelUtility/BxFileUtil.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "QelUtility/BxHost.h"
#include "QelUtility/BxTrace.h"
#include "platform/Files.h"
#include "platform/LocalClock.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "trace/BxFileUtilInternal.h"

namespace {

namespace platform = qel::platform;

constexpr char kSourceName[] = "BxFileUtil";
constexpr int kNullBuffer = 15133;
constexpr std::size_t kPathRoom = 260;
constexpr std::size_t kModelRoom = 128;
constexpr std::uint32_t kLockMilliseconds = 200;
constexpr char kSeparatorLine[] =
    "\n- - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - -\n";
static_assert(sizeof kSeparatorLine == 1 + 40 * 2 - 1 + 1 + 1);

// The folder that the user log is in when the host has no profile directory. The program's own file
// name stays in it, so the folder lies below a file and in practice the entry is lost.
std::string fallbackFolder() {
    char program[kPathRoom];
    if (!platform::processPath(program, sizeof program)) program[0] = '\0';
    std::string folder = program;
    if (folder.empty() || !platform::isPathSeparator(folder.back()))
        folder += platform::kPathSeparator;
    char model[kModelRoom];
    unsigned long size = sizeof model;
    BxUtil_GetUserLogFolderName(model, size);
    return folder + model;
}

void appendToUserLog(const char* message) {
    char directory[kPathRoom];
    std::string path = GetProfileDirectoryWithUserName(directory, sizeof directory)
                           ? std::string(directory)
                           : fallbackFolder();
    path += platform::kPathSeparator;
    path += "SyncML.log";
    const platform::LocalClock now = platform::localClock();
    char date[48];
    std::snprintf(date, sizeof date, "On %02d/%02d/%02d %02d:%02d:%02d\n", now.month, now.day,
                  now.year % 100, now.hour, now.minute, now.second);
    const std::string entry =
        std::string(kSeparatorLine) + date + (message != nullptr ? message : "(null)") + " \n";
    // One write, or one process after the other: no entry comes between the lines of another.
    platform::PathLock lock;
    if (!platform::messagesAreWhole()) (void)lock.acquire(path.c_str(), kLockMilliseconds);
    std::int64_t size = -1;
    const int log = platform::openForMessage(path.c_str(), &size);
    if (log < 0) return;
    (void)platform::appendTo(log, entry.data(), entry.size());
    platform::closeAppended(log);
}

}  // namespace

VStr CleanseFilename(const char* name) {
    VStr result(name);
    for (int i = 0; i < result.GetLength(); ++i)
        if (std::strchr("?*:/\\\"'&", result.GetAt(i)) != nullptr) result.SetAt(i, '_');
    return result;
}

void QELUTILITY_CALL WriteToUserLog(const char* message) {
    try {
        appendToUserLog(message);
    } catch (...) {
        // Out of memory: the user log never reports failure.
    }
}

int QELUTILITY_CALL BxFile_LoadFile(const char* path, unsigned char** data, unsigned long* size) {
    if (data != nullptr) *data = nullptr;
    if (size != nullptr) *size = 0;
    if (path == nullptr || data == nullptr || size == nullptr) return QEL_NOT_INITIALIZED;
    std::FILE* stream = platform::openForRead(path);
    if (stream == nullptr) return QEL_CANNOT_OPEN;
    const unsigned long length = BxFile_GetFileSize(stream);
    if (length == ULONG_MAX) {
        const int error = errno;
        std::fclose(stream);
        return BxTrace_Error(kSourceName, __LINE__, error, QEL_SHORT_READ);
    }
    auto* block = static_cast<unsigned char*>(std::malloc(length + 1));
    if (block == nullptr) {
        std::fclose(stream);
        return BxTrace_Error(kSourceName, __LINE__, static_cast<int>(length), QEL_OUT_OF_MEMORY);
    }
    errno = 0;
    const std::size_t count = std::fread(block, 1, length, stream);
    const int error = errno;
    std::fclose(stream);
    if (count != length) {
        std::free(block);
        return BxTrace_Error(kSourceName, __LINE__, error, QEL_SHORT_READ);
    }
    block[length] = 0;
    *data = block;
    *size = length;
    return QEL_OK;
}

int BxUtil_GetUserLogFolderName(char* buffer, unsigned long& size) {
    if (buffer == nullptr) return kNullBuffer;
    char model[kModelRoom];
    const bool known = GetCurrentModelID(model, sizeof model);
    const VStr name = CleanseFilename(known ? model : "NVDATA");
    if (size > 0) std::snprintf(buffer, size, "%s", static_cast<const char*>(name));
    return 0;
}

int BxFile_SaveFile(const char* path, const void* data, unsigned long size) {
    errno = EINVAL;
    std::FILE* stream = path != nullptr ? platform::openForWrite(path) : nullptr;
    if (stream == nullptr) return BxTrace_Error(kSourceName, __LINE__, errno, QEL_CANNOT_OPEN);
    errno = 0;
    // What the stream still buffers counts as written only once the system has taken it.
    const bool written =
        size == 0 ||
        (data != nullptr && std::fwrite(data, 1, size, stream) == size && std::fflush(stream) == 0);
    if (!written) return BxTrace_Error(kSourceName, __LINE__, errno, QEL_SHORT_WRITE);
    if (std::fclose(stream) != 0)
        return BxTrace_Error(kSourceName, __LINE__, errno, QEL_SHORT_WRITE);
    return QEL_OK;
}

int BxFile_DeleteFile(const char* path) {
    errno = EINVAL;
    if (path != nullptr && platform::removeFile(path) == 0) return QEL_OK;
    return BxTrace_Error(kSourceName, __LINE__, errno, QEL_CANNOT_DELETE);
}

int BxFile_CopyFile(const char* from, const char* to, bool keepExisting) {
    if (from == nullptr || to == nullptr) return QEL_FAILED;
    const bool exists = platform::fileExists(to);
    if (exists && keepExisting) return QEL_FAILED;
    unsigned char* data = nullptr;
    unsigned long size = 0;
    if (BxFile_LoadFile(from, &data, &size) != QEL_OK) return QEL_FAILED;
    const bool copied =
        (!exists || platform::removeFile(to) == 0) && BxFile_SaveFile(to, data, size) == QEL_OK;
    std::free(data);
    return copied ? QEL_OK : QEL_FAILED;
}

unsigned long BxFile_GetFileSize(std::FILE* stream) {
    if (stream == nullptr) return ULONG_MAX;
    std::fpos_t position;
    if (std::fgetpos(stream, &position) != 0) return ULONG_MAX;
    const long length = std::fseek(stream, 0, SEEK_END) == 0 ? std::ftell(stream) : -1;
    const bool restored = std::fsetpos(stream, &position) == 0;
    return length >= 0 && restored ? static_cast<unsigned long>(length) : ULONG_MAX;
}

unsigned long BxFile_GetPathSize(const char* path) {
    const std::int64_t size = path != nullptr ? platform::fileSize(path) : -1;
    const bool fits = size >= 0 && static_cast<std::uint64_t>(size) < ULONG_MAX;
    return fits ? static_cast<unsigned long>(size) : ULONG_MAX;
}
