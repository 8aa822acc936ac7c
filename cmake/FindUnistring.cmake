# libunistring, of which Debian packages neither a CMake nor a pkg-config file.
include(FindPackageHandleStandardArgs)
find_library(UNISTRING_LIBRARY unistring)
find_path(UNISTRING_HEADERS uniwidth.h)
mark_as_advanced(UNISTRING_LIBRARY UNISTRING_HEADERS)
find_package_handle_standard_args(Unistring REQUIRED_VARS UNISTRING_LIBRARY UNISTRING_HEADERS)
if(Unistring_FOUND AND NOT TARGET Unistring::unistring)
    add_library(Unistring::unistring UNKNOWN IMPORTED)
    set_target_properties(Unistring::unistring PROPERTIES
        IMPORTED_LOCATION ${UNISTRING_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${UNISTRING_HEADERS})
endif()
