# What `cmake --install` puts where, in five components: library and calendar (the shared libraries
# QelUtility and QelCalendar), development and calendar_development (of each the headers, the link
# library, the CMake and pkg-config files; documents with the first) and program (qelutil, its man pages
# and completions). The result can be moved to another folder as a whole.
include(CMakePackageConfigHelpers)

# --- the libraries ----------------------------------------------------------------------------------

# Both libraries belong to the CMake package QelUtility. Each has a target file of its own, because
# QelUtility may be installed without QelCalendar.
set(qel_cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QelUtility)

# qel_install_library(TARGET COMPONENT DEVELOPMENT): the library, its headers and its target file.
function(qel_install_library target component development)
    install(
        TARGETS ${target}
        EXPORT ${target}Targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT ${component}
                NAMELINK_COMPONENT ${development}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${development})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/${target} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
            COMPONENT ${development})
    # For pkg-config --static; the CMake package is the shared library's.
    if(QEL_INSTALL_STATIC AND QEL_BUILD_SHARED AND NOT WIN32)
        string(TOLOWER ${target} lower)
        add_library(${target}Static STATIC $<TARGET_OBJECTS:${lower}_objects>)
        set_target_properties(${target}Static PROPERTIES OUTPUT_NAME ${target} LINKER_LANGUAGE CXX)
        install(TARGETS ${target}Static ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${development})
    endif()
    install(EXPORT ${target}Targets NAMESPACE QelUtility:: DESTINATION ${qel_cmake_folder} COMPONENT ${development})
endfunction()

qel_install_library(QelUtility library development)
qel_install_library(QelCalendar calendar calendar_development)
if(NOT WIN32 AND NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    # Outside the loader's own folders QelCalendar finds QelUtility beside itself.
    set_target_properties(QelCalendar PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()

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
set(QEL_PC_CALENDAR_PRIVATE ".private")
# What a static library needs becomes the program's: always where there is no other library, with
# pkg-config --static where both are installed.
if(NOT QEL_BUILD_SHARED OR QEL_INSTALL_STATIC)
    get_target_property(libraries QelUtility LINK_LIBRARIES)
    list(FILTER libraries EXCLUDE REGEX "::")
    foreach(library IN LISTS libraries)
        string(APPEND QEL_PC_LIBS " -l${library}")
    endforeach()
    string(APPEND QEL_PC_LIBS " -pthread")
endif()
if(NOT QEL_BUILD_SHARED)
    set(QEL_PC_CFLAGS " -DQELUTILITY_STATIC")
    set(QEL_PC_CALENDAR_CFLAGS " -DQELCALENDAR_STATIC")
    set(QEL_PC_CALENDAR_PRIVATE "")
    string(APPEND QEL_PC_LIBS "\nRequires: libcrypto")
elseif(QEL_INSTALL_STATIC)
    set(QEL_PC_LIBS "\nLibs.private:${QEL_PC_LIBS} -lstdc++ -lm\nRequires.private: libcrypto")
endif()
# qel_pkg_config(NAME COMPONENT): NAME.pc of cmake/packaging/NAME.pc.in.
function(qel_pkg_config name component)
    set(file ${PROJECT_BINARY_DIR}/packaging/${name}.pc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/packaging/${name}.pc.in ${file} @ONLY)
    install(FILES ${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()
qel_pkg_config(qelutility development)
qel_pkg_config(qelcalendar calendar_development)

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
    install(FILES ${PROJECT_SOURCE_DIR}/docs/json/qelutil.schema.json
            DESTINATION ${CMAKE_INSTALL_DATADIR}/qelutil COMPONENT program)
    # PowerShell has no folder for the completions of others: a person's profile names the file.
    install(FILES ${PROJECT_SOURCE_DIR}/tools/qelutil/completions/qelutil.ps1
            DESTINATION ${CMAKE_INSTALL_DATADIR}/qelutil COMPONENT program)
endif()
if(QEL_BUILD_PROGRAM AND NOT WIN32)
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        # Outside the loader's own folders the program finds the libraries beside itself.
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
