# SPDX-License-Identifier: MIT
# Finds the Python 2.7 runtime library to embed, as the target Python27::Python, and the folder that holds its
# include and lib folders, as Python27_HOME.
#
# Only the system's own is looked for: interpreters under version managers come first on the usual search paths
# and bring neither a shared runtime nor a standard library that a host could count on. Name another one with
# -DPython27_INCLUDE_DIR=… and -DPython27_LIBRARY=….
find_path(Python27_INCLUDE_DIR Python.h
    PATHS /usr/include/python2.7 NO_DEFAULT_PATH)
find_library(Python27_LIBRARY NAMES python2.7
    PATHS "/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}" /usr/lib64 /usr/lib NO_DEFAULT_PATH)
mark_as_advanced(Python27_INCLUDE_DIR Python27_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Python27 REQUIRED_VARS Python27_LIBRARY Python27_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "scripts/dependencies.sh installs it on Debian 12")

cmake_path(GET Python27_INCLUDE_DIR PARENT_PATH Python27_HOME)
cmake_path(GET Python27_HOME PARENT_PATH Python27_HOME)

if(Python27_FOUND AND NOT TARGET Python27::Python)
    add_library(Python27::Python SHARED IMPORTED)
    set_target_properties(Python27::Python PROPERTIES
        IMPORTED_LOCATION "${Python27_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Python27_INCLUDE_DIR}")
endif()
