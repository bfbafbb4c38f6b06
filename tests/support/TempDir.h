// A fresh directory for one test, removed with all it holds when the object goes. One thread.
#ifndef QEL_TESTS_SUPPORT_TEMPDIR_H
#define QEL_TESTS_SUPPORT_TEMPDIR_H

#include <filesystem>
#include <string>

namespace qel::test {

class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    // The full name of `name` inside, with the platform's separators.
    [[nodiscard]] std::string file(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

// The whole file as bytes; empty when it cannot be read.
[[nodiscard]] std::string readFile(const std::string& path);
// Replaces the file by `bytes`; throws std::runtime_error when it cannot be written.
void writeFile(const std::string& path, const std::string& bytes);

}  // namespace qel::test

#endif
