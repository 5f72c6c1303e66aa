# SPDX-License-Identifier: MIT
# The CMake package and the pkg-config file that hosts find the libraries with.
include(CMakePackageConfigHelpers)

# No search of a host looks here: in the build tree a part of the package is missing.
set(unfinished "${PROJECT_BINARY_DIR}/CMakeFiles/package")
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/QuenzoTool")
install(EXPORT QuenzoToolTargets NAMESPACE QuenzoTool:: DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/QuenzoToolConfig.cmake.in"
    "${unfinished}/QuenzoToolConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${unfinished}/QuenzoToolConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${unfinished}/QuenzoToolConfig.cmake" "${unfinished}/QuenzoToolConfigVersion.cmake"
    DESTINATION "${package_dir}" COMPONENT development)

# How many folders lie between the file and the prefix is the library folder's affair.
file(RELATIVE_PATH pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/quenzotool.pc.in" "${unfinished}/quenzotool.pc" @ONLY)
install(FILES "${unfinished}/quenzotool.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT development)
