# What packages have besides an installation: for Windows the zip that `cpack` makes, which runs where it is
# unpacked; below /usr what debian/ divides among its packages.

# Pages link to what is beside them in the sources. Installed, some of it has another place or name, and
# what is of use only with the sources is no link; tests/package/links finds a link that leads nowhere.
function(qel_documents folder)
    set(written ${PROJECT_BINARY_DIR}/packaging/documents)
    file(GLOB pages RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/README.md
         ${PROJECT_SOURCE_DIR}/docs/*.md)
    foreach(page IN LISTS pages)
        file(READ ${PROJECT_SOURCE_DIR}/${page} text)
        string(REGEX REPLACE "\\[([^]\n]*)\\]\\((CONTRIBUTING\\.md|docs/man|\\.\\./cmake/[^)\n]*)\\)" "\\1"
                             text "${text}")
        if(NOT WIN32)
            file(RELATIVE_PATH include /${folder}/docs /${CMAKE_INSTALL_INCLUDEDIR})
            string(REPLACE "](../include/" "](${include}/" text "${text}")
            string(REPLACE "LICENSE)" "copyright)" text "${text}")
            string(REPLACE "](CHANGELOG.md)" "](changelog.gz)" text "${text}")
        endif()
        file(WRITE ${written}/${page} "${text}")
        set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                                                                     ${PROJECT_SOURCE_DIR}/${page})
    endforeach()
    install(DIRECTORY ${written}/ DESTINATION ${folder} COMPONENT development)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
            DESTINATION ${folder}
            COMPONENT development
            REGEX "/docs/[^/]*\\.md$" EXCLUDE
            PATTERN man EXCLUDE
            PATTERN Doxyfile EXCLUDE
            PATTERN CMakeLists.txt EXCLUDE
            PATTERN *.cmake EXCLUDE)
endfunction()

# What is in the packages and of whom, for those who watch over it: qelutility.spdx.json in FOLDER.
function(qel_bill_of_materials kind folder component)
    set(file ${PROJECT_BINARY_DIR}/packaging/qelutility.spdx.json)
    get_filename_component(zones ${QEL_TZDATA} DIRECTORY)
    unset(left_out)
    if(NOT QEL_BUILD_PROGRAM)
        set(left_out qelutil=none)
    endif()
    set(includes ${CMAKE_FIND_ROOT_PATH})
    list(TRANSFORM includes APPEND /include)
    execute_process(
        COMMAND
            ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/packaging/sbom ${kind} ${PROJECT_VERSION} ${file}
            gcc=${CMAKE_CXX_COMPILER_VERSION} ${left_out} ${PROJECT_SOURCE_DIR} ${zones} ${OPENSSL_INCLUDE_DIR}
            ${ZLIB_INCLUDE_DIRS} ${includes} ${QEL_CLI11_DIR} ${QEL_JSON_DIR}
            COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${file} DESTINATION ${folder} COMPONENT ${component})
endfunction()

if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_NAME qelutility)
    set(CPACK_PACKAGE_VENDOR "QelUtility")
    set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
    set(CPACK_VERBATIM_VARIABLES ON)
    set(CPACK_STRIP_FILES ON)
    set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
    set(qel_windows win32)
    set(qel_libgcc libgcc_s_dw2-1.dll)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(qel_windows win64)
        set(qel_libgcc libgcc_s_seh-1.dll)
    endif()
    set(CPACK_PACKAGE_FILE_NAME QelUtility-${PROJECT_VERSION}-${qel_windows})
    # Debuggers alone need the second archive.
    set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
    set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
    set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
    foreach(component library development calendar calendar_development program)
        string(TOUPPER ${component} upper)
        set(CPACK_COMPONENT_${upper}_GROUP all)
    endforeach()
    set(CPACK_COMPONENT_DEBUG_GROUP debug)
    set(CPACK_ARCHIVE_ALL_FILE_NAME ${CPACK_PACKAGE_FILE_NAME})
    set(CPACK_ARCHIVE_DEBUG_FILE_NAME ${CPACK_PACKAGE_FILE_NAME}-debug)
    # The compiler's run-time libraries, and what a reader looks for first, beside the program.
    foreach(runtime libstdc++-6.dll ${qel_libgcc} libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime} OUTPUT_VARIABLE file
                        OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT EXISTS ${file} OR NOT IS_ABSOLUTE ${file})
            unset(file)
            find_file(file ${runtime} PATHS ${CMAKE_FIND_ROOT_PATH} PATH_SUFFIXES lib bin NO_CACHE REQUIRED
                      NO_CMAKE_FIND_ROOT_PATH)
        endif()
        # They come with 20 MB of debug information.
        set(stripped ${PROJECT_BINARY_DIR}/packaging/${runtime})
        execute_process(COMMAND ${CMAKE_STRIP} -o ${stripped} ${file} COMMAND_ERROR_IS_FATAL ANY)
        install(PROGRAMS ${stripped} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library)
    endforeach()
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION . COMPONENT library)
    qel_documents(.)
    qel_bill_of_materials(windows docs library)
    include(CPack)
    return()
endif()

# Debian's folders and files below /usr alone; an installation elsewhere stays free of them.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    return()
endif()

# The package of python/ on the shared library, the same for every machine.
set(qel_python_folder lib/python3/dist-packages)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/src/qelcalendar DESTINATION ${qel_python_folder} COMPONENT python
        PATTERN __pycache__ EXCLUDE)
configure_file(${PROJECT_SOURCE_DIR}/cmake/packaging/python/METADATA.in ${PROJECT_BINARY_DIR}/packaging/python/METADATA
               @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/python/METADATA
        DESTINATION ${qel_python_folder}/qelcalendar-${PROJECT_VERSION}.dist-info COMPONENT python)
qel_documents(${CMAKE_INSTALL_DATADIR}/doc/libqelutility-dev)
qel_bill_of_materials(debian ${CMAKE_INSTALL_DATADIR}/doc/libqelutility${PROJECT_VERSION_MAJOR} library)
if(QEL_BUILD_PROGRAM)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/packaging/desktop/qelutil.desktop
            DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT program)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/packaging/desktop/qelutil.xml
            DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT program)
endif()
