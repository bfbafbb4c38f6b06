# What `cmake --install` puts where, in three components: library (the shared library), development
# (headers, link library, CMake and pkg-config files, documents) and program (qelutil, its man pages
# and completions). The result can be moved to another folder as a whole.
include(CMakePackageConfigHelpers)

# --- the library ------------------------------------------------------------------------------------

set(qel_cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QelUtility)
install(
    TARGETS QelUtility
    EXPORT QelUtilityTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT library
            NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/QelUtility DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)

install(EXPORT QelUtilityTargets NAMESPACE QelUtility:: DESTINATION ${qel_cmake_folder} COMPONENT development)
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/packaging/QelUtilityConfig.cmake.in
    ${PROJECT_BINARY_DIR}/packaging/QelUtilityConfig.cmake
    INSTALL_DESTINATION ${qel_cmake_folder}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/packaging/QelUtilityConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
    FILES ${PROJECT_BINARY_DIR}/packaging/QelUtilityConfig.cmake
          ${PROJECT_BINARY_DIR}/packaging/QelUtilityConfigVersion.cmake
    DESTINATION ${qel_cmake_folder}
    COMPONENT development)

# Below /usr the file names its folders outright, so that pkg-config knows them for the system's own.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(QEL_PC_PREFIX /usr)
else()
    file(RELATIVE_PATH qel_up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(REGEX REPLACE "/$" "" qel_up "${qel_up}")
    set(QEL_PC_PREFIX "\${pcfiledir}/${qel_up}")
endif()
if(NOT QEL_BUILD_SHARED)
    # A static library's needs become the program's.
    set(QEL_PC_CFLAGS " -DQELUTILITY_STATIC")
    set(QEL_PC_REQUIRES "Requires: libcrypto\n")
    get_target_property(libraries QelUtility LINK_LIBRARIES)
    list(FILTER libraries EXCLUDE REGEX "::")
    foreach(library IN LISTS libraries)
        string(APPEND QEL_PC_LIBS " -l${library}")
    endforeach()
    string(APPEND QEL_PC_LIBS " -pthread")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/packaging/qelutility.pc.in ${PROJECT_BINARY_DIR}/packaging/qelutility.pc
               @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/qelutility.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)

# --- the program ------------------------------------------------------------------------------------

# qel_compressed(FILE NAME FOLDER COMPONENT): installs FILE, compressed, as FOLDER/NAME. The files are
# small and made while configuring, so that an installation needs no target beyond what it installs.
function(qel_compressed from name folder component)
    find_program(QEL_GZIP gzip REQUIRED)
    set(to ${PROJECT_BINARY_DIR}/packaging/${component}/${name})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging/${component})
    execute_process(COMMAND ${QEL_GZIP} -9nc ${from} OUTPUT_FILE ${to} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${from})
    install(FILES ${to} DESTINATION ${folder} COMPONENT ${component})
endfunction()

if(QEL_BUILD_PROGRAM)
    install(TARGETS qelutil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
endif()
if(QEL_BUILD_PROGRAM AND NOT WIN32)
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        # Outside the loader's own folders the program finds the library beside itself.
        file(RELATIVE_PATH qel_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
        set_target_properties(qelutil PROPERTIES INSTALL_RPATH "$ORIGIN/${qel_lib}")
    endif()

    file(GLOB qel_manuals CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.1)
    foreach(manual IN LISTS qel_manuals)
        get_filename_component(name ${manual} NAME)
        qel_compressed(${manual} ${name}.gz ${CMAKE_INSTALL_MANDIR}/man1 program)
    endforeach()
    # Each shell looks for completions in a folder of its own, under a name of its own.
    set(qel_completions
        qelutil.bash bash-completion/completions qelutil
        _qelutil zsh/vendor-completions _qelutil
        qelutil.fish fish/vendor_completions.d qelutil.fish)
    while(qel_completions)
        list(POP_FRONT qel_completions file folder name)
        install(FILES ${PROJECT_SOURCE_DIR}/tools/qelutil/completions/${file}
                DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder} RENAME ${name} COMPONENT program)
    endwhile()
endif()
