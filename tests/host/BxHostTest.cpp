#include "QelUtility/BxHost.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

bool fixedText(char* buffer, unsigned long size) {
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

bool empty(char* buffer, unsigned long) {
    buffer[0] = '\0';
    return true;
}

TEST(BxHost, TheHostGivesTheProfileDirectoryAndTheModel) {
    char buffer[260] = "old";
    ASSERT_TRUE(GetProfileDirectoryWithUserName(buffer, sizeof buffer));
    EXPECT_TRUE(std::filesystem::is_directory(buffer));
    EXPECT_EQ(std::filesystem::path(buffer).filename(), "QelUtility");
    char tiny[4] = "old";
    EXPECT_FALSE(GetProfileDirectoryWithUserName(tiny, sizeof tiny));
    EXPECT_STREQ(tiny, "");
    EXPECT_FALSE(GetProfileDirectoryWithUserName(nullptr, 10));
    EXPECT_FALSE(GetProfileDirectoryWithUserName(buffer, 0));
    EXPECT_FALSE(GetCurrentModelID(buffer, sizeof buffer)) << "there is no model by default";
    EXPECT_STREQ(buffer, "");

    BxHost_SetProfileDirectorySource(&fixedText);
    BxHost_SetModelIDSource(&fixedText);
    for (const BxHostTextSource get : {&GetProfileDirectoryWithUserName, &GetCurrentModelID}) {
        EXPECT_TRUE(get(buffer, sizeof buffer));
        EXPECT_STREQ(buffer, "/profiles/anna");
    }
    for (const BxHostTextSource source : {&unterminated, &failing, &empty}) {
        BxHost_SetProfileDirectorySource(source);
        BxHost_SetModelIDSource(source);
        for (const BxHostTextSource get : {&GetProfileDirectoryWithUserName, &GetCurrentModelID}) {
            EXPECT_FALSE(get(buffer, sizeof buffer));
            EXPECT_STREQ(buffer, "");
        }
    }
    BxHost_SetModelIDSource(nullptr);
    BxHost_SetProfileDirectorySource(nullptr);
    EXPECT_TRUE(GetProfileDirectoryWithUserName(buffer, sizeof buffer));
}

TEST(BxHost, BrandStringsMakeTheRegistryRoot) {
    char buffer[600];
    const auto root = [&buffer] {
        EXPECT_TRUE(BxHost_GetRegistryRoot(buffer, sizeof buffer));
        return std::string(buffer);
    };
    EXPECT_EQ(root(), "Software\\Halverd\\Linkup");
    EXPECT_FALSE(BxHost_GetRegistryRoot(buffer, 23));
    EXPECT_TRUE(BxHost_GetRegistryRoot(buffer, 24));
    BxHost_SetString(BXHOST_COMPANY, std::string(400, 'c').c_str());
    EXPECT_EQ(root(), "Software\\" + std::string(255, 'c') + "\\Linkup");
    EXPECT_FALSE(BxHost_GetString(BXHOST_COMPANY, buffer, 255));
    EXPECT_STREQ(buffer, "");
    BxHost_SetRegistryRoot("Software\\Other");
    EXPECT_EQ(root(), "Software\\Other");
    BxHost_SetRegistryRoot(nullptr);
    BxHost_SetString(BXHOST_COMPANY, nullptr);
    EXPECT_EQ(root(), "Software\\Halverd\\Linkup");
    EXPECT_FALSE(BxHost_GetString(static_cast<BxHostString>(99), buffer, sizeof buffer));
    BxHost_SetString(static_cast<BxHostString>(-1), "ignored");
}

}  // namespace
