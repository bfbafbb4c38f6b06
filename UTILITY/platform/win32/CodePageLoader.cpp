#include "platform/win32/CodePageLoader.h"

namespace qel::platform {
namespace {

class RealSystem final : public CodePageSystem {
  public:
    Family family() override {
        OSVERSIONINFOA version = {};
        static_assert(sizeof version == 148);
        version.dwOSVersionInfoSize = sizeof version;
        if (!GetVersionExA(&version)) return Family::kUnknown;
        return version.dwPlatformId == VER_PLATFORM_WIN32_NT ? Family::kNt : Family::k9x;
    }
    HMODULE load(const char* module) override { return LoadLibraryA(module); }
    FARPROC find(HMODULE module, const char* function) override {
        return GetProcAddress(module, function);
    }
    void unload(HMODULE module) override { FreeLibrary(module); }
};

template <typename Function>
Function as(FARPROC found) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

}  // namespace

CodePageSystem& thisSystem() {
    static RealSystem system;
    return system;
}

bool CodePageLoader::obtain() {
    switch (system_.family()) {
        case CodePageSystem::Family::kUnknown:
            return decode_ != nullptr && encode_ != nullptr;
        case CodePageSystem::Family::kNt:
            decode_ = &::MultiByteToWideChar;
            encode_ = &::WideCharToMultiByte;
            return true;
        case CodePageSystem::Family::k9x:
            break;
    }
    return module_ != nullptr || obtainFromModule();
}

bool CodePageLoader::obtainFromModule() {
    HMODULE module = system_.load("unicows.dll");
    if (module == nullptr) return false;
    const auto decode = as<DecodeFunction>(system_.find(module, "MultiByteToWideChar"));
    const auto encode = decode == nullptr
                            ? nullptr
                            : as<EncodeFunction>(system_.find(module, "WideCharToMultiByte"));
    if (encode == nullptr) {
        system_.unload(module);
        return false;
    }
    decode_ = decode;
    encode_ = encode;
    module_ = module;
    return true;
}

}  // namespace qel::platform
