// Text values below a key of the current user's registry. Where there is no registry they are in a
// profile file, registry.ini in the user's profile directory, a section for each key. One thread.
#ifndef QEL_PLATFORM_REGISTRY_H
#define QEL_PLATFORM_REGISTRY_H

#include <cstddef>
#include <cstdint>

namespace qel::platform {

class RegistryKey {
  public:
    enum class Open { kExisting, kCreate };

    RegistryKey() noexcept = default;
    ~RegistryKey() { close(); }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    // `profileDirectory` holds the file that replaces the registry; "" for no file.
    [[nodiscard]] bool open(const char* profileDirectory, const char* key, Open how) noexcept;
    void close() noexcept;

    // Writes the text with its terminator. False when it cannot be written, or would not read back.
    bool set(const char* name, const char* text) noexcept;
    // False, with an empty text, when there is no such value or it does not fit.
    [[nodiscard]] bool get(const char* name, char* out, std::size_t room) const noexcept;

  private:
    std::uintptr_t handle_ = 0;
    char file_[512] = "";
    char section_[256] = "";
};

}  // namespace qel::platform

#endif
