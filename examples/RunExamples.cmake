# Runs examples and checks them; with cmake -P:
#
#   cmake -DRUNS=SOURCE,PROGRAM,... [-DEMULATOR=PROGRAM] -P RunExamples.cmake
#
# The last lines of each source, comments after "Prints:", are what its program prints. docs/guide.md
# holds each source, without those lines, as a code block, and what it prints as the next.
cmake_minimum_required(VERSION 3.22)
file(READ ${CMAKE_CURRENT_LIST_DIR}/../docs/guide.md guide)
string(REPLACE "\r\n" "\n" guide "${guide}")

string(REPLACE "," ";" runs "${RUNS}")
list(REMOVE_ITEM runs "")
set(faults "")
while(runs)
    list(POP_FRONT runs source program)
    execute_process(COMMAND ${EMULATOR} ${program} OUTPUT_VARIABLE printed ERROR_VARIABLE errors RESULT_VARIABLE result)
    string(REPLACE "\r\n" "\n" printed "${printed}")

    file(READ ${CMAKE_CURRENT_LIST_DIR}/${source} text)
    string(REPLACE "\r\n" "\n" text "${text}")
    string(FIND "${text}" "\n\n// Prints:\n" at)
    string(SUBSTRING "${text}" 0 ${at} code)
    # What a program prints may be longer than a line of code; the guide shows the program alone.
    string(REPLACE "\n// clang-format off" "" code "${code}")
    string(SUBSTRING "${text}" ${at} -1 stated)
    string(REPLACE "\n\n// Prints:\n" "\n" stated "${stated}")
    string(REPLACE "\n// " "\n" stated "${stated}")
    string(SUBSTRING "${stated}" 1 -1 stated)

    if(NOT result EQUAL 0 OR NOT printed STREQUAL stated)
        string(APPEND faults "${source} ended with ${result} and printed\n${printed}${errors}instead of\n${stated}\n")
    endif()
    string(REGEX MATCH "[a-z]+$" language ${source})
    string(FIND "${guide}" "```${language}\n${code}\n```\n\n```text\n${stated}```\n" at)
    if(at EQUAL -1)
        string(APPEND faults "docs/guide.md does not hold examples/${source} and what it prints, as they are\n")
    endif()
endwhile()
if(faults)
    message(FATAL_ERROR "${faults}")
endif()
