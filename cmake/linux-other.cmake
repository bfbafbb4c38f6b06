# What the cross-builds for other machines under Linux share: Debian's cross compilers, and Debian's libraries
# of that architecture in a folder outside the source tree (cmake/fetch-libraries). Included by the toolchain
# file of each machine, which sets qel_machine.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${qel_machine})
set(qel_triple ${qel_machine}-linux-gnu)

set(CMAKE_C_COMPILER ${qel_triple}-gcc)
set(CMAKE_CXX_COMPILER ${qel_triple}-g++)

string(TOUPPER QEL_LIBRARIES_${qel_machine} qel_variable)
if(DEFINED ENV{${qel_variable}})
    set(qel_libraries $ENV{${qel_variable}})
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(qel_libraries $ENV{XDG_CACHE_HOME}/qelutility/linux-${qel_machine})
else()
    set(qel_libraries $ENV{HOME}/.cache/qelutility/linux-${qel_machine})
endif()
file(GLOB qel_library_folder ${qel_libraries}/usr/lib/*-linux-gnu)
cmake_path(GET qel_library_folder FILENAME qel_multiarch)
# Their headers are split between two folders, of which CMake finds one.
set(OPENSSL_INCLUDE_DIR ${qel_libraries}/usr/include)
set(OPENSSL_CRYPTO_LIBRARY ${qel_library_folder}/libcrypto.a)
set(ZLIB_INCLUDE_DIR ${qel_libraries}/usr/include)
set(ZLIB_LIBRARY ${qel_library_folder}/libz.a)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${qel_libraries}/usr/include/${qel_multiarch})
set(CMAKE_C_STANDARD_INCLUDE_DIRECTORIES ${CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES})

set(CMAKE_FIND_ROOT_PATH ${qel_libraries} /usr/${qel_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
