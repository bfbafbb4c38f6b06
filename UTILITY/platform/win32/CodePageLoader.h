// Where the conversion functions come from: the system's own on the NT family, "unicows.dll" on the
// 9x family, whose own ones know no Unicode. What is asked of the system goes through an
// interface, so that tests can play a system of the other family. Not guarded: two first uses may
// race, and then both find the same functions.
#ifndef QEL_PLATFORM_WIN32_CODEPAGELOADER_H
#define QEL_PLATFORM_WIN32_CODEPAGELOADER_H

#include <windows.h>

#include <atomic>

namespace qel::platform {

using DecodeFunction = decltype(&::MultiByteToWideChar);
using EncodeFunction = decltype(&::WideCharToMultiByte);

class CodePageSystem {
  public:
    enum class Family { kUnknown, kNt, k9x };

    CodePageSystem() = default;
    CodePageSystem(const CodePageSystem&) = delete;
    CodePageSystem& operator=(const CodePageSystem&) = delete;
    virtual ~CodePageSystem() = default;

    // kUnknown when the version query fails.
    virtual Family family() = 0;
    // Null when the module cannot be loaded.
    virtual HMODULE load(const char* module) = 0;
    virtual FARPROC find(HMODULE module, const char* function) = 0;
    virtual void unload(HMODULE module) = 0;
};

// The system that the library runs on.
CodePageSystem& thisSystem();

class CodePageLoader {
  public:
    explicit CodePageLoader(CodePageSystem& system) : system_(system) {}

    // Asked before each conversion; true when both functions are there. The 9x module, once loaded
    // with both functions in it, stays loaded.
    bool obtain();

    DecodeFunction decode() const { return decode_; }
    EncodeFunction encode() const { return encode_; }

  private:
    bool obtainFromModule();

    CodePageSystem& system_;
    std::atomic<HMODULE> module_{nullptr};
    std::atomic<DecodeFunction> decode_{nullptr};
    std::atomic<EncodeFunction> encode_{nullptr};
};

}  // namespace qel::platform

#endif
