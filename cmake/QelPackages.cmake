# What `cpack` makes of an installation: on Linux the Debian packages libqelutility1,
# libqelutility-dev, libqelcalendar1, libqelcalendar-dev, qelutil and python3-qelcalendar; for Windows
# one zip that runs where it is unpacked.
set(CPACK_PACKAGE_NAME qelutility)
set(CPACK_PACKAGE_VENDOR "QelUtility")
set(CPACK_PACKAGE_CONTACT "QelUtility maintainers <maintainers@qelutility.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own, the first line of its description
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)

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

if(WIN32)
    set(CPACK_GENERATOR ZIP)
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
    include(CPack)
    return()
endif()

# --- Debian -----------------------------------------------------------------------------------------

# Debian's folders and files below /usr alone; an installation elsewhere stays free of them.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(qel_components library development calendar calendar_development program python)
set(CPACK_COMPONENTS_ALL ${qel_components})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(qel_utility_package libqelutility${PROJECT_VERSION_MAJOR})
set(qel_calendar_package libqelcalendar${PROJECT_VERSION_MAJOR})
set(qel_deb_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

# CPack calls ldconfig from scripts of its own; this is how Debian asks for it.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/packaging/triggers)
set(CPACK_DEBIAN_CALENDAR_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/packaging/triggers)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${qel_utility_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "shared library for phone calendars and contacts
Recurrence rules in iCalendar and vCalendar 1.0 form, repeat records with
their next occurrence, day-number dates, time zones, character sets, codecs,
a text serialisation and a trace log: what a desktop connector needs to keep
a phone's calendar, to-dos, contacts and notes in step with a computer.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqelutility-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${qel_utility_package} (= ${qel_deb_version})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "headers of QelUtility, the library for phone calendars
What a program needs to be built with QelUtility: the headers, the link to the
shared library, files for CMake and pkg-config, the documents and examples.")

set(CPACK_DEBIAN_CALENDAR_PACKAGE_NAME ${qel_calendar_package})
set(CPACK_DEBIAN_CALENDAR_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_CALENDAR_PACKAGE_DEPENDS "${qel_utility_package} (>= ${qel_deb_version})")
set(CPACK_COMPONENT_CALENDAR_DESCRIPTION
    "shared library that reads and converts calendars of old phones
Converts vCalendar 1.0 into iCalendar and back and reports what changed, reads
the entries of either format one at a time, explains recurrence rules in words
and lists their dates. Its interface is plain C, with headers for C++.")

# The CMake package and the records of RRule.h are QelUtility's.
set(CPACK_DEBIAN_CALENDAR_DEVELOPMENT_PACKAGE_NAME libqelcalendar-dev)
set(CPACK_DEBIAN_CALENDAR_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_CALENDAR_DEVELOPMENT_PACKAGE_DEPENDS
    "${qel_calendar_package} (= ${qel_deb_version}), libqelutility-dev (= ${qel_deb_version})")
set(CPACK_COMPONENT_CALENDAR_DEVELOPMENT_DESCRIPTION
    "headers of QelCalendar, the converter of phone calendars
What a program in C or C++ needs to be built with QelCalendar: the headers, the
link to the shared library, files for CMake and pkg-config. The documents are
in libqelutility-dev.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME qelutil)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS
    "${qel_utility_package} (>= ${qel_deb_version}), ${qel_calendar_package} (>= ${qel_deb_version})")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
    "converter for the calendars of old phones
Turns a phone's vCalendar 1.0 files into iCalendar and back without losing
anything in silence, explains recurrence rules in words and lists their dates,
and converts times, texts, character sets and codes.")

# The package of python/ on the shared library, the same for every machine. Debian's interpreters compile
# what is in their folder when it is installed, by the two scripts.
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-qelcalendar)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3:any (>= 3.9~), ${qel_calendar_package} (>= ${qel_deb_version}), tzdata")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/packaging/python/postinst
                                              ${PROJECT_SOURCE_DIR}/cmake/packaging/python/prerm)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "calendars of old phones in Python
The package qelcalendar: converts vCalendar 1.0 into iCalendar and back and
reports what changed, reads the entries of either format as objects with the
times of the standard library, explains recurrence rules in words and lists
their dates.")
set(qel_python_folder lib/python3/dist-packages)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/src/qelcalendar DESTINATION ${qel_python_folder} COMPONENT python
        PATTERN __pycache__ EXCLUDE)
configure_file(${PROJECT_SOURCE_DIR}/cmake/packaging/python/METADATA.in ${PROJECT_BINARY_DIR}/packaging/python/METADATA
               @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/python/METADATA
        DESTINATION ${qel_python_folder}/qelcalendar-${PROJECT_VERSION}.dist-info COMPONENT python)
install(FILES ${PROJECT_SOURCE_DIR}/docs/python.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_PYTHON_PACKAGE_NAME} COMPONENT python)

# /usr/share/doc/PACKAGE of each: who may copy it, and what changed. Debian's form of the change log
# names the version and the date of its entry in CHANGELOG.md.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md qel_released REGEX "^## \\[${PROJECT_VERSION}\\] - ")
string(REGEX REPLACE ".* - " "" qel_released "${qel_released}")
find_program(QEL_DATE date REQUIRED)
execute_process(COMMAND ${QEL_DATE} -u -R -d ${qel_released} OUTPUT_VARIABLE qel_released
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS qel_components)
    string(TOUPPER ${component} upper)
    set(qel_package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${qel_package})
    set(changes ${PROJECT_BINARY_DIR}/packaging/${qel_package}/changelog.Debian)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/packaging/changelog.Debian.in ${changes} @ONLY)
    qel_compressed(${changes} changelog.Debian.gz ${folder} ${component})
    qel_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog.gz ${folder} ${component})
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/packaging/copyright DESTINATION ${folder} COMPONENT ${component})
endforeach()

set(folder ${CMAKE_INSTALL_DATADIR}/doc/libqelutility-dev)
qel_documents(${folder})
install(FILES ${PROJECT_SOURCE_DIR}/examples/phone.vcs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qelutil/examples
        COMPONENT program)
include(CPack)
