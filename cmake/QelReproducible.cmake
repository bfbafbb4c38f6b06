# The same sources give the same files in whatever folder they are built: what the compiler would write
# of the source folder's name becomes ".", which a debugger that runs in that folder finds. Debug builds keep
# the name.
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
if(MINGW)
    # The time of the link.
    add_link_options(-Wl,--no-insert-timestamp)
endif()
