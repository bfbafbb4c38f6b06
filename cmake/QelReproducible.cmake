# The same sources give the same files for Windows in whatever folder and whenever they are built: what the
# compiler would write of the source folder's name becomes ".", and the linker writes no time. On
# Debian dpkg-buildflags does the same for the packages; what is stripped never had the names.
if(MINGW)
    add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
    # The libraries that are linked in lie outside the tree, in a folder of the person who builds.
    get_filename_component(libcrypto_root "${OPENSSL_INCLUDE_DIR}" DIRECTORY)
    if(libcrypto_root)
        add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-ffile-prefix-map=${libcrypto_root}=libcrypto>")
    endif()
    add_link_options(-Wl,--no-insert-timestamp)
endif()
