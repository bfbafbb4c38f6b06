# The exported names of a shared library, read from the binary itself. Run with cmake -P:
#
#   cmake -DMODE=check|write -DPLATFORM=linux|windows|windows64 -DLIBRARY=FILE -DLIST=FILE
#         -DTOOL=nm-or-objdump [-DCXXFILT=c++filt] -P Exports.cmake
#
# check compares them, name by name, with the checked-in list; write replaces the list, each name
# followed by a tab and its demangled form. A Windows library must also be one for that machine.
cmake_minimum_required(VERSION 3.22)

include(${CMAKE_CURRENT_LIST_DIR}/RunTool.cmake)

set(names "")
if(PLATFORM STREQUAL "linux")
    run_tool(dump ${TOOL} -D --defined-only ${LIBRARY})
    # "0000000000001130 T ZQ_DateEncode", and for some tools "@@VERSION" behind the name.
    string(REGEX MATCHALL "[0-9a-f]+ [A-Za-z] [^\n@]+" lines "${dump}")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" name "${line}")
        list(APPEND names "${name}")
    endforeach()
else()
    run_tool(format ${TOOL} -f ${LIBRARY})
    set(machine pei-i386)
    if(PLATFORM STREQUAL "windows64")
        set(machine pei-x86-64)
    endif()
    if(NOT format MATCHES "file format ${machine}\n")
        message(FATAL_ERROR "${LIBRARY} is not of the format ${machine}: ${format}")
    endif()
    run_tool(dump ${TOOL} -p ${LIBRARY})
    # The name table alone: "\t[   0] +base[   1] 0000 ZQ_DateEncode", one line for each export.
    string(REGEX REPLACE "^.*\\[Ordinal/Name Pointer\\] Table" "" dump "${dump}")
    string(REGEX REPLACE "\n\n.*$" "" dump "${dump}")
    string(REPLACE "[" "(" dump "${dump}")
    string(REPLACE "]" ")" dump "${dump}")
    string(REGEX MATCHALL "\n\t\\( *[0-9]+\\)[^\n]+" lines "${dump}")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^.* " "" name "${line}")
        list(APPEND names "${name}")
    endforeach()
endif()
list(REMOVE_DUPLICATES names)
list(SORT names)
if(NOT names)
    message(FATAL_ERROR "${LIBRARY} exports nothing that ${TOOL} shows")
endif()

if(MODE STREQUAL "write")
    set(text "")
    foreach(name IN LISTS names)
        execute_process(COMMAND ${CXXFILT} ${name} OUTPUT_VARIABLE plain
                        OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(plain STREQUAL name)
            string(APPEND text "${name}\n")
        else()
            string(APPEND text "${name}\t${plain}\n")
        endif()
    endforeach()
    file(WRITE ${LIST} "${text}")
    return()
endif()

file(STRINGS ${LIST} entries)
set(expected "")
foreach(entry IN LISTS entries)
    string(REGEX REPLACE "\t.*$" "" name "${entry}")
    list(APPEND expected "${name}")
endforeach()
set(differences "")
foreach(name IN LISTS expected)
    if(NOT name IN_LIST names)
        string(APPEND differences "  missing:    ${name}\n")
    endif()
endforeach()
foreach(name IN LISTS names)
    if(NOT name IN_LIST expected)
        string(APPEND differences "  unexpected: ${name}\n")
    endif()
endforeach()
if(differences)
    message(
        FATAL_ERROR
            "${LIBRARY} does not export what ${LIST} says:\n${differences}"
            "When the change of the interface is meant, run cmake/update-exports and review the lists.")
endif()
