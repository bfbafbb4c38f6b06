// The gate as a library that is loaded into another program (LD_PRELOAD) and arms it when that
// program's main begins. QEL_TEST_REFUSE is the number of the allocation to be refused, counted
// from there; QEL_TEST_REFUSE_REST refuses all that follow too.
#include <dlfcn.h>

#include <cstdlib>

#include "faults/AllocationGate.h"

namespace {

using Main = int (*)(int, char**, char**);
using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);

Main programMain = nullptr;

int armedMain(int argc, char** argv, char** environment) {
    const char* const n = std::getenv("QEL_TEST_REFUSE");
    const bool rest = std::getenv("QEL_TEST_REFUSE_REST") != nullptr;
    if (n != nullptr)
        qel::test::arm(qel::test::Fault::kMemory, std::atoi(n),
                       rest ? qel::test::Refusal::kRest : qel::test::Refusal::kOne);
    return programMain(argc, argv, environment);
}

}  // namespace

// What the C library's start-up code calls with the program's main.
extern "C" __attribute__((visibility("default"))) int __libc_start_main(Main main, int argc,
                                                                        char** argv, void (*init)(),
                                                                        void (*fini)(),
                                                                        void (*unload)(),
                                                                        void* stack) {
    programMain = main;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(&armedMain, argc, argv, init, fini, unload, stack);
}
