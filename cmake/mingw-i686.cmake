# Cross-build of the 32-bit Windows DLL with Debian's mingw-w64, its programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

# The compiler folds functions of equal code into one, and takes a member function, which clears its
# arguments off the stack itself, for equal to a free one, which leaves that to its caller: an empty
# virtual function and an empty callback in one source, and the stack is off by four bytes.
set(CMAKE_CXX_FLAGS_INIT "-fno-ipa-icf")

# cmake/wine-run sets up a prefix of the build's own and the path to the compiler's run-time DLLs.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run)

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# libcrypto for this target, built once by cmake/build-libcrypto outside the source tree.
if(DEFINED ENV{QEL_LIBCRYPTO_I686})
    set(qel_libcrypto $ENV{QEL_LIBCRYPTO_I686})
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(qel_libcrypto $ENV{XDG_CACHE_HOME}/qelutility/libcrypto-i686)
else()
    set(qel_libcrypto $ENV{HOME}/.cache/qelutility/libcrypto-i686)
endif()
set(OPENSSL_ROOT_DIR ${qel_libcrypto})
set(OPENSSL_USE_STATIC_LIBS TRUE)
list(APPEND CMAKE_FIND_ROOT_PATH ${qel_libcrypto})
