# Writes the resource that tells the program which build it is: the number of commits, the day of the last one, and
# the project's version. A source archive has the first two in a file, written when it was made; a checkout of the whole
# history asks git. Elsewhere they are unknown, and the build says so.
include(${CMAKE_CURRENT_LIST_DIR}/Days.cmake)
find_package(Git QUIET)

function(ask_git result)
    set(answer "")
    if(GIT_FOUND AND EXISTS ${PROJECT_SOURCE_DIR}/.git)
        execute_process(COMMAND ${GIT_EXECUTABLE} ${ARGN}
            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
            OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    endif()
    set(${result} "${answer}" PARENT_SCOPE)
endfunction()

set(build_of_archive ${PROJECT_SOURCE_DIR}/BUILD)
ask_git(is_shallow rev-parse --is-shallow-repository)
if(EXISTS ${build_of_archive})
    file(READ ${build_of_archive} build_and_date)
    string(REGEX MATCH "Build=([0-9]+)" build "${build_and_date}")
    set(build ${CMAKE_MATCH_1})
elseif(is_shallow STREQUAL false)
    ask_git(build_and_date log -1 --format=Date=%cs)
    ask_git(build rev-list --count HEAD)
    set(build_and_date "Build=${build}\n${build_and_date}\n")
else()
    message(WARNING "The build's number and day are unknown: this is neither a source archive nor a checkout with "
        "the whole history.")
    set(build 0) # where a number is required, as in a Mac's property list
    set(build_and_date "")
endif()

# The beginning of that day in seconds since 1970, or nothing.
if(build_and_date MATCHES "Date=([0-9-]+)")
    days_since_1970(days ${CMAKE_MATCH_1})
    math(EXPR MARVELODE_BUILD_SECONDS "${days} * 86400")
endif()

set(MARVELODE_BUILD_INFO ${PROJECT_BINARY_DIR}/resources/BuildInfo.txt)
file(CONFIGURE OUTPUT ${MARVELODE_BUILD_INFO} NEWLINE_STYLE UNIX
    CONTENT "@build_and_date@Version=@PROJECT_VERSION@\n" @ONLY)
