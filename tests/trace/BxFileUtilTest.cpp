#include "QelUtility/BxFileUtil.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "QelUtility/BxHost.h"
#include "platform/Files.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"
#include "trace/BxFileUtilInternal.h"

namespace {

using qel::test::readFile;
using qel::test::TempDir;
using qel::test::TraceCapture;
using qel::test::writeFile;
namespace fs = std::filesystem;
using qel::platform::kPathSeparator;

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

TEST(BxFileSave, ReplacesAndReportsWhatCannotBeWritten) {
    const TempDir dir;
    EXPECT_EQ(BxFile_SaveFile(dir.file("f").c_str(), "long content", 12), 0);
    EXPECT_EQ(BxFile_SaveFile(dir.file("f").c_str(), "a\n", 2), 0);
    EXPECT_EQ(readFile(dir.file("f")), "a\n");
    EXPECT_EQ(BxFile_SaveFile(dir.file("f").c_str(), nullptr, 0), 0);
    EXPECT_EQ(readFile(dir.file("f")), "");
    const TraceCapture trace;
    EXPECT_EQ(BxFile_SaveFile(dir.file("no/f").c_str(), "a", 1), 2005);
    EXPECT_TRUE(trace.hasError("2.2005", "BxFileUtil")) << "errno is the detail";
    EXPECT_EQ(BxFile_SaveFile(dir.file("f").c_str(), nullptr, 5), 2008);
    EXPECT_EQ(BxFile_SaveFile(nullptr, "a", 1), 2005);
    EXPECT_EQ(trace.errors().size(), 3U);
    if (kPathSeparator == '\\' || !fs::exists("/dev/full")) return;
    // Through a link: the device itself must not be in the way of anything that removes files.
    fs::create_symlink("/dev/full", dir.file("full"));
    EXPECT_EQ(BxFile_SaveFile(dir.file("full").c_str(), "content", 7), 2008);
    EXPECT_TRUE(trace.hasError("28.2008", "BxFileUtil"));
}

TEST(BxFileDelete, RemovesFilesAlone) {
    const TempDir dir;
    writeFile(dir.file("f"), "x");
    fs::create_directory(dir.file("d"));
    const TraceCapture trace;
    EXPECT_EQ(BxFile_DeleteFile(dir.file("f").c_str()), 0);
    EXPECT_FALSE(fs::exists(dir.file("f")));
    EXPECT_EQ(BxFile_DeleteFile(dir.file("f").c_str()), 2009);
    EXPECT_EQ(BxFile_DeleteFile(dir.file("d").c_str()), 2009);
    EXPECT_EQ(BxFile_DeleteFile(nullptr), 2009);
    EXPECT_TRUE(fs::exists(dir.file("d")));
    EXPECT_EQ(trace.errors().size(), 3U);
    EXPECT_TRUE(trace.hasError("2.2009", "BxFileUtil"));
}

TEST(BxFileCopy, LosesNeitherSourceNorTargetByAFailure) {
    const TempDir dir;
    const std::string from = dir.file("from");
    const std::string to = dir.file("to");
    writeFile(from, "new");
    EXPECT_EQ(BxFile_CopyFile(from.c_str(), to.c_str(), true), 0);
    EXPECT_EQ(readFile(to), "new");
    writeFile(to, "older");
    EXPECT_EQ(BxFile_CopyFile(from.c_str(), to.c_str(), true), -1);
    EXPECT_EQ(readFile(to), "older");
    EXPECT_EQ(BxFile_CopyFile(dir.file("missing").c_str(), to.c_str(), false), -1);
    EXPECT_EQ(readFile(to), "older") << "a source that cannot be read costs nothing";
    EXPECT_EQ(BxFile_CopyFile(from.c_str(), to.c_str(), false), 0);
    EXPECT_EQ(readFile(to), "new");
    EXPECT_EQ(BxFile_CopyFile(from.c_str(), from.c_str(), false), 0);
    EXPECT_EQ(readFile(from), "new") << "onto itself";
    EXPECT_EQ(BxFile_CopyFile(from.c_str(), dir.path().string().c_str(), false), -1);
    EXPECT_EQ(BxFile_CopyFile(nullptr, to.c_str(), false), -1);
    EXPECT_EQ(BxFile_CopyFile(from.c_str(), nullptr, false), -1);
}

TEST(BxFileSize, OfStreamsAndPaths) {
    const TempDir dir;
    writeFile(dir.file("f"), "12345");
    EXPECT_EQ(BxFile_GetPathSize(dir.file("f").c_str()), 5U);
    EXPECT_EQ(BxFile_GetPathSize(dir.file("missing").c_str()), ULONG_MAX);
    EXPECT_EQ(BxFile_GetPathSize(nullptr), ULONG_MAX);
    std::FILE* stream = qel::platform::openForRead(dir.file("f").c_str());
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), '1');
    EXPECT_EQ(BxFile_GetFileSize(stream), 5U);
    EXPECT_EQ(std::fgetc(stream), '2');
    std::fclose(stream);
    EXPECT_EQ(BxFile_GetFileSize(nullptr), ULONG_MAX);
}

// --- The user's log -----------------------------------------------------------------------------

std::string profileDirectory;
std::string modelId;

bool give(const std::string& text, char* buffer, unsigned long size) {
    return !text.empty() &&
           static_cast<unsigned long>(std::snprintf(buffer, size, "%s", text.c_str())) < size;
}
bool giveProfile(char* buffer, unsigned long size) {
    return give(profileDirectory, buffer, size);
}
bool giveModel(char* buffer, unsigned long size) {
    return give(modelId, buffer, size);
}

TEST(UserLog, AppendsDatedEntries) {
    const TempDir dir;
    profileDirectory = dir.path().string();
    BxHost_SetProfileDirectorySource(&giveProfile);
    WriteToUserLog("Sync 100% %s done");
    WriteToUserLog(std::string(300000, 'm').c_str());
    WriteToUserLog(nullptr);
    std::string text = readFile(dir.file("SyncML.log"));
    std::erase(text, '\r');
    constexpr std::size_t kDateLength = 17;  // "11/21/26 14:15:25"
    for (std::size_t at = 0; (at = text.find("\nOn ", at)) != std::string::npos; at += 4)
        text.replace(at + 4, kDateLength, "DATE");
    std::string head = "\n-";
    for (int i = 1; i < 40; ++i) head += " -";
    head += "\nOn DATE\n";
    EXPECT_EQ(text, head + "Sync 100% %s done \n" + head + std::string(300000, 'm') + " \n" + head +
                        "(null) \n");

    // A folder that is not there: the entry is lost in silence.
    profileDirectory = dir.file("missing");
    const TraceCapture trace;
    WriteToUserLog("lost");
    profileDirectory.clear();
    WriteToUserLog("lost below the program's own name");
    EXPECT_TRUE(trace.lines().empty());
    BxHost_SetProfileDirectorySource(nullptr);
}

TEST(UserLog, EntriesOfManyStayWhole) {
    const TempDir dir;
    profileDirectory = dir.path().string();
    BxHost_SetProfileDirectorySource(&giveProfile);
    constexpr int kWriters = 3;
    constexpr int kEntries = 40;
    const auto entry = [](int writer) {
        return std::string(50000, static_cast<char>('a' + writer));
    };
    std::vector<std::thread> running;
    for (int writer = 0; writer < kWriters; ++writer)
        running.emplace_back([&entry, writer] {
            for (int i = 0; i < kEntries; ++i) WriteToUserLog(entry(writer).c_str());
        });
    for (std::thread& each : running) each.join();
    BxHost_SetProfileDirectorySource(nullptr);
    std::istringstream log(readFile(dir.file("SyncML.log")));
    int whole = 0;
    for (std::string line; std::getline(log, line);)
        for (int writer = 0; writer < kWriters; ++writer)
            if (line.rfind(entry(writer) + " ", 0) == 0) ++whole;
    EXPECT_EQ(whole, kWriters * kEntries);
}

TEST(UserLog, FolderIsNamedAfterTheModel) {
    char buffer[20] = "old";
    unsigned long size = sizeof buffer;
    EXPECT_EQ(BxUtil_GetUserLogFolderName(buffer, size), 0);
    EXPECT_STREQ(buffer, "NVDATA");
    BxHost_SetModelIDSource(&giveModel);
    modelId = "Model 7/8: a long name";
    EXPECT_EQ(BxUtil_GetUserLogFolderName(buffer, size), 0);
    EXPECT_STREQ(buffer, "Model 7_8_ a long n");
    size = 1;
    EXPECT_EQ(BxUtil_GetUserLogFolderName(buffer, size), 0);
    EXPECT_STREQ(buffer, "");
    size = 0;
    EXPECT_EQ(BxUtil_GetUserLogFolderName(buffer, size), 0);
    EXPECT_EQ(BxUtil_GetUserLogFolderName(nullptr, size), 15133);
    BxHost_SetModelIDSource(nullptr);
}

}  // namespace
