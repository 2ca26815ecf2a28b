# Compares the version of CMakeLists.txt with that of the changelog, of the description for software centres and of the
# manual's example.
set(places
    packaging/linux/debian/changelog "^marvelode-timer \\(([0-9.]+)\\)"
    packaging/linux/org.marvelode.Timer.metainfo.xml "<release version=\"([0-9.]+)\""
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
