# What a distribution expects of programs: position-independent, tables read-only before the first line runs, checks of
# buffer sizes and of the library's containers, a guarded stack, and jumps only to where a function or a case begins.
# What compiler and linker were told already, as distributions do by flags or in the compiler itself, stays as they want
# it.
if(LINUX)
    include(CheckCXXCompilerFlag)
    include(CheckCXXSourceCompiles)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    # ahead of what is given, since the last word counts
    string(PREPEND CMAKE_EXE_LINKER_FLAGS "-Wl,-z,relro -Wl,-z,now ")

    string(TOUPPER "${CMAKE_BUILD_TYPE}" config)
    set(CMAKE_REQUIRED_FLAGS "-O1 ${CMAKE_CXX_FLAGS_${config}}")
    set(CMAKE_REQUIRED_QUIET TRUE)
    check_cxx_source_compiles("#ifndef _FORTIFY_SOURCE\n#error\n#endif\nint main() {}" is_fortified)
    unset(CMAKE_REQUIRED_FLAGS)
    unset(CMAKE_REQUIRED_QUIET)
    if(NOT is_fortified)
        # the checks need the optimiser
        add_compile_options($<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE>
            $<$<CONFIG:Release,RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
    endif()
    if(NOT CMAKE_CXX_FLAGS MATCHES "_GLIBCXX_ASSERTIONS")
        add_compile_options($<$<CONFIG:Release>:-D_GLIBCXX_ASSERTIONS>)
    endif()
    foreach(protection -fstack-protector -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "compiler_accepts${protection}" is_accepted)
        string(REGEX REPLACE "^-f" "-f(no-)?" given ${protection})
        set(flag ${protection})
        if(protection STREQUAL "-fstack-protector")
            set(flag -fstack-protector-strong)
        endif()
        check_cxx_compiler_flag(${flag} ${is_accepted})
        if(${is_accepted} AND NOT CMAKE_CXX_FLAGS MATCHES "${given}")
            add_compile_options($<$<CONFIG:Release>:${flag}>)
        endif()
    endforeach()
endif()
