# Removes the files and then the empty folders that are noted in NOTES-files.txt and NOTES-folders.txt.
if(NOT EXISTS ${NOTES}-files.txt)
    message(FATAL_ERROR "Nothing was installed from this build folder.")
endif()

file(STRINGS ${NOTES}-files.txt files)
foreach(file IN LISTS files)
    file(REMOVE "${file}")
    if(EXISTS "${file}")
        message(FATAL_ERROR "${file} cannot be removed.")
    endif()
endforeach()

set(folders "")
if(EXISTS ${NOTES}-folders.txt)
    file(STRINGS ${NOTES}-folders.txt folders)
    list(REMOVE_DUPLICATES folders)
    list(SORT folders ORDER DESCENDING) # what is within a folder comes before it
endif()
foreach(folder IN LISTS folders)
    execute_process(COMMAND rmdir "${folder}" ERROR_QUIET) # stays if somebody else uses it
endforeach()
file(REMOVE ${NOTES}-files.txt ${NOTES}-folders.txt)
