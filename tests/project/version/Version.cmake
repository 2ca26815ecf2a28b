# Compares the version of CMakeLists.txt with the newest in NEWS, with those of the recipes for packages, and with that of
# the manual's example.
set(places
    NEWS "\n([0-9.]+) \\("
    packaging/arch/PKGBUILD "\npkgver=([0-9.]+)"
    packaging/rpm/marvelode-timer.spec "\nVersion: +([0-9.]+)"
    packaging/linux/marvelode-timer.1 "\nVersion='([0-9.]+)'")

set(disagreements "")
while(places)
    list(POP_FRONT places file pattern)
    file(READ ${FOLDER}/${file} text)
    string(REGEX MATCH "${pattern}" found "${text}")
    if(NOT CMAKE_MATCH_1 VERSION_EQUAL VERSION)
        list(APPEND disagreements "${file} says \"${CMAKE_MATCH_1}\"")
    endif()
endwhile()

list(LENGTH disagreements count)
if(count)
    list(JOIN disagreements "\n" lines)
    message(FATAL_ERROR "${count} places say another version than ${VERSION}:\n${lines}")
endif()
