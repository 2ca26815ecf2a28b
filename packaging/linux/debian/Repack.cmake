# Run by `cpack` when the package is made: has Debian's own program pack it again. `cpack` gives its parts whatever
# permissions the umask leaves.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(tree ${CPACK_TEMPORARY_DIRECTORY}/repacked)
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD ${tree} ${tree}/DEBIAN DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${tree} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${tree})
endforeach()
