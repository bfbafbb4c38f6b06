// The trace, the files and what the host gives, through the shared library alone.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "QelUtility/QelUtility.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"

namespace {

TEST(InterfaceHost, EveryErrorAndTraceReachesTheLog) {
    const qel::test::TraceCapture log;
    EXPECT_EQ(BxTrace_Error("a", 1, 5, 2001), 2001);
    EXPECT_EQ(BxTrace_Error_L("a", 2, 16L, 2002), 2002);
    EXPECT_EQ(BxTrace_Error_S("a", 3, "t", 2003), 2003);
    EXPECT_EQ(BxTrace_Error_SS("a", 4, "t", "u", 2004), 2004);
    EXPECT_EQ(BxTrace_Error_SL("a", 5, "t", 6L, 2005), 2005);
    EXPECT_EQ(BxTrace_Error_SSL("a", 6, "t", "u", 6L, 2006), 2006);
    EXPECT_EQ(BxTrace_Error_SI64L("a", 7, "t", 255, 6L, 2007), 2007);
    EXPECT_TRUE(log.hasError("0x10.16.2002", "a", 2));
    EXPECT_TRUE(log.hasError("t.ff.6.2007", "a", 7));
    EXPECT_EQ(BxTrace_Trace00("plain"), 0);
    EXPECT_EQ(BxTrace_Trace1("a", 8, "placed"), 0);
    EXPECT_EQ(BxTrace_Tracef("%d-%s", 9, "formatted"), 0);
    EXPECT_EQ(BxTrace_VTrace(0, "level %d", 0), 0);
    EXPECT_EQ(BxTrace_VTrace_TS(0, "level %d", 0), 0);
    EXPECT_EQ(BxTrace_OTrace_TS(BXTRACE_DEFAULT, "masked"), 0);
    BxTrace_WriteHex(BXTRACE_DEFAULT, reinterpret_cast<const unsigned char*>("AB"), 2);
    BxTrace_FlushRetroBuffers();
    EXPECT_GE(log.lines().size(), 14U);
}

TEST(InterfaceHost, OptionsAndLogFiles) {
    EXPECT_EQ(BxTrace_GetTracingOptions(), 1);
    EXPECT_NE(std::strlen(BxTrace_GetRunDirWithTrailingBackslash()), 0U);
    EXPECT_NE(std::strstr(BxTrace_GetLogFilePath(), ".log"), nullptr);
    EXPECT_NE(std::strlen(BxTrace_GetOptionsFilePath()), 0U);
    BxTrace_SetOptionValue("Test", "Decimal", 12);
    BxTrace_SetHexOptionValue("Test", "Hex", 0xAB);
    int value = 0;
    BxTrace_GetOptionValue("Test", "Decimal", value);
    EXPECT_EQ(value, 12);
    BxTrace_GetHexOptionValue("Test", "Hex", value);
    EXPECT_EQ(value, 0xAB);
    EXPECT_EQ(BxTrace_MusicalBackups("no-dot-in-this-name", 3), -1);
    EXPECT_EQ(BxTrace_ErrorLogDelete(), 0);
    BxTrace_Trace00("something to rotate");
    EXPECT_EQ(BxTrace_BackupLogFile(), 0);
}

TEST(InterfaceHost, Files) {
    EXPECT_STREQ(CleanseFilename("a/b:c"), "a_b_c");
    WriteToUserLog("an entry");
    const qel::test::TempDir folder;
    qel::test::writeFile(folder.file("f"), "content");
    unsigned char* data = nullptr;
    unsigned long size = 0;
    ASSERT_EQ(BxFile_LoadFile(folder.file("f").c_str(), &data, &size), 0);
    EXPECT_EQ(size, 7UL);
    std::free(data);
}

TEST(InterfaceHost, TheInfraredMonitor) {
    IRMonitorManager* manager = IRMonitorManager::getManager();
    ASSERT_NE(manager, nullptr);
    manager->setMustStart();
    manager->setMustStop();
    EXPECT_TRUE(manager->MustStart() && manager->MustStop());
    manager->selectIR();
    EXPECT_TRUE(manager->isIRSelected());
    manager->deselectIR();
    EXPECT_FALSE(manager->isIRSelected());
    // Not called here: they act on the machine's own services.
    EXPECT_NE(&IRMonitorManager::startIrMon, nullptr);
    EXPECT_NE(&IRMonitorManager::stopIrMon, nullptr);
    EXPECT_NE(&IRMonitorManager::isIRInstalled, nullptr);
    manager->Release();
}

}  // namespace
