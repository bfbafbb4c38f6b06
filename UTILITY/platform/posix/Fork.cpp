#include "platform/Fork.h"

#include <pthread.h>

#include "platform/Process.h"
#include "platform/posix/ForkHooks.h"

namespace qel::platform {

namespace {

struct Watchers {
    void (*before)() = nullptr;
    void (*inParent)() = nullptr;
    void (*inChild)() = nullptr;
};

Watchers watchers;

}  // namespace

bool watchForks(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept {
    watchers = {before, inParent, inChild};
    (void)threadId();  // its own handler comes first, so that the others know the child's thread
    return pthread_atfork(
               [] {
                   watchers.before();
                   holdTraceMutex();
                   holdPathLocks();
                   holdLocalClock();
                   holdLocks();
               },
               [] {
                   releaseLocks();
                   releaseLocalClock();
                   releasePathLocks();
                   releaseTraceMutex();
                   watchers.inParent();
               },
               [] {
                   renewLocks();
                   releaseLocalClock();
                   releasePathLocks();
                   renewTraceMutex();
                   watchers.inChild();
               }) == 0;
}

}  // namespace qel::platform
