// A registry root of a test's own, removed with what is in it. One at a time.
#ifndef QEL_TESTS_HOST_SCRATCHREGISTRY_H
#define QEL_TESTS_HOST_SCRATCHREGISTRY_H

#include <string>

namespace qel::test {

class ScratchRegistry {
  public:
    ScratchRegistry();   // becomes the library's registry root
    ~ScratchRegistry();  // the default comes back
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;
    [[nodiscard]] const std::string& key() const { return key_; }

  private:
    std::string key_;
};

}  // namespace qel::test

#endif
