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
    install(TARGETS acfilter RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(FILES tools/acfilter/acfilter.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES tools/acfilter/acfilter.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME acfilter COMPONENT tools)
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

set(document_folder ${CMAKE_INSTALL_DATADIR}/doc/secm-accesscontrol)
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${document_folder} COMPONENT doc)
install(DIRECTORY docs DESTINATION ${document_folder} COMPONENT doc FILES_MATCHING PATTERN "*.md")
install(DIRECTORY examples/documents DESTINATION ${document_folder}/examples COMPONENT doc)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME secm-accesscontrol)
set(CPACK_PACKAGE_CONTACT "SECM_AccessControl maintainers <maintainers@secm-accesscontrol.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Access-control filters, user by user")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Nothing in the library package has a name without the major version, so that two major versions can be installed.
set(library_package libsecm-accesscontrol${PROJECT_VERSION_MAJOR})
set(CPACK_COMPONENTS_ALL runtime dev doc)
set(SECM_PACKAGE_NAMES ${library_package} libsecm-accesscontrol-dev secm-accesscontrol-doc)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "A host application loads this library to learn which of its data each user may
see. The answer is a filter text in the host's own query language. The package
contains the library, its analysis library, and the supplied security manager,
configuration and log.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/packaging/triggers
    ${PROJECT_BINARY_DIR}/packaging/shlibs)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libsecm-accesscontrol-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEV_DESCRIPTION "Development files: headers, links and build-system files for hosts, and for
security managers, configurations and logs of their own.")
set(CPACK_DEBIAN_DOC_PACKAGE_NAME secm-accesscontrol-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DOC_DESCRIPTION "Documents for administrators, auditors, operators and host developers, the
tables of the security database, and a sample archive with its users.")
if(SECM_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
    list(APPEND SECM_PACKAGE_NAMES acfilter)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME acfilter)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION admin)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS secm-accesscontrol-doc)
    set(CPACK_DEBIAN_TOOLS_DESCRIPTION "The command line: prints and explains users' filters, checks configurations
and grants, reports what each user sees, and compares two configurations.")
endif()

# Other packages find the package of a library by the first file; the second makes the loader notice new libraries.
set(shlibs "")
foreach(library SECM_AccessControl SECM_Analysis secm secm_admin cfg tmrlog)
    get_target_property(name ${library} OUTPUT_NAME)
    if(NOT name)
        set(name ${library})
    endif()
    string(APPEND shlibs
        "lib${name} ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})\n")
endforeach()
file(CONFIGURE OUTPUT packaging/shlibs CONTENT "${shlibs}")
file(CONFIGURE OUTPUT packaging/triggers CONTENT "activate-noawait ldconfig\n")

# The time of this version. It stands in the packages, whenever they are built.
set(RELEASE_EPOCH 1795435200)
set(RELEASE_DATE "Mon, 23 Nov 2026 12:00:00 +0000")
configure_file(packaging/changelog.in packaging/changelog @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/prepare.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/finish.cmake)
set(SECM_PACKAGING_FOLDER ${PROJECT_SOURCE_DIR}/packaging)
set(SECM_LIBRARY_FOLDER ${PROJECT_BINARY_DIR}/lib)
set(SECM_CHANGELOG ${PROJECT_BINARY_DIR}/packaging/changelog)
configure_file(packaging/variables.cmake.in packaging/variables.cmake @ONLY)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/packaging/variables.cmake)
include(CPack)
