# "Marvelode Timer.app": the program with its property list, icon and resources, signed.
set(MARVELODE_SIGNING_IDENTITY "-" CACHE STRING "Who signs the application; \"-\" signs it ad hoc, without an identity")

file(GLOB resources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.icns
    ${PROJECT_SOURCE_DIR}/resources/*.png ${PROJECT_SOURCE_DIR}/resources/*.m4a)
list(APPEND resources ${MARVELODE_BUILD_INFO})
set_source_files_properties(${resources} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)

add_executable(marvelode-timer MACOSX_BUNDLE main.mm ${resources})
set_target_properties(marvelode-timer PROPERTIES
    OUTPUT_NAME "Marvelode Timer"
    RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}
    MACOSX_BUNDLE_INFO_PLIST ${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in)
target_link_libraries(marvelode-timer PRIVATE components mac_desktop warnings)
if(NOT MARVELODE_SIGNING_IDENTITY STREQUAL "-")
    set(timestamp --timestamp) # Apple notarises nothing without one, and ad hoc there is none
endif()
add_custom_target(sign ALL
    COMMAND codesign --force --options runtime ${timestamp} --sign ${MARVELODE_SIGNING_IDENTITY} $<TARGET_BUNDLE_DIR:marvelode-timer>
    VERBATIM)
add_dependencies(sign marvelode-timer) # the whole application, resources included
install(TARGETS marvelode-timer BUNDLE DESTINATION .)
