// The numbered backups of a log: "NAME.log" becomes "NAME.bk0", which has become "NAME.bk1" before.
#ifndef QEL_TRACE_ROTATION_H
#define QEL_TRACE_ROTATION_H

namespace qel::trace {

// Whether `path` can be rotated: it is not longer than 511 characters and its file's name has a
// ".", behind which the backups' numbers go.
[[nodiscard]] bool canRotate(const char* path) noexcept;

// Moves `path` and its backups on by one, keeping `count` backups (16 at most; 0 or less deletes
// the file). Returns the result of the last remove or rename, 0 when there was nothing to do.
// REQUIRES: canRotate(path); the caller keeps other threads and processes from rotating the same
// file, as far as that is possible; the file must not be open here.
int rotate(const char* path, int count) noexcept;

// Decides how often the log's size is examined. The writer's mutex guards it.
class SizeCheck {
  public:
    // Counts one open of the log. True when its size is to be examined: at the 501st open and at
    // each one after it until examined() is called.
    [[nodiscard]] bool countOpen() noexcept { return ++opens_ > kOpensBetweenChecks; }
    void examined() noexcept { opens_ = 0; }

  private:
    static constexpr int kOpensBetweenChecks = 500;  // asking each time would cost too much
    int opens_ = 0;
};

}  // namespace qel::trace

#endif
