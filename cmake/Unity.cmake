# The sources that cannot be compiled together in one unit, since they use a name for different things.
if(CMAKE_UNITY_BUILD AND MARVELODE_TESTS)
    set_target_properties(models PROPERTIES UNITY_BUILD OFF)
    set_source_files_properties(
        ${PROJECT_SOURCE_DIR}/platform/linux/StatusNotifierItem.cpp
        ${PROJECT_SOURCE_DIR}/platform/linux/TextPicture.cpp
        ${PROJECT_SOURCE_DIR}/tests/components/TextTest.cpp
        TARGET_DIRECTORY freedesktop components_tests
        PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endif()
