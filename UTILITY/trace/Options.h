// The options file: where it and the log are, what it says, and when it is read again.
#ifndef QEL_TRACE_OPTIONS_H
#define QEL_TRACE_OPTIONS_H

#include <atomic>
#include <cstdint>
#include <mutex>

#include "platform/Profile.h"
#include "trace/LogPaths.h"
#include "trace/MessageLog.h"
#include "trace/Settings.h"

namespace qel::trace {

// Callable from any thread. One thread loads at a time, under a mutex; the settings, and what
// load() reads to see whether it has anything to do, are atomic.
class Options {
  public:
    // `paths` and `log` must outlive the options; `log` is not used before the first load.
    Options(LogPaths& paths, MessageLog& log, TickSource ticks) noexcept
        : paths_(paths), log_(log), ticks_(ticks) {}
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    [[nodiscard]] const Settings& settings() const noexcept { return settings_; }

    // Finds the log and the options file at the first call; reads the options then, and again when
    // a minute has passed or the clock has wrapped. Does nothing while the calling thread is inside
    // a message or a load.
    void load() {
        const std::uint32_t now = ticks_();
        if (!initialised_.load(std::memory_order_acquire)) return firstLoad(now);
        const std::uint32_t last = lastLoad_.load(std::memory_order_relaxed);
        if (now <= last || now - last >= kReloadMilliseconds) reload(now);
    }

    // Makes `name` the log, with ".log" appended where it is missing, and derives the SyncML logs
    // and the run directory from it. The options file stays. Ignores null and an empty name.
    void setLogName(const char* name);

    // Reads an option in decimal (base 10) or hexadecimal (16). One that is missing or empty is
    // written to the file with the value in use.
    void read(const char* section, const char* key, unsigned base, int& value);
    void write(const char* section, const char* key, unsigned base, int value);

    // Around a fork: no other thread is loading meanwhile.
    void hold();
    void release();

  private:
    static constexpr std::uint32_t kReloadMilliseconds = 60000;

    [[nodiscard]] bool loadsHere() const noexcept;
    void firstLoad(std::uint32_t now);
    void reload(std::uint32_t now);
    [[nodiscard]] bool chooseLogPath();
    [[nodiscard]] bool deriveSidePaths();
    [[nodiscard]] bool chooseOptionsPath();
    void readSettings();
    void readSetting(const char* key, unsigned base, std::atomic<int>& setting);
    [[nodiscard]] bool readFirstSettings();
    void writeCompatibilityFile() const;
    [[nodiscard]] const char* file();
    [[nodiscard]] bool readText(const char* section, const char* key, char (&text)[1025]);
    void writeText(const char* section, const char* key, unsigned base, int value,
                   platform::ProfileWrite when);

    LogPaths& paths_;
    MessageLog& log_;
    const TickSource ticks_;
    Settings settings_;
    std::mutex mutex_;  // held by the thread that loads
    bool heldForFork_ = false;
    std::atomic<bool> initialised_{false};
    std::atomic<std::uint32_t> lastLoad_{0};       // the tick of it
    std::atomic<std::uint32_t> loadingThread_{0};  // the one that makes the first load; 0: none
};

}  // namespace qel::trace

#endif
