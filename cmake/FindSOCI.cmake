# SOCI with the engines that are used, as the target SOCI::soci. Debian's package has neither a CMake nor a pkg-config file.
find_path(SOCI_HEADERS soci/soci.h)
find_library(SOCI_CORE soci_core)
find_library(SOCI_SQLITE3 soci_sqlite3)
find_library(SOCI_POSTGRESQL soci_postgresql)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(SOCI
    REQUIRED_VARS SOCI_CORE SOCI_SQLITE3 SOCI_POSTGRESQL SOCI_HEADERS
    REASON_FAILURE_MESSAGE "install libsoci-dev")
if(SOCI_FOUND AND NOT TARGET SOCI::soci)
    add_library(SOCI::soci INTERFACE IMPORTED)
    set_target_properties(SOCI::soci PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES ${SOCI_HEADERS}
        INTERFACE_LINK_LIBRARIES "${SOCI_CORE};${SOCI_SQLITE3};${SOCI_POSTGRESQL}")
endif()
