# Runs after CPack has made the packages. CPack calls ldconfig in scripts of its own; Debian wants the trigger alone, which
# the package has. dpkg-deb then packs the same bytes each time: sorted, owned by root, no time later than the release.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(root ${CPACK_TEMPORARY_DIRECTORY}/packed)
    file(REMOVE_RECURSE ${root})
    execute_process(COMMAND dpkg-deb -R ${package} ${root} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${root}/DEBIAN/postinst ${root}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${root} ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
