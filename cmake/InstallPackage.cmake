# SPDX-License-Identifier: MIT
# The CMake package and the pkg-config file that hosts find the libraries with.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/QuenzoTool")
install(EXPORT QuenzoToolTargets NAMESPACE QuenzoTool:: DESTINATION "${package_dir}")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/QuenzoToolConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/QuenzoToolConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/QuenzoToolConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/QuenzoToolConfig.cmake" "${PROJECT_BINARY_DIR}/QuenzoToolConfigVersion.cmake"
    DESTINATION "${package_dir}")

configure_file("${PROJECT_SOURCE_DIR}/cmake/quenzotool.pc.in" "${PROJECT_BINARY_DIR}/quenzotool.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/quenzotool.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
