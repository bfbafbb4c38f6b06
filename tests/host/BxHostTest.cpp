#include "QelUtility/BxHost.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

bool fixedDirectory(char* buffer, unsigned long size) {
    return static_cast<unsigned long>(std::snprintf(buffer, size, "/profiles/anna")) < size;
}

bool unterminated(char* buffer, unsigned long size) {
    std::memset(buffer, 'x', size);
    return true;
}

bool failing(char* buffer, unsigned long size) {
    std::snprintf(buffer, size, "left over");
    return false;
}

TEST(BxHost, ProfileDirectoryIsMadeByDefaultAndReplacedByTheHost) {
    char buffer[260] = "old";
    ASSERT_TRUE(GetProfileDirectoryWithUserName(buffer, sizeof buffer));
    EXPECT_TRUE(std::filesystem::is_directory(buffer));
    EXPECT_EQ(std::filesystem::path(buffer).filename(), "QelUtility");
    char tiny[4] = "old";
    EXPECT_FALSE(GetProfileDirectoryWithUserName(tiny, sizeof tiny));
    EXPECT_STREQ(tiny, "");
    EXPECT_FALSE(GetProfileDirectoryWithUserName(nullptr, 10));
    EXPECT_FALSE(GetProfileDirectoryWithUserName(buffer, 0));

    BxHost_SetProfileDirectorySource(&fixedDirectory);
    EXPECT_TRUE(GetProfileDirectoryWithUserName(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "/profiles/anna");
    for (const BxHostTextSource source : {&unterminated, &failing}) {
        BxHost_SetProfileDirectorySource(source);
        EXPECT_FALSE(GetProfileDirectoryWithUserName(buffer, sizeof buffer));
        EXPECT_STREQ(buffer, "");
    }
    BxHost_SetProfileDirectorySource(nullptr);
    EXPECT_TRUE(GetProfileDirectoryWithUserName(buffer, sizeof buffer));
}

TEST(BxHost, ThereIsNoModelUntilTheHostNamesOne) {
    char buffer[128] = "old";
    EXPECT_FALSE(GetCurrentModelID(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "");
    BxHost_SetModelIDSource(&fixedDirectory);
    EXPECT_TRUE(GetCurrentModelID(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "/profiles/anna");
    BxHost_SetModelIDSource(nullptr);
}

TEST(BxHost, BrandStringsMakeTheRegistryRoot) {
    char buffer[600];
    EXPECT_TRUE(BxHost_GetRegistryRoot(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "Software\\Halverd\\Linkup");
    const std::string longText(400, 'c');
    BxHost_SetString(BXHOST_COMPANY, longText.c_str());
    EXPECT_TRUE(BxHost_GetRegistryRoot(buffer, sizeof buffer));
    EXPECT_EQ(buffer, "Software\\" + longText.substr(0, 255) + "\\Linkup");
    EXPECT_FALSE(BxHost_GetString(BXHOST_COMPANY, buffer, 255));
    EXPECT_STREQ(buffer, "");
    BxHost_SetString(BXHOST_COMPANY, nullptr);
    BxHost_SetRegistryRoot("Software\\Other");
    EXPECT_TRUE(BxHost_GetRegistryRoot(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "Software\\Other");
    BxHost_SetRegistryRoot(nullptr);
    EXPECT_FALSE(BxHost_GetRegistryRoot(buffer, 23));
    EXPECT_TRUE(BxHost_GetRegistryRoot(buffer, 24));
    EXPECT_FALSE(BxHost_GetString(static_cast<BxHostString>(99), buffer, sizeof buffer));
    BxHost_SetString(static_cast<BxHostString>(-1), "ignored");
}

}  // namespace
