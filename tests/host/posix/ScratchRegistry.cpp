#include "host/ScratchRegistry.h"

#include <cstdio>

#include "QelUtility/BxHost.h"

namespace qel::test {

namespace {

void removeStandIn() {
    char directory[512];
    if (GetProfileDirectoryWithUserName(directory, sizeof directory))
        std::remove((std::string(directory) + "/registry.ini").c_str());
}

}  // namespace

ScratchRegistry::ScratchRegistry() : key_("Software\\QelUtility Test\\Scratch") {
    removeStandIn();
    BxHost_SetRegistryRoot(key_.c_str());
}

ScratchRegistry::~ScratchRegistry() {
    BxHost_SetRegistryRoot(nullptr);
    removeStandIn();
}

}  // namespace qel::test
