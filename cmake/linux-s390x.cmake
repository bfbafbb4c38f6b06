# Cross-build for s390x, a machine whose words begin with the highest byte, run by QEMU's user emulation.
set(qel_machine s390x)
include(${CMAKE_CURRENT_LIST_DIR}/linux-other.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -L ${qel_libraries})
