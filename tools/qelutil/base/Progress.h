// A progress bar on standard error, drawn only when that is a terminal and the work has taken more
// than a second, never wider than the terminal. One bar at a time for each context; messages of the
// context wipe it first. One thread.
#ifndef QELUTIL_BASE_PROGRESS_H
#define QELUTIL_BASE_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/Command.h"

namespace qel::cli {

class Progress {
  public:
    // `total` in whatever unit the work is counted; 0 when it is not known, then only
    // what is done is shown.
    Progress(Context& context, std::string_view label, std::uint64_t total);
    // Wipes the bar.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Cheap enough for every line of a file, and right for a few large pieces.
    void update(std::uint64_t done);
    // What is being worked on from now on.
    void relabel(std::string_view label);
    // Wipes the bar until the next update.
    void hide();

  private:
    using Clock = std::chrono::steady_clock;
    void draw(std::uint64_t done);

    Context& context_;
    std::string label_;
    std::uint64_t total_;
    Clock::time_point nextDraw_;
    bool enabled_;
    std::size_t shown_ = 0;  // columns of what is drawn
};

}  // namespace qel::cli

#endif
