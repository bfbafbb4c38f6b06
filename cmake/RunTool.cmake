# run_tool(RESULT COMMAND...): the command's output in RESULT; an error that ends the script otherwise.
function(run_tool result)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "${ARGN} failed: ${err}")
    endif()
    set(${result} "${out}" PARENT_SCOPE)
endfunction()
