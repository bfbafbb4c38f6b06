# The port is part of the tree that it builds, for use as an overlay:
#   vcpkg install qelutility --overlay-ports=cmake/packaging/vcpkg
# The time zone database is compiled in: the machine needs its text and zic (Debian: tzdata, libc-bin).
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../../../.." ABSOLUTE)

string(COMPARE EQUAL "${VCPKG_LIBRARY_LINKAGE}" "dynamic" QEL_BUILD_SHARED)
vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS FEATURES program QEL_BUILD_PROGRAM)
vcpkg_find_acquire_program(PYTHON3)
vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS
        ${FEATURE_OPTIONS}
        "-DPython3_EXECUTABLE=${PYTHON3}"
        -DQEL_BUILD_SHARED=${QEL_BUILD_SHARED}
        -DQEL_BUILD_TESTS=OFF
        -DQEL_INSTALL=ON
        -DQEL_WARNINGS_AS_ERRORS=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME QelUtility CONFIG_PATH lib/cmake/QelUtility)
vcpkg_fixup_pkgconfig()
if("program" IN_LIST FEATURES)
    vcpkg_copy_tools(TOOL_NAMES qelutil AUTO_CLEAN)
endif()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE" "${SOURCE_PATH}/docs/licences.md")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
