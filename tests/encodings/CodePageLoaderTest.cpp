// Which functions convert on which Windows: played on a system of either family.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/win32/CodePageLoader.h"

namespace {

using namespace qel::platform;
using Family = CodePageSystem::Family;

class ScriptedSystem : public CodePageSystem {
  public:
    Family family() override { return now; }
    HMODULE load(const char* module) override {
        calls.push_back(std::string("load ") + module);
        return loads ? thisSystem().load("kernel32.dll") : nullptr;
    }
    FARPROC find(HMODULE module, const char* function) override {
        calls.push_back(std::string("find ") + function);
        return function == missing ? nullptr : thisSystem().find(module, function);
    }
    void unload(HMODULE module) override {
        calls.emplace_back("unload");
        thisSystem().unload(module);
    }

    Family now = Family::k9x;
    bool loads = true;
    std::string missing;
    std::vector<std::string> calls;
};

TEST(CodePageLoader, FollowsTheFamily) {
    ScriptedSystem system;
    CodePageLoader loader(system);
    system.now = Family::kUnknown;
    EXPECT_FALSE(loader.obtain());
    system.now = Family::kNt;
    EXPECT_TRUE(loader.obtain());
    EXPECT_NE(loader.decode(), nullptr);
    EXPECT_TRUE(system.calls.empty());
    system.now = Family::kUnknown;
    EXPECT_TRUE(loader.obtain()) << "what was obtained once stays";
}

TEST(CodePageLoader, LoadsThe9xModuleOnceItIsWhole) {
    ScriptedSystem system;
    CodePageLoader loader(system);
    system.loads = false;
    EXPECT_FALSE(loader.obtain());
    system.loads = true;
    system.missing = "WideCharToMultiByte";
    EXPECT_FALSE(loader.obtain());
    system.missing = "MultiByteToWideChar";
    EXPECT_FALSE(loader.obtain());
    EXPECT_EQ(loader.decode(), nullptr);
    system.missing.clear();
    EXPECT_TRUE(loader.obtain());
    EXPECT_TRUE(loader.obtain());
    const std::vector<std::string> expected = {"load unicows.dll",
                                               "load unicows.dll",
                                               "find MultiByteToWideChar",
                                               "find WideCharToMultiByte",
                                               "unload",
                                               "load unicows.dll",
                                               "find MultiByteToWideChar",
                                               "unload",
                                               "load unicows.dll",
                                               "find MultiByteToWideChar",
                                               "find WideCharToMultiByte"};
    EXPECT_EQ(system.calls, expected);
}

}  // namespace
