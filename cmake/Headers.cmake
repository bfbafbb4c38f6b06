# Compiles every public header by itself, so that each includes what it needs, in the oldest language
# that it is meant for, with the warnings of callers who have many. Run with cmake -P:
#
#   cmake -DC=COMPILER -DCXX=COMPILER -DINCLUDE=FOLDER -P Headers.cmake
cmake_minimum_required(VERSION 3.22)

# check(COMPILER LANGUAGE STANDARD HEADER): HEADER below INCLUDE, included by an empty source.
function(check compiler language standard header)
    execute_process(
        COMMAND ${compiler} -std=${standard} -Wall -Wextra -pedantic -Werror -fsyntax-only -I${INCLUDE}
                -include ${header} -x ${language} /dev/null
        RESULT_VARIABLE result ERROR_VARIABLE problems)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "${header} does not compile alone as ${standard}:\n${problems}")
    endif()
endfunction()

file(GLOB utility_headers RELATIVE ${INCLUDE} ${INCLUDE}/QelUtility/*.h)
file(GLOB calendar_headers RELATIVE ${INCLUDE} ${INCLUDE}/QelCalendar/*.h)
if(NOT utility_headers OR NOT calendar_headers)
    message(FATAL_ERROR "no headers below ${INCLUDE}")
endif()
foreach(header IN LISTS utility_headers calendar_headers)
    check(${CXX} c++ c++11 ${header})
endforeach()
check(${C} c c11 QelUtility/QelUtility.h)
foreach(header QelCalendar/qelcalendar.h QelCalendar/qelcalnotes.h)
    check(${C} c c99 ${header})
endforeach()
