# `cpack` makes a Debian package from what `cmake --install` installs.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME marvelode-timer)
set(CPACK_PACKAGE_VENDOR "${MARVELODE_MAKERS}")
set(CPACK_PACKAGE_CONTACT "${MARVELODE_MAKERS} <${MARVELODE_CONTACT}>")
set(CPACK_PACKAGE_HOMEPAGE_URL ${MARVELODE_HOMEPAGE})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "break reminder that lives in the tray")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Marvelode Timer counts down the time you work and then reminds you, with a
sound and a window, to look around, take a breath and stretch. Between two
breaks it is a small icon in the panel with the time left beside it.
.
It works with panels that show status icons, and without any. Scripts
control it over D-Bus.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/Arrange.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/Repack.cmake)

# Installed as if into /usr, so that the files that name the program name the right place.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)

# The libraries come from the programs themselves, the sounds' decoder among them. The launcher's actions call
# dbus-send where the desktop does not speak D-Bus itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "default-dbus-session-bus | dbus-session-bus, dbus-bin, hicolor-icon-theme")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pipewire-pulse | pulseaudio, libcanberra-pulse, notification-daemon")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-shell-extension-appindicator")

# Everything in it is as old as what it was made from, unless the one who makes it says otherwise.
if(MARVELODE_BUILD_SECONDS)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/CPackDate.cmake @ONLY CONTENT
"if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    set(ENV{SOURCE_DATE_EPOCH} @MARVELODE_BUILD_SECONDS@)
endif()
")
    set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/CPackDate.cmake)
endif()

include(CPack)
