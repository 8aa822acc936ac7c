# What is installed, how others find it, and the Debian packages.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# With their headers, which each names in a FILE_SET.
set(libraries SECM_AccessControl SECM_Analysis secm secm_admin cfg tmrlog secm_base platform)
# Headers name one another from this folder's root.
set(header_folder ${CMAKE_INSTALL_INCLUDEDIR}/secm-accesscontrol)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/SECM_AccessControl)

install(TARGETS ${libraries} EXPORT SECM_AccessControlTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
    FILE_SET HEADERS DESTINATION ${header_folder} COMPONENT dev)

if(SECM_BUILD_TOOLS)
    set_target_properties(acfilter PROPERTIES INSTALL_RPATH "\$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS acfilter RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
    install(FILES tools/acfilter/acfilter.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT runtime)
    install(FILES tools/acfilter/acfilter.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME acfilter COMPONENT runtime)
endif()

install(EXPORT SECM_AccessControlTargets NAMESPACE SECM_AccessControl:: DESTINATION ${package_folder} COMPONENT dev)
configure_package_config_file(cmake/SECM_AccessControlConfig.cmake.in
    ${PROJECT_BINARY_DIR}/SECM_AccessControlConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/SECM_AccessControlConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/SECM_AccessControl.pc.in ${PROJECT_BINARY_DIR}/SECM_AccessControl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/SECM_AccessControlConfig.cmake
    ${PROJECT_BINARY_DIR}/SECM_AccessControlConfigVersion.cmake
    DESTINATION ${package_folder} COMPONENT dev)
install(FILES ${PROJECT_BINARY_DIR}/SECM_AccessControl.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME secm-accesscontrol)
set(CPACK_PACKAGE_CONTACT "The SECM_AccessControl maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Access-control filters, user by user")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libsecm-accesscontrol${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libsecm-accesscontrol-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "libsecm-accesscontrol${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
include(CPack)
