# Cross-build for 32-bit Linux on x86. The processor runs it, with libraries that are not installed.
set(qel_machine i686)
include(${CMAKE_CURRENT_LIST_DIR}/linux-other.cmake)
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT
        "-Wl,--dynamic-linker=${qel_libraries}/lib/ld-linux.so.2 \
-Wl,-rpath,${qel_libraries}/lib/${qel_multiarch}:${qel_library_folder}")
endforeach()
