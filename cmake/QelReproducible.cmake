# The same sources give the same files for Windows in whatever folder and whenever they are built: what the
# compiler would write of the source folder's name becomes ".", and the linker writes no time. On
# Debian dpkg-buildflags does the same for the packages; what is stripped never had the names.
if(MINGW)
    add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
    add_link_options(-Wl,--no-insert-timestamp)
endif()
