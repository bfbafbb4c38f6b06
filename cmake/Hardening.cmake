# Checks that the built libraries and the program are hardened. Run with cmake -P:
#
#   cmake -DPLATFORM=linux|windows -DLIBRARY=FILE -DCALENDAR=FILE -DPROGRAM=FILE
#         -DTOOL=readelf-or-objdump -DDISASSEMBLER=objdump -DJUMPS=ON -DSTACK=ON -P Hardening.cmake
#
# JUMPS and STACK: the compiler has protection of jumps and of large stacks, which show in the code.
cmake_minimum_required(VERSION 3.22)

include(${CMAKE_CURRENT_LIST_DIR}/RunTool.cmake)

function(expect text pattern meaning)
    if(NOT text MATCHES "${pattern}")
        message(SEND_ERROR "${file}: no ${meaning}")
    endif()
endfunction()

foreach(file ${LIBRARY} ${CALENDAR} ${PROGRAM})
    if(PLATFORM STREQUAL "linux")
        run_tool(dump ${TOOL} -W -h -l -d --dyn-syms ${file})
        expect("${dump}" "GNU_RELRO" "read-only relocations")
        expect("${dump}" "BIND_NOW|FLAGS_1[^\n]*NOW" "immediate binding")
        expect("${dump}" "GNU_STACK +[^\n]* RW " "stack without execution")
        expect("${dump}" "__stack_chk_fail" "stack protector")
        expect("${dump}" "__[a-z]+_chk" "fortified calls")
        expect("${dump}" "Type: +DYN" "position-independent code")
    else()
        run_tool(dump ${TOOL} -p ${file})
        expect("${dump}" "DYNAMIC_BASE" "random base")
        expect("${dump}" "NX_COMPAT" "no-execute data")
        if(dump MATCHES "RELOCS_STRIPPED|relocations stripped")
            message(SEND_ERROR "${file}: its base cannot move, the relocations are stripped")
        endif()
    endif()
endforeach()

# What a function's code must show; the libraries' own names are in the files that are built.
function(expect_in_code function pattern meaning)
    run_tool(code ${DISASSEMBLER} -d --disassemble=${function} ${LIBRARY})
    set(file ${LIBRARY})
    expect("${code}" "${pattern}" "${meaning} in ${function}")
endfunction()

if(PLATFORM STREQUAL "linux" AND JUMPS)
    expect_in_code(ZQ_DateEncode "endbr64|endbr32|bti|paciasp" "protection of jumps")
endif()
# It has a path of 4096 bytes on the stack.
if(PLATFORM STREQUAL "linux" AND STACK)
    expect_in_code(_ZN3qel8platform8PathLock7acquireEPKcj "(or|mov)[a-z]* +\\$0x0,\\(%[re]sp\\)"
                   "probe of a large stack")
endif()
