# Runs after CPack has copied each package's files and before it packs them. Adds what Debian wants in a package, removes
# the search paths of installations that may be moved, and makes the bytes the same for each build.
set(ENV{LC_ALL} C)

# PACKAGE_NAMES: for each of CPACK_COMPONENTS_ALL, the package's name.
foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL SECM_PACKAGE_NAMES)
    set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(documents ${root}/share/doc/${package})
    file(MAKE_DIRECTORY ${documents})
    file(COPY ${SECM_PACKAGING_FOLDER}/copyright DESTINATION ${documents})
    configure_file(${SECM_CHANGELOG} ${documents}/changelog COPYONLY)

    file(GLOB programs ${root}/bin/* ${root}/lib/*.so.*.*.*)
    foreach(program IN LISTS programs)
        file(RPATH_REMOVE FILE ${program})
    endforeach()
    if(programs)
        execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note ${programs}
            COMMAND_ERROR_IS_FATAL ANY)
        execute_process(COMMAND ${SECM_PACKAGING_FOLDER}/bill_of_materials ${package} ${CPACK_PACKAGE_VERSION}
                ${SECM_LIBRARY_FOLDER} ${programs}
            OUTPUT_FILE ${documents}/${package}.spdx.json COMMAND_ERROR_IS_FATAL ANY)
    endif()
    file(GLOB archives ${root}/lib/*.a)
    if(archives)
        execute_process(COMMAND strip --strip-debug --enable-deterministic-archives ${archives} COMMAND_ERROR_IS_FATAL ANY)
    endif()
    if(EXISTS ${SECM_PACKAGING_FOLDER}/lintian-overrides.${component})
        configure_file(${SECM_PACKAGING_FOLDER}/lintian-overrides.${component} ${root}/share/lintian/overrides/${package}
            @ONLY)
    endif()

    file(GLOB_RECURSE compressed ${root}/share/man/* ${documents}/changelog)
    foreach(file IN LISTS compressed)
        execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
    execute_process(COMMAND chmod -R u=rwX,go=rX ${CPACK_TEMPORARY_DIRECTORY}/${component} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
