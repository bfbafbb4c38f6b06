# What the cross-builds for Windows share: Debian's mingw-w64, the programs run under Wine. Included by
# the toolchain file of each machine, which sets qel_machine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${qel_machine})
set(qel_triple ${qel_machine}-w64-mingw32)

set(CMAKE_C_COMPILER ${qel_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${qel_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${qel_triple}-windres)

# cmake/wine-run sets up a prefix of the build's own and the path to the compiler's run-time DLLs.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run)

set(CMAKE_FIND_ROOT_PATH /usr/${qel_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# libcrypto for this target, built once by cmake/build-libcrypto outside the source tree.
string(TOUPPER QEL_LIBCRYPTO_${qel_machine} qel_variable)
if(DEFINED ENV{${qel_variable}})
    set(qel_libcrypto $ENV{${qel_variable}})
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(qel_libcrypto $ENV{XDG_CACHE_HOME}/qelutility/libcrypto-${qel_machine})
else()
    set(qel_libcrypto $ENV{HOME}/.cache/qelutility/libcrypto-${qel_machine})
endif()
set(OPENSSL_ROOT_DIR ${qel_libcrypto})
set(OPENSSL_USE_STATIC_LIBS TRUE)
list(APPEND CMAKE_FIND_ROOT_PATH ${qel_libcrypto})
