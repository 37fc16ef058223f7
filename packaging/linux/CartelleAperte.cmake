# Everybody may open the folders of the package, whatever the mask of who made it.
file(CHMOD_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}
     DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                           WORLD_READ WORLD_EXECUTE)
