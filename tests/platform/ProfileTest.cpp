// Profile files: the same answers from the system's own calls and from their stand-in.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/Files.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "platform/Profile.h"
#include "support/TempDir.h"

namespace {

using qel::platform::readProfile;
using qel::platform::writeProfile;
using qel::test::readFile;
using qel::test::TempDir;
using qel::test::writeFile;

std::string get(const std::string& path, const char* section, const char* key) {
    char out[64] = "old";
    readProfile(path.c_str(), section, key, out, sizeof out);
    return out;
}

TEST(Profile, ReadsNamesWithoutCaseAndValuesWithoutBlanksAndQuotes) {
    const TempDir dir;
    const std::string path = dir.file("r.ini");
    writeFile(path,
              "outside=1\r\n"
              "[Other]\r\nKey=other\r\n"
              "[ Section ]\r\n"
              ";Commented=1\r\n"
              "  Key With Blanks = a value \t\r\n"
              "DOUBLE=\"  in quotes \"\r\n"
              "single='x'\r\n"
              "Odd=\"x'\r\n"
              "Empty=\r\n"
              "Equals=a=b;c\r\n"
              "Twice=first\r\nTwice=second\r\n"
              "no key and no section\r\n"
              "[Last\r\n"
              "[Last]\r\nNoLineEnd=end");
    EXPECT_EQ(get(path, "SECTION", "key with BLANKS"), "a value");
    EXPECT_EQ(get(path, "section", "double"), "  in quotes ");
    EXPECT_EQ(get(path, "section", "single"), "x");
    EXPECT_EQ(get(path, "section", "Odd"), "\"x'");
    EXPECT_EQ(get(path, "section", "Empty"), "");
    EXPECT_EQ(get(path, "section", "Equals"), "a=b;c");
    EXPECT_EQ(get(path, "section", "Twice"), "first");
    EXPECT_EQ(get(path, "section", "Key"), "");
    EXPECT_EQ(get(path, "section", "outside"), "");
    EXPECT_EQ(get(path, "missing", "Key"), "");
    EXPECT_EQ(get(path, "last", "NoLineEnd"), "end");
    EXPECT_EQ(get(dir.file("missing.ini"), "last", "NoLineEnd"), "");
    char small[4];
    readProfile(path.c_str(), "section", "Equals", small, sizeof small);
    EXPECT_STREQ(small, "a=b");
    readProfile(path.c_str(), "section", "single", small, 0);
    EXPECT_STREQ(small, "a=b");
}

TEST(Profile, WritesOneValueAndKeepsEveryOtherLine) {
    const TempDir dir;
    const std::string path = dir.file("w.ini");
    EXPECT_TRUE(writeProfile(path.c_str(), "One", "a", "1"));
    EXPECT_TRUE(writeProfile(path.c_str(), "Two", "b", "2"));
    EXPECT_TRUE(writeProfile(path.c_str(), "ONE", "c", "3"));
    EXPECT_TRUE(writeProfile(path.c_str(), "one", "A", "4"));
    EXPECT_EQ(get(path, "one", "a"), "4");
    EXPECT_EQ(get(path, "one", "c"), "3");
    EXPECT_EQ(get(path, "two", "b"), "2");

    writeFile(path, "; a comment\n[One]\n; another\nx=1\n\n[Two]\ny=2");
    EXPECT_TRUE(writeProfile(path.c_str(), "One", "z", "3"));
    EXPECT_TRUE(writeProfile(path.c_str(), "Two", "y", "4"));
    EXPECT_TRUE(writeProfile(path.c_str(), "Three", "w", "5"));
    const std::string text = readFile(path);
    EXPECT_NE(text.find("; a comment"), std::string::npos);
    EXPECT_NE(text.find("; another"), std::string::npos);
    EXPECT_EQ(get(path, "One", "x"), "1");
    EXPECT_EQ(get(path, "One", "z"), "3");
    EXPECT_EQ(get(path, "Two", "y"), "4");
    EXPECT_EQ(get(path, "Three", "w"), "5");
    EXPECT_EQ(text.find("y=2"), std::string::npos);

    if (qel::platform::kPathSeparator == '\\') return;
    const std::string link = dir.file("link.ini");
    std::filesystem::create_symlink(path, link);
    EXPECT_TRUE(writeProfile(link.c_str(), "One", "x", "6"));
    EXPECT_TRUE(std::filesystem::is_symlink(link)) << "a link stays a link";
    EXPECT_EQ(get(path, "One", "x"), "6");
}

TEST(Profile, LeavesAloneWhatIsNoProfileFile) {
    const TempDir dir;
    std::filesystem::create_directory(dir.file("folder"));
    EXPECT_FALSE(writeProfile(dir.file("folder").c_str(), "s", "k", "v"));
    EXPECT_FALSE(writeProfile(dir.file("no/such/x.ini").c_str(), "s", "k", "v"));
    EXPECT_EQ(get(dir.file("folder"), "s", "k"), "");
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path()))
        ++entries;
    EXPECT_EQ(entries, 1U) << "no file is left behind";

    // Nor is a file of more than 4 MiB, or one that would become that.
    if (qel::platform::kPathSeparator == '\\') return;
    const std::string path = dir.file("large.ini");
    const std::string full = "[s]\nk=v\n" + std::string((4U << 20) - 8, ';');
    writeFile(path, full);
    EXPECT_EQ(get(path, "s", "k"), "v");
    EXPECT_FALSE(writeProfile(path.c_str(), "s", "k", "longer"));
    EXPECT_EQ(get(path, "s", "k"), "v");
    writeFile(path, full + ";");
    EXPECT_FALSE(writeProfile(path.c_str(), "s", "k", "x"));
    EXPECT_EQ(get(path, "s", "k"), "");
}

// A name that would be read back as another is refused: it would be added again with every write.
TEST(Profile, RefusesNamesThatWouldNotReadBack) {
    if (qel::platform::kPathSeparator == '\\') GTEST_SKIP() << "the system's own calls take them";
    const TempDir dir;
    const std::string path = dir.file("n.ini");
    for (const char* key : {"", "a=b", ";a", " ;a", "[a", "a\nb"})
        EXPECT_FALSE(writeProfile(path.c_str(), "s", key, "v")) << key;
    for (const char* section : {"a]b", "a\nb"})
        EXPECT_FALSE(writeProfile(path.c_str(), section, "k", "v")) << section;
    EXPECT_FALSE(writeProfile(path.c_str(), "s", "k", "a\nb"));
    EXPECT_EQ(readFile(path), "");
}

// A value that is there stays; one that is empty is missing.
TEST(Profile, FillsInOnlyWhatIsMissing) {
    const TempDir dir;
    const std::string path = dir.file("f.ini");
    const auto fillIn = [&path](const char* key) {
        return writeProfile(path.c_str(), "s", key, "new", qel::platform::ProfileWrite::kIfMissing);
    };
    writeFile(path, "[s]\nthere=old\nquoted=\"\"\nempty=\n");
    for (const char* key : {"There", "quoted", "empty", "missing"}) EXPECT_TRUE(fillIn(key));
    EXPECT_EQ(get(path, "s", "there"), "old");
    for (const char* key : {"quoted", "empty", "missing"}) EXPECT_EQ(get(path, "s", key), "new");
}

// Threads that fill in the same keys, each with a value of its own: what one has seen stays. A key
// of its own that each of them writes is not lost to the others.
TEST(Profile, WritersAtOnceLoseNothing) {
    const TempDir dir;
    const std::string path = dir.file("first.ini");
    constexpr int kThreads = 4;
    constexpr int kKeys = 10;
    std::vector<std::string> seen[kThreads];
    std::vector<std::thread> running;
    for (int thread = 0; thread < kThreads; ++thread) {
        running.emplace_back([&path, &seen, thread] {
            for (int i = 0; i < kKeys; ++i) {
                const std::string key = "k" + std::to_string(i);
                EXPECT_TRUE(writeProfile(path.c_str(), "s", key.c_str(),
                                         std::to_string(thread).c_str(),
                                         qel::platform::ProfileWrite::kIfMissing));
                const std::string own = "own" + std::to_string(thread * kKeys + i);
                EXPECT_TRUE(writeProfile(path.c_str(), "s", own.c_str(), "v"));
                seen[thread].push_back(get(path, "s", key.c_str()));
            }
        });
    }
    for (std::thread& each : running) each.join();
    for (int thread = 1; thread < kThreads; ++thread) EXPECT_EQ(seen[thread], seen[0]);
    const std::string text = readFile(path);
    EXPECT_EQ(std::count(text.begin(), text.end(), '='), kKeys + kThreads * kKeys) << text;
}

// On a busy computer the lock may stay with others for long. A writer waits while they get on.
TEST(Profile, AWriterWaitsWhileOthersWrite) {
    const TempDir dir;
    const std::string path = dir.file("busy.ini");
    qel::platform::PathLock others;
    ASSERT_EQ(others.acquire(path.c_str(), 1000), qel::platform::LockResult::kLocked);
    bool written = false;
    const auto write = [&] { written = writeProfile(path.c_str(), "s", "k", "v"); };
    std::thread(write).join();
    EXPECT_FALSE(written) << "nobody wrote meanwhile";
    std::thread writer(write);
    for (int i = 0; i < 40; ++i) {
        writeFile(path, "[s]\nother=" + std::to_string(i) + "\n");
        qel::platform::sleepMilliseconds(10);
    }
    others.release();
    writer.join();
    EXPECT_TRUE(written);
}

}  // namespace
