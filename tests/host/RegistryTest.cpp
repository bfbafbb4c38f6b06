#include "platform/Registry.h"

#include <gtest/gtest.h>

#include <string>

#include "QelUtility/BxHost.h"
#include "QelUtility/IRMonitorManager.h"
#include "host/ScratchRegistry.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "support/Environment.h"
#include "support/TempDir.h"

namespace {

using qel::platform::RegistryKey;
using qel::test::ScratchRegistry;

bool openScratch(RegistryKey& key, const ScratchRegistry& scratch, RegistryKey::Open how) {
    char directory[512];
    EXPECT_TRUE(GetProfileDirectoryWithUserName(directory, sizeof directory));
    return key.open(directory, scratch.key().c_str(), how);
}

std::string valueOf(const ScratchRegistry& scratch, const char* name) {
    RegistryKey key;
    char text[256];
    if (!openScratch(key, scratch, RegistryKey::Open::kExisting)) return "(no key)";
    return key.get(name, text, sizeof text) ? text : "(no value)";
}

TEST(Registry, ValuesComeBackAsTheyWereSet) {
    const ScratchRegistry scratch;
    RegistryKey key;
    EXPECT_FALSE(openScratch(key, scratch, RegistryKey::Open::kExisting));
    EXPECT_FALSE(key.set("Name", "text"));
    ASSERT_TRUE(openScratch(key, scratch, RegistryKey::Open::kCreate));
    for (const char* text : {"NAME=USB ", "  both  ", "\"quoted\"", "a;b=c[d]", "'", "\"",
                             "{4E07B7D5-232E-4c8c-8CE2-B7E5980603AF}"}) {
        EXPECT_TRUE(key.set("Value", text));
        EXPECT_EQ(valueOf(scratch, "vaLUE"), text);
    }
    char small[16];
    EXPECT_FALSE(key.get("Value", small, sizeof small)) << "38 characters do not fit into 16";
    EXPECT_STREQ(small, "");
    EXPECT_FALSE(key.get("Missing", small, sizeof small));
    key.close();
    EXPECT_FALSE(key.set("Value", "closed"));
    EXPECT_FALSE(key.get("Value", small, sizeof small));
    EXPECT_FALSE(key.get("Value", small, 0));
    EXPECT_FALSE(key.open("", "", RegistryKey::Open::kCreate));
    if (qel::platform::kPathSeparator == '\\') return;
    // What does not fit into a profile file or its path.
    const std::string far(2000, 'f');
    EXPECT_FALSE(key.open("/tmp", "", RegistryKey::Open::kCreate));
    EXPECT_FALSE(key.open("/tmp", "a]b", RegistryKey::Open::kCreate));
    EXPECT_FALSE(key.open("/tmp", far.c_str(), RegistryKey::Open::kCreate));
    EXPECT_FALSE(key.open(("/tmp/" + far).c_str(), "key", RegistryKey::Open::kCreate));
    ASSERT_TRUE(openScratch(key, scratch, RegistryKey::Open::kCreate));
    EXPECT_FALSE(key.set("Value", far.c_str()));
}

TEST(TransportSelection, IsWrittenBelowTheRegistryRootAndReadBack) {
    const ScratchRegistry scratch;
    IRMonitorManager* manager = IRMonitorManager::getManager();
    EXPECT_FALSE(manager->isIRSelected());
    manager->selectIR();
    EXPECT_TRUE(manager->isIRSelected());
    EXPECT_EQ(valueOf(scratch, "TransportParam"),
              "NAME=  GUIDS={DC623A55-9F72-4ca8-98E1-07A529275F3D}");
    EXPECT_EQ(valueOf(scratch, "CurrentIRParam"), "NAME=OBEX ");
    EXPECT_EQ(valueOf(scratch, "CurrentUSBParam"), "(no value)");
    EXPECT_EQ(valueOf(scratch, "Selected_Transport"), "3");
    manager->deselectIR();
    EXPECT_FALSE(manager->isIRSelected());
    EXPECT_EQ(valueOf(scratch, "TransportParam"),
              "NAME=USB  GUIDS={4E07B7D5-232E-4c8c-8CE2-B7E5980603AF}");
    EXPECT_EQ(valueOf(scratch, "CurrentUSBParam"), "NAME=USB ");
    EXPECT_EQ(valueOf(scratch, "Selected_Transport"), "1");

    // The host's texts; empty identifiers fall out of the list.
    BxHost_SetString(BXHOST_IR_TRANSPORT_NAME, "Infrared");
    BxHost_SetString(BXHOST_IR_TRANSPORT_GUIDS, ",{A},{B},,");
    manager->selectIR();
    EXPECT_EQ(valueOf(scratch, "TransportParam"), "NAME=Infrared  GUIDS={A},{B}");
    BxHost_SetString(BXHOST_IR_TRANSPORT_NAME, nullptr);
    BxHost_SetString(BXHOST_IR_TRANSPORT_GUIDS, nullptr);

    // Sixteen bytes are read: a longer value counts as missing.
    RegistryKey key;
    ASSERT_TRUE(openScratch(key, scratch, RegistryKey::Open::kCreate));
    key.set("Selected_Transport", "3 and so on");
    EXPECT_TRUE(manager->isIRSelected());
    key.set("Selected_Transport", "3 and so on, too long");
    EXPECT_FALSE(manager->isIRSelected());

    if (qel::platform::kPathSeparator == '/') {
        // Without a place for it nothing is selected: the folder cannot be made.
        const qel::test::TempDir dir;
        qel::test::writeFile(dir.file("QelUtility"), "");
        char state[4096];
        ASSERT_TRUE(qel::platform::environment("XDG_STATE_HOME", state, sizeof state));
        for (const std::string& place : {dir.file("QelUtility/below"), dir.path().string()}) {
            qel::test::setEnvironment("XDG_STATE_HOME", place);
            char directory[512] = "old";
            EXPECT_FALSE(GetProfileDirectoryWithUserName(directory, sizeof directory));
            EXPECT_STREQ(directory, "");
            manager->selectIR();
            EXPECT_FALSE(manager->isIRSelected());
        }
        qel::test::setEnvironment("XDG_STATE_HOME", state);
    }

    // A root that is longer than any key: nothing is selected.
    const std::string longest(255, 'x');
    BxHost_SetRegistryRoot(nullptr);
    for (const BxHostString each : {BXHOST_COMPANY, BXHOST_PRODUCT})
        BxHost_SetString(each, longest.c_str());
    manager->selectIR();
    EXPECT_FALSE(manager->isIRSelected());
    manager->deselectIR();
    for (const BxHostString each : {BXHOST_COMPANY, BXHOST_PRODUCT})
        BxHost_SetString(each, nullptr);
    manager->Release();
}

}  // namespace
