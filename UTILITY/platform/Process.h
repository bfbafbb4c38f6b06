// Clock, thread, process and environment. Callable from any thread.
#ifndef QEL_PLATFORM_PROCESS_H
#define QEL_PLATFORM_PROCESS_H

#include <cstddef>
#include <cstdint>

namespace qel::platform {

// Milliseconds of system up-time; wraps every 49.7 days.
[[nodiscard]] std::uint32_t tickCount() noexcept;
void sleepMilliseconds(std::uint32_t milliseconds) noexcept;

[[nodiscard]] std::uint32_t threadId() noexcept;
[[nodiscard]] std::uint32_t processId() noexcept;

// The full path of the process's executable, and of the module (shared library or program) that
// this code is part of. False, with an empty text, when it is unknown or longer than `room` - 1.
[[nodiscard]] bool processPath(char* out, std::size_t room) noexcept;
[[nodiscard]] bool modulePath(char* out, std::size_t room) noexcept;

// The value of an environment variable, cut at room - 1 bytes. False when it is not set or empty.
[[nodiscard]] bool environment(const char* name, char* out, std::size_t room) noexcept;

// Shows the user a message: a task-modal message box, or a line on standard error where there are
// no message boxes.
void messageBox(const char* title, const char* text) noexcept;

}  // namespace qel::platform

#endif
