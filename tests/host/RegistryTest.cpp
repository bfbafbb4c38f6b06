#include "platform/Registry.h"

#include <gtest/gtest.h>

#include <string>

#include "QelUtility/BxHost.h"
#include "QelUtility/IRMonitorManager.h"
#include "host/ScratchRegistry.h"

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
    EXPECT_FALSE(key.open("", "", RegistryKey::Open::kCreate));
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
    manager->Release();
}

}  // namespace
