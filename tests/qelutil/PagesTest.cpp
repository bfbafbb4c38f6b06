// The generated files of the tree are up to date: manual pages, completions, the notes.
#include <filesystem>

#include "Qelutil.h"

namespace qel::test {
namespace {

namespace fs = std::filesystem;

TEST_F(QelutilTest, GeneratedFilesAreUpToDate) {
    ASSERT_EQ(runProcess(QELUTIL_PAGES, {state_.path().string()}).exitCode, 0);
    const fs::path tree = QEL_TEST_SOURCE_DIR;
    std::size_t pages = 0;
    for (const auto& each : fs::recursive_directory_iterator(state_.path())) {
        if (!each.is_regular_file()) continue;
        ++pages;
        const fs::path name = fs::relative(each.path(), state_.path());
        EXPECT_EQ(readFile(each.path().string()), readFile((tree / name).string()))
            << name << " is out of date: run ./dev pages";
    }
    EXPECT_GE(pages, 18U);
    // No page of a command that is gone.
    for (const auto& each : fs::directory_iterator(tree / "docs" / "man"))
        EXPECT_TRUE(fs::exists(state_.path() / "docs" / "man" / each.path().filename()))
            << each.path();
}

}  // namespace
}  // namespace qel::test
