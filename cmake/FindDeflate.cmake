# SPDX-License-Identifier: MIT
# Finds the compression library libdeflate, as the target Deflate::Deflate.
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
    pkg_check_modules(PC_Deflate QUIET libdeflate)
endif()
find_path(Deflate_INCLUDE_DIR libdeflate.h HINTS ${PC_Deflate_INCLUDE_DIRS})
find_library(Deflate_LIBRARY NAMES deflate HINTS ${PC_Deflate_LIBRARY_DIRS})
mark_as_advanced(Deflate_INCLUDE_DIR Deflate_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Deflate REQUIRED_VARS Deflate_LIBRARY Deflate_INCLUDE_DIR
    VERSION_VAR PC_Deflate_VERSION)

if(Deflate_FOUND AND NOT TARGET Deflate::Deflate)
    add_library(Deflate::Deflate UNKNOWN IMPORTED)
    set_target_properties(Deflate::Deflate PROPERTIES
        IMPORTED_LOCATION "${Deflate_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Deflate_INCLUDE_DIR}")
endif()
