// Every calendar file of the public data: it converts, nothing is lost in silence, and what both
// formats can hold comes back as it went.
#include <gtest/gtest.h>

#include <filesystem>

#include "calendar/Conversions.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

using namespace qel::calendar;
namespace fs = std::filesystem;

TEST(SharedFiles, ConvertAndComeBack) {
    std::size_t count = 0;
    std::uint64_t entries = 0;
    for (const bool phone : {true, false}) {
        const auto convert = phone ? toICalendar : toVCalendar;
        const auto convertBack = phone ? toVCalendar : toICalendar;
        for (const fs::path& file : publicFiles(phone ? "vcs" : "ics")) {
            SCOPED_TRACE(file.filename().string());
            const std::string before = readFile(file.string());
            const Conversion there = convert(before);
            EXPECT_EQ(convert(before).out, there.out);
            const Conversion back = convertBack(there.out);
            EXPECT_EQ(faultOf(phone ? there.out : back.out), "");
            EXPECT_EQ(entriesOf(before).size(), entriesOf(back.out).size());
            EXPECT_EQ(phone ? entryDifferences(before, back.out) : "", "");
            entries += there.counts.entries;
            ++count;
        }
    }
    if (count == 0) GTEST_SKIP() << "no public files at " << QEL_TEST_SHARED_DATA;
    std::cout << count << " files, " << entries << " entries\n";
}

}  // namespace
}  // namespace qel::test
