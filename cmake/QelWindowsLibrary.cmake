# What a Windows build makes of a program or a DLL besides the file itself.

# qel_debug_file(TARGET): its debug information in a file of its own beside it, which the file names, so
# that debuggers find it after the file itself was stripped.
function(qel_debug_file target)
    set(debug $<TARGET_FILE:${target}>.debug)
    add_custom_command(
        TARGET ${target}
        POST_BUILD
        COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:${target}> ${debug}
        COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=${debug} $<TARGET_FILE:${target}>
        VERBATIM)
    if(QEL_INSTALL)
        install(FILES ${debug} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT debug)
    endif()
endfunction()

# qel_import_library(TARGET): TARGET.lib, for linkers other than GNU's. They refuse GNU's import library,
# whose objects know no safe exception handlers. It has the names with C linkage alone: the others are
# mangled as no other compiler does it.
function(qel_import_library target)
    find_program(QEL_DLLTOOL llvm-dlltool)
    if(NOT QEL_DLLTOOL)
        return()
    endif()
    set(machine i386)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(machine i386:x86-64)
    endif()
    set(all ${CMAKE_CURRENT_BINARY_DIR}/${target}.all.def)
    set(plain ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    set(library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/${target}.lib)
    find_program(QEL_SED sed REQUIRED)
    target_link_options(${target} PRIVATE -Wl,--output-def,${all})
    add_custom_command(
        TARGET ${target}
        POST_BUILD
        COMMAND ${QEL_SED} -e "/^ *_Z/d" -e "w ${plain}" -e d ${all}
        COMMAND ${QEL_DLLTOOL} -m ${machine} -D ${target}.dll -d ${plain} -l ${library}
        BYPRODUCTS ${library} ${plain} ${all}
        VERBATIM)
    if(QEL_INSTALL)
        install(FILES ${library} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    endif()
endfunction()
