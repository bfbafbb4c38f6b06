#include "host/ScratchRegistry.h"

#include <windows.h>

#include "QelUtility/BxHost.h"

namespace qel::test {

namespace {

const char kParent[] = "Software\\QelUtility Test";

}  // namespace

ScratchRegistry::ScratchRegistry() : key_(std::string(kParent) + "\\Scratch") {
    RegDeleteKeyA(HKEY_CURRENT_USER, key_.c_str());
    BxHost_SetRegistryRoot(key_.c_str());
}

ScratchRegistry::~ScratchRegistry() {
    BxHost_SetRegistryRoot(nullptr);
    RegDeleteKeyA(HKEY_CURRENT_USER, key_.c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, kParent);
}

}  // namespace qel::test
