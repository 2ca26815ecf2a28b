# Run by `cpack` once everything is in its place: arranges it as Debian wants it.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)

# zsh finds the completions of packages in a folder of their own there
file(RENAME ${root}/share/zsh/site-functions ${root}/share/zsh/vendor-completions)

# everybody may enter the folders, whatever the umask of the person who makes the package
file(CHMOD_RECURSE ${root} DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
