// Files, locks and formats of the seam, as far as the trace's own tests do not show them.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/Files.h"
#include "platform/Format.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "platform/Profile.h"
#include "platform/TraceMutex.h"
#include "support/TempDir.h"

namespace {

using namespace qel::platform;
using qel::test::readFile;
using qel::test::TempDir;
using qel::test::writeFile;

TEST(Files, AppendingStreamsMeetAtTheEndAndSurviveARename) {
    const TempDir dir;
    const std::string path = dir.file("a");
    std::int64_t size = -1;
    const int one = openForMessage(path.c_str(), &size);
    const int two = openForMessage(path.c_str(), &size);
    ASSERT_TRUE(one >= 0 && two >= 0);
    const FileIdentity before = fileIdentity(path.c_str());
    EXPECT_TRUE(before.known);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(appendTo(one, "1", 1), 1U);
        EXPECT_EQ(appendTo(two, "2", 1), 1U);
    }
    EXPECT_EQ(renameFile(path.c_str(), dir.file("b").c_str()), 0);
    EXPECT_EQ(fileIdentity(dir.file("b").c_str()), before);
    EXPECT_EQ(appendTo(one, "end", 3), 3U);
    closeAppended(one);
    closeAppended(two);
    EXPECT_EQ(readFile(dir.file("b")), "121212end");
    EXPECT_FALSE(fileExists(path.c_str()));
    EXPECT_FALSE(fileIdentity(path.c_str()).known);
    EXPECT_EQ(fileSize(dir.file("b").c_str()), 9);
    EXPECT_EQ(fileSize(path.c_str()), -1);
}

TEST(Files, NewOnesAreTheUsersOwn) {
    const TempDir dir;
    closeAppended(openHeld(dir.file("log").c_str()));
    std::fclose(openForWrite(dir.file("saved").c_str()));
    ASSERT_TRUE(writeProfile(dir.file("options").c_str(), "s", "k", "v"));
    ASSERT_TRUE(createDirectory(dir.file("folder").c_str()));
    ASSERT_TRUE(createDirectory(dir.file("folder").c_str())) << "it is there already";
    EXPECT_FALSE(createDirectory(dir.file("log").c_str()));
    EXPECT_FALSE(createDirectory(dir.file("no/parent").c_str()));
    if (kPathSeparator == '\\') return;  // rights come from the directory there
    using std::filesystem::perms;
    for (const char* name : {"log", "saved", "options", "folder"})
        EXPECT_EQ(std::filesystem::status(dir.file(name)).permissions() &
                      (perms::group_all | perms::others_all),
                  perms::none)
            << name;
}

TEST(Files, DirectoriesAreNoFiles) {
    const TempDir dir;
    const std::string path = dir.path().string();
    EXPECT_EQ(openForRead(path.c_str()), nullptr);
    EXPECT_EQ(openForWrite(path.c_str()), nullptr);
    EXPECT_LT(openHeld(path.c_str()), 0);
    EXPECT_NE(removeFile(path.c_str()), 0);
    EXPECT_TRUE(directoryWritable(path.c_str()));
    EXPECT_FALSE(directoryWritable(dir.file("missing").c_str()));
}

TEST(Files, TheDirectoryIsCutOffAtTheLastSeparator) {
    const std::string path = std::string("a") + kPathSeparator + "b" + kPathSeparator + "c.log";
    EXPECT_EQ(directoryLength(path.c_str()), 4U);
    EXPECT_EQ(directoryLength("a\\c.log"), 2U) << "the backslash separates on every platform";
    EXPECT_EQ(directoryLength("c.log"), 0U);
    EXPECT_EQ(directoryLength(""), 0U);
    char small[3];
    EXPECT_FALSE(currentDirectory(small, sizeof small) && std::strlen(small) > 2);
    EXPECT_FALSE(processPath(small, sizeof small));
    EXPECT_STREQ(small, "");
}

TEST(PathLock, HasOneHolderPerPath) {
    const TempDir dir;
    const std::string path = dir.file("x.log");
    PathLock mine;
    EXPECT_FALSE(mine.held());
    ASSERT_EQ(mine.acquire(path.c_str(), 0), LockResult::kLocked);
    EXPECT_TRUE(mine.held());
    std::thread([&path] {
        PathLock other;
        EXPECT_EQ(other.acquire(path.c_str(), 30), LockResult::kTimedOut);
        EXPECT_FALSE(other.held());
    }).join();
    mine.release();
    mine.release();
    std::thread([&path] {
        PathLock other;
        EXPECT_EQ(other.acquire(path.c_str(), 0), LockResult::kLocked);
        // Going out of scope gives it back.
    }).join();
    EXPECT_EQ(mine.acquire(path.c_str(), 1000), LockResult::kLocked);
    mine.release();
    EXPECT_TRUE(std::filesystem::is_empty(dir.path())) << "no lock file";
}

TEST(TraceMutex, IsRecursiveAndTimed) {
    ASSERT_EQ(lockTraceMutex(0), LockResult::kLocked);
    ASSERT_EQ(lockTraceMutex(0), LockResult::kLocked);
    unlockTraceMutex();
    std::thread([] { EXPECT_EQ(lockTraceMutex(20), LockResult::kTimedOut); }).join();
    std::thread waiter([] {
        EXPECT_EQ(lockTraceMutex(10000), LockResult::kLocked);
        unlockTraceMutex();
    });
    sleepMilliseconds(20);
    unlockTraceMutex();
    waiter.join();
}

int format(char* out, std::size_t room, const char* text, ...) {
    std::va_list arguments;
    va_start(arguments, text);
    const int length = formatTextV(out, room, text, arguments);
    va_end(arguments);
    return length;
}

TEST(FormatText, TakesBothSpellingsOf64BitsAndNothingElseForOne) {
    char out[64];
    EXPECT_EQ(format(out, sizeof out, "%I64d|%-8I64x|%08I64X|%I64u", -5LL, 0x1234567890LL, 0xABLL,
                     18446744073709551615ULL),
              43);
    EXPECT_STREQ(out, "-5|1234567890|000000AB|18446744073709551615");
    EXPECT_EQ(format(out, sizeof out, "%lld %llx", -5LL, 255LL), 5);
    EXPECT_STREQ(out, "-5 ff");
    format(out, sizeof out, "I64 100%% I64d %s %%I64d %I32d", "%I64d", 3);
    EXPECT_STREQ(out, "I64 100% I64d %I64d %I64d 3");
    format(out, sizeof out, "%*I64d|%.*s|", 4, 7LL, 2, "abc");
    EXPECT_STREQ(out, "   7|ab|");
    EXPECT_EQ(format(out, 4, "%s", "abcdef"), 6);
    EXPECT_STREQ(out, "abc");
    EXPECT_EQ(format(out, sizeof out, nullptr), 6);
    EXPECT_STREQ(out, "(null)");
}

}  // namespace
