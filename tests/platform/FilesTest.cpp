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
#include "support/Environment.h"
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
    for (const std::size_t room : {std::size_t{0}, sizeof small}) {
        EXPECT_FALSE(processPath(small, room));
        EXPECT_FALSE(modulePath(small, room));
        EXPECT_FALSE(userStateDirectory(small, room));
    }
    EXPECT_STREQ(small, "");
    EXPECT_FALSE(environment("PATH", small, 0));
    EXPECT_FALSE(currentDirectory(small, 0));
    char here[4096];
    ASSERT_TRUE(currentDirectory(here, sizeof here));
    EXPECT_EQ(std::filesystem::path(here), std::filesystem::current_path());
}

// XDG base directories: an absolute one of the variable, or the one in the home folder.
TEST(Files, TheUsersStateHasAPlace) {
    if (kPathSeparator == '\\') GTEST_SKIP() << "the system knows its place";
    const TempDir dir;
    writeFile(dir.file("file"), "");
    char state[4096];
    char home[4096];
    (void)environment("XDG_STATE_HOME", state, sizeof state);
    (void)environment("HOME", home, sizeof home);
    const std::string far(5000, 'h');
    const struct {
        std::string state, home, place;
    } rows[] = {{dir.file("a/b"), "", dir.file("a/b")},
                {"relative", dir.file("home"), dir.file("home/.local/state")},
                {"", dir.file("home"), dir.file("home/.local/state")},
                {"", "relative", ""},
                {"", "/" + far.substr(0, 4090), ""},
                {dir.file("file/a"), "", ""},
                {dir.file("file"), "", ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.state + " " + row.home);
        qel::test::setEnvironment("XDG_STATE_HOME", row.state);
        qel::test::setEnvironment("HOME", row.home);
        char place[4096] = "old";
        EXPECT_EQ(userStateDirectory(place, sizeof place), !row.place.empty());
        EXPECT_EQ(place, row.place);
        if (!row.place.empty()) EXPECT_TRUE(std::filesystem::is_directory(row.place));
    }
    qel::test::setEnvironment("XDG_STATE_HOME", state);
    qel::test::setEnvironment("HOME", home);
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
    mine.abandon();
    EXPECT_EQ(mine.acquire("in the current folder", 1000), LockResult::kLocked);
    EXPECT_EQ(mine.acquire((std::string(5000, 'd') + "/x.log").c_str(), 0),
              kPathSeparator == '/' ? LockResult::kUnavailable : LockResult::kLocked);
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
    // A format of any length.
    const std::string far(2000, 'f');
    EXPECT_EQ(format(out, sizeof out, ("%I64d" + far).c_str(), 7LL), 2001);
    EXPECT_STREQ(out, ("7" + far.substr(0, 62)).c_str());
    EXPECT_EQ(format(out, 0, "%I64d", 7LL), 1);
    EXPECT_EQ(format(out, sizeof out, "%I32d", 7), 1);
    if (kPathSeparator == '/') {
        // No character of the locale "C".
        EXPECT_LT(format(out, sizeof out, "a %ls", L"\x20AC"), 0);
        EXPECT_STREQ(out, "");
        EXPECT_LT(format(out, 0, "a %ls", L"\x20AC"), 0);
    }
    EXPECT_EQ(format(out, sizeof out, nullptr), 6);
    EXPECT_STREQ(out, "(null)");
}

}  // namespace
