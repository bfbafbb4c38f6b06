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

struct Loaded {
    int code;
    std::string bytes;
    bool terminated;
};

Loaded load(const std::string& path) {
    unsigned char* data = nullptr;
    unsigned long size = 99;
    const int code = BxFile_LoadFile(path.c_str(), &data, &size);
    Loaded result{code, {}, false};
    if (data != nullptr) {
        result.bytes.assign(reinterpret_cast<char*>(data), size);
        result.terminated = data[size] == 0;
    } else {
        EXPECT_EQ(size, 0U);
    }
    std::free(data);
    return result;
}

TEST(BxFileLoad, GivesTheBytesAndAZeroBehindThem) {
    const TempDir dir;
    std::string bytes("a\0\r\n\x1A z", 8);
    for (int i = 0; i < 12; ++i) bytes += bytes;
    for (const std::string& content : {std::string(), bytes}) {
        writeFile(dir.file("f"), content);
        const Loaded loaded = load(dir.file("f"));
        EXPECT_EQ(loaded.code, 0);
        EXPECT_EQ(loaded.bytes, content);
        EXPECT_TRUE(loaded.terminated);
    }
    const TraceCapture trace;
    EXPECT_EQ(load(dir.file("missing")).code, 2005);
    EXPECT_EQ(load(dir.path().string()).code, 2005) << "a directory";
    EXPECT_TRUE(trace.lines().empty()) << "an open that fails is not logged";
    unsigned long size = 0;
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
    WriteToUserLog(nullptr);
    WriteToUserLog(std::string(300000, 'm').c_str());
    std::string separator = "\n-";
    for (int i = 1; i < 40; ++i) separator += " -";
    std::string text = readFile(dir.file("SyncML.log"));
    std::erase(text, '\r');
    const std::string expected = separator + "\nOn DATE\nSync 100% %s done \n" + separator +
                                 "\nOn DATE\n(null) \n" + separator + "\nOn DATE\n" +
                                 std::string(300000, 'm') + " \n";
    std::string masked = text;
    constexpr std::size_t kDateLength = 17;  // "11/21/26 14:15:25"
    for (std::size_t at = 0; (at = masked.find("\nOn ", at)) != std::string::npos; at += 4)
        masked.replace(at + 4, kDateLength, "DATE");
    EXPECT_EQ(masked, expected);

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
