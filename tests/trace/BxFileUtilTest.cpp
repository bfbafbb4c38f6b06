#include "QelUtility/BxFileUtil.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "QelUtility/BxHost.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::readFile;
using qel::test::TempDir;
using qel::test::TraceCapture;
using qel::test::writeFile;

TEST(CleanseFilename, ReplacesWhatPathsAndShellsReadOtherwise) {
    EXPECT_STREQ(CleanseFilename("N:70/x \\?*\"'&.cfg"), "N_70_x ______.cfg");
    EXPECT_STREQ(CleanseFilename("..\xE4|<>"), "..\xE4|<>");
    EXPECT_EQ(CleanseFilename(nullptr).GetLength(), 0);
    EXPECT_EQ(CleanseFilename("").GetLength(), 0);
}

TEST(BxFileLoad, GivesTheBytesAndAZeroAfterThem) {
    const TempDir dir;
    std::string bytes("a\0\r\n\x1A z", 8);
    for (int i = 0; i < 12; ++i) bytes += bytes;
    unsigned char* data = nullptr;
    unsigned long size = 99;
    for (const std::string& content : {std::string(), bytes}) {
        writeFile(dir.file("f"), content);
        ASSERT_EQ(BxFile_LoadFile(dir.file("f").c_str(), &data, &size), 0);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(data), size), content);
        EXPECT_EQ(data[size], 0);
        std::free(data);
    }
    const TraceCapture trace;
    for (const std::string& unreadable : {dir.file("missing"), dir.path().string()}) {
        EXPECT_EQ(BxFile_LoadFile(unreadable.c_str(), &data, &size), 2005);
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(size, 0U);
    }
    EXPECT_TRUE(trace.lines().empty()) << "an open that fails is not logged";
    EXPECT_EQ(BxFile_LoadFile("x", nullptr, &size), 2024);
}

// --- The user's log -----------------------------------------------------------------------------

std::string profileDirectory;

bool giveProfile(char* buffer, unsigned long size) {
    return !profileDirectory.empty() &&
           std::snprintf(buffer, size, "%s", profileDirectory.c_str()) < static_cast<int>(size);
}

TEST(UserLog, AppendsDatedEntries) {
    const TempDir dir;
    profileDirectory = dir.path().string();
    BxHost_SetProfileDirectorySource(&giveProfile);
    WriteToUserLog("Sync 100% %s done");
    WriteToUserLog(std::string(300000, 'm').c_str());
    std::string text = readFile(dir.file("SyncML.log"));
    std::erase(text, '\r');
    constexpr std::size_t kDateLength = 17;  // "11/21/26 14:15:25"
    for (std::size_t at = 0; (at = text.find("\nOn ", at)) != std::string::npos; at += 4)
        text.replace(at + 4, kDateLength, "DATE");
    std::string head = "\n-";
    for (int i = 1; i < 40; ++i) head += " -";
    head += "\nOn DATE\n";
    EXPECT_EQ(text, head + "Sync 100% %s done \n" + head + std::string(300000, 'm') + " \n");

    // A folder that is not there: the entry is lost in silence.
    profileDirectory = dir.file("missing");
    const TraceCapture trace;
    WriteToUserLog("lost");
    profileDirectory.clear();
    WriteToUserLog("lost below the program's own name");
    EXPECT_TRUE(trace.lines().empty());
    BxHost_SetProfileDirectorySource(nullptr);
}

}  // namespace
