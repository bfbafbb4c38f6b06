# Hardening of everything that is built here: stack and jump protection, fortified C library calls, read-only
# relocations and immediate binding; position-independent programs. A Windows image gets no-execute
# data and a random base. tests/interface checks the built files for it. WebAssembly has none of it: its
# return addresses and code are out of a program's reach.
if(EMSCRIPTEN)
    return()
endif()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(WIN32)
    add_link_options(-Wl,--nxcompat -Wl,--dynamicbase)
else()
    add_compile_options(-fstack-protector-strong)
    # Where the compiler and the processor have them: no jump over the stack's guard page, and no jump
    # into the middle of a function.
    include(CheckCXXCompilerFlag)
    foreach(flag -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "QEL_HAS${flag}" known)
        set(CMAKE_REQUIRED_FLAGS -Werror)
        check_cxx_compiler_flag(${flag} ${known})
        unset(CMAKE_REQUIRED_FLAGS)
        if(${known})
            add_compile_options(${flag})
        endif()
    endforeach()
    if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
        add_compile_options($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
                            $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
    endif()
    add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
