# What keeps a cold build of everything short. None of it changes what the sources mean: clang-tidy
# compiles each source without these headers, so an include that is missing is still found.

# The standard headers that most sources of the tests and the program read anyway.
set(qel_common_headers
    <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <string> <string_view> <unordered_map>
    <utility> <vector>)

# qel_precompile(TARGET [HEADER...]): the common headers and the ones named are compiled once for all
# sources of the target. Not for code under -O2: with precompiled headers g++ 12 warns there of faults
# in std::string that do not exist.
function(qel_precompile target)
    target_precompile_headers(${target} PRIVATE ${qel_common_headers} ${ARGN})
endfunction()

# qel_build_lightly([TARGET...]): for code whose own speed does not matter. It is optimised less, and
# its debug information has lines but no variables: the compiler needs half the time. Without a
# target, for all that the current folder and those below it add.
function(qel_build_lightly)
    set(options "")
    foreach(flag -Og -g1)
        list(APPEND options $<$<COMPILE_LANG_AND_ID:CXX,GNU>:${flag}>)
    endforeach()
    if(ARGC EQUAL 0)
        add_compile_options(${options})
    endif()
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE ${options})
    endforeach()
endfunction()
