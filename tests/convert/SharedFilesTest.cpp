// Every calendar file of the public data: it converts, nothing is lost in silence, and what both
// formats can hold comes back as it went.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "convert/Conversions.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

using namespace qel::convert;
namespace fs = std::filesystem;

std::vector<fs::path> filesIn(const char* folder, const char* extension) {
    std::vector<fs::path> files;
    const fs::path root = fs::path(QEL_TEST_SHARED_DATA) / folder;
    std::error_code failure;
    for (const auto& each : fs::directory_iterator(root, failure))
        if (each.path().extension() == extension) files.push_back(each.path());
    std::sort(files.begin(), files.end());
    return files;
}

TEST(SharedFiles, VCalendarComesBackFromICalendar) {
    const std::vector<fs::path> files = filesIn("vcs", ".vcs");
    if (files.empty()) GTEST_SKIP() << "no public files at " << QEL_TEST_SHARED_DATA;
    std::uint64_t entries = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string before = readFile(file.string());
        const Conversion there = toICalendar(before);
        EXPECT_EQ(faultOf(there.out), "");
        EXPECT_EQ(toICalendar(before).out, there.out);
        const Conversion back = toVCalendar(there.out);
        EXPECT_EQ(entryDifferences(before, back.out), "");
        entries += there.counts.entries;
    }
    std::cout << files.size() << " files, " << entries << " entries\n";
}

TEST(SharedFiles, ICalendarConverts) {
    const std::vector<fs::path> files = filesIn("ics", ".ics");
    if (files.empty()) GTEST_SKIP() << "no public files at " << QEL_TEST_SHARED_DATA;
    std::uint64_t entries = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string before = readFile(file.string());
        const Conversion there = toVCalendar(before);
        EXPECT_EQ(toVCalendar(before).out, there.out);
        const Conversion back = toICalendar(there.out);
        EXPECT_EQ(faultOf(back.out), "");
        EXPECT_EQ(entriesOf(before).size(), entriesOf(back.out).size());
        entries += there.counts.entries;
    }
    std::cout << files.size() << " files, " << entries << " entries\n";
}

}  // namespace
}  // namespace qel::test
