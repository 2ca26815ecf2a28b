# Writes the resource that tells the program which build it is: the number of commits, the day of the last one, and
# the project's version. Outside a git checkout the build counts as number 0 of an unknown day.
find_package(Git QUIET)

function(ask_git result default)
    set(answer "")
    if(GIT_FOUND)
        execute_process(COMMAND ${GIT_EXECUTABLE} ${ARGN}
            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
            OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    endif()
    if(answer STREQUAL "")
        set(answer ${default})
    endif()
    set(${result} ${answer} PARENT_SCOPE)
endfunction()

ask_git(build 0 rev-list --count HEAD)
ask_git(date unknown log -1 --format=%cs)

set(MARVELODE_BUILD_INFO ${PROJECT_BINARY_DIR}/resources/BuildInfo.txt)
file(CONFIGURE OUTPUT ${MARVELODE_BUILD_INFO} NEWLINE_STYLE UNIX
    CONTENT "Build=@build@\nDate=@date@\nVersion=@PROJECT_VERSION@\n" @ONLY)
