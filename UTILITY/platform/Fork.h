// Forks of the process, where the system has them.
#ifndef QEL_PLATFORM_FORK_H
#define QEL_PLATFORM_FORK_H

namespace qel::platform {

// Has `before` called ahead of each fork, by the thread that forks, and one of the others after it.
// Around them the trace mutex and the clock are kept from every other thread, so that the child
// finds neither in the hands of a thread that it lacks. False when that cannot be had.
bool watchForks(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept;

}  // namespace qel::platform

#endif
