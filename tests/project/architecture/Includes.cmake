# Fails if a component or a platform type includes what it must not: components know the platform types, one another and
# the language's library without its clocks, files and threads, and are compiled alike everywhere; platform types know no
# operating system; and the toolkit is included by the program that shows windows alone. Run as:
# cmake -D FOLDER=<the project's folder> -P Includes.cmake

cmake_minimum_required(VERSION 3.25)

set(components app config statusbar alerts windows)
set(not_for_components barrier chrono condition_variable csignal cstdio ctime filesystem fstream future iostream latch
    mutex semaphore shared_mutex stop_token syncstream thread)
set(offences 0)

function(report file line)
    message("${file}: ${line}")
    math(EXPR count "${offences} + 1")
    set(offences ${count} PARENT_SCOPE)
endfunction()

# Sets `lines` to the preprocessor's lines in `file`.
macro(read_directives file)
    file(STRINGS ${file} lines REGEX "^[ \t]*#")
endmacro()

foreach(component IN LISTS components)
    file(GLOB files RELATIVE ${FOLDER} ${FOLDER}/${component}/*)
    list(APPEND seen ${files})
    foreach(file IN LISTS files)
        read_directives(${FOLDER}/${file})
        foreach(line IN LISTS lines)
            if(line STREQUAL "#pragma once" OR line MATCHES "^#include \"(platform|app|config|statusbar|alerts|windows)/[A-Za-z0-9]+\\.hpp\"$")
                continue()
            endif()
            if(line MATCHES "^#define MARVELODE_[A-Z_]+\\([a-z]+\\) ") # a list that is spelt in several ways
                continue()
            endif()
            if(line MATCHES "^#include <([a-z_]+)>$" AND NOT CMAKE_MATCH_1 IN_LIST not_for_components)
                continue()
            endif()
            report(${file} "${line}")
        endforeach()
    endforeach()
endforeach()

file(GLOB files RELATIVE ${FOLDER} ${FOLDER}/platform/*.hpp)
foreach(file IN LISTS files)
    read_directives(${FOLDER}/${file})
    foreach(line IN LISTS lines)
        if(NOT line MATCHES "^#pragma once$|^#include (<[a-z_]+>|\"platform/[A-Za-z0-9]+\\.hpp\")$")
            report(${file} "${line}")
        endif()
    endforeach()
endforeach()

# The toolkit is known to the program that shows windows, to the empty window that it is measured against, and to nothing
# else.
set(toolkit_folder platform/linux/window/helper)
file(GLOB_RECURSE files RELATIVE ${FOLDER} ${FOLDER}/platform/*.hpp ${FOLDER}/platform/*.cpp ${FOLDER}/tests/*.cpp)
foreach(file IN LISTS files)
    if(NOT file MATCHES "^${toolkit_folder}/|^tests/bench/floor/BareWindow.cpp$")
        read_directives(${FOLDER}/${file})
        foreach(line IN LISTS lines)
            if(line MATCHES "<(gtk|gdk|gtk-layer-shell|pango|cairo|atk|fontconfig)[-/.]")
                report(${file} "${line}")
            endif()
        endforeach()
    endif()
endforeach()

if(NOT seen)
    message(FATAL_ERROR "no component in ${FOLDER}")
endif()
if(offences)
    message(FATAL_ERROR "${offences} offences")
endif()
