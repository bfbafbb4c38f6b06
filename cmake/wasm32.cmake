# Cross-build to WebAssembly with Debian's Emscripten, its programs run by node.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)

# WebAssembly's own exceptions: the emulated ones make every call that may throw a call to JavaScript.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions")

# libcrypto for this target, built once by cmake/build-libcrypto outside the source tree.
if(DEFINED ENV{QEL_LIBCRYPTO_WASM32})
    set(qel_libcrypto $ENV{QEL_LIBCRYPTO_WASM32})
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(qel_libcrypto $ENV{XDG_CACHE_HOME}/qelutility/libcrypto-wasm32)
else()
    set(qel_libcrypto $ENV{HOME}/.cache/qelutility/libcrypto-wasm32)
endif()
set(OPENSSL_ROOT_DIR ${qel_libcrypto})
list(APPEND CMAKE_FIND_ROOT_PATH ${qel_libcrypto})
