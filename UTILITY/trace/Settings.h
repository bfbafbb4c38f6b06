// The options as they were last read; names and meanings are those of the options file.
#ifndef QEL_TRACE_SETTINGS_H
#define QEL_TRACE_SETTINGS_H

#include <atomic>
#include <cstdint>

namespace qel::trace {

// The system's millisecond clock, or a test's.
using TickSource = std::uint32_t (*)();

inline constexpr std::uint32_t kSyncInputBit = 0x2;  // of tracingOptions
inline constexpr std::uint32_t kSyncOutputBit = 0x4;
inline constexpr std::uint32_t kSyncInMainLogBit = 0x08000000;
inline constexpr std::uint32_t kShowFailuresBit = 0x80000000;

inline constexpr int kFlushEveryMessage = 0x2;  // of keepLogFileOpen
inline constexpr int kRuntimesBuffering = 0x4;

// Only Options changes them. Any thread may read each of them at any time; two that are read one
// after the other may come from different loads.
struct Settings {
    std::atomic<int> maxFileSize{5000000};  // bytes
    std::atomic<int> maxBackupCount{3};
    std::atomic<int> keepLogFiles{1};
    std::atomic<int> verbosity{0};
    std::atomic<int> tracingOptions{1};
    std::atomic<int> logManagerLevel{0};
    std::atomic<int> logManagerDetail{0};
    // The first load decides these three for the life of the process.
    std::atomic<int> effectiveBackupCount{3};  // at least 1
    std::atomic<int> separateLogs{0};
    std::atomic<int> keepLogFileOpen{0};

    [[nodiscard]] std::uint32_t tracingMask() const noexcept {
        return static_cast<std::uint32_t>(tracingOptions.load());
    }
    [[nodiscard]] bool flushesEveryMessage() const noexcept {
        return (keepLogFileOpen & kFlushEveryMessage) != 0;
    }
};

}  // namespace qel::trace

#endif
