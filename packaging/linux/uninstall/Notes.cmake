# Lets the target `uninstall` take back what installations from this build folder have put in place: the files, and the
# folders that were made for them. Included ahead of all that is installed. Staging folders are nobody's installation.
set(installed_folders ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBEXECDIR}/marvelode-timer ${CMAKE_INSTALL_MANDIR}/man1)
file(GLOB data_folders RELATIVE ${PROJECT_SOURCE_DIR}/resources ${PROJECT_SOURCE_DIR}/resources/icons/hicolor/*/apps)
list(APPEND data_folders applications bash-completion/completions dbus-1/interfaces dbus-1/services doc/marvelode-timer
    fish/vendor_completions.d marvelode-timer/autostart marvelode-timer/status metainfo systemd/user
    zsh/site-functions)
list(TRANSFORM data_folders PREPEND ${CMAKE_INSTALL_DATADIR}/)
list(APPEND installed_folders ${data_folders})

set(notes ${PROJECT_BINARY_DIR}/installed)
install(CODE "
    set(notes \"${notes}\")
    if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
        foreach(folder ${installed_folders})
            cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
            while(NOT EXISTS \"\${folder}\")
                file(APPEND \"\${notes}-folders.txt\" \"\${folder}\\n\")
                cmake_path(GET folder PARENT_PATH folder)
            endwhile()
        endforeach()
    endif()")

# To be called when all that is installed has been told.
function(note_installed_files)
    install(CODE "
    if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
        list(JOIN CMAKE_INSTALL_MANIFEST_FILES \"\\n\" files)
        file(APPEND \"\${notes}-files.txt\" \"\${files}\\n\")
    endif()")
endfunction()

add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -D NOTES=${notes} -P ${CMAKE_CURRENT_LIST_DIR}/Uninstall.cmake
    COMMENT "Removing what was installed from here" VERBATIM)
