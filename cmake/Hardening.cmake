# What a distribution expects of programs: position-independent, tables read-only before the first line runs, and the C
# library's checks of buffer sizes.
if(LINUX)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
    # the checks need the optimiser
    add_compile_options($<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE>
        $<$<CONFIG:Release,RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
endif()
