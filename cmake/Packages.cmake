# SPDX-License-Identifier: MIT
# Debian's packages, for scripts/package.sh: the libraries, what hosts are built with, and the program.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quenzotool)
set(CPACK_PACKAGE_VENDOR "the QuenzoTool developers")
set(CPACK_PACKAGE_CONTACT "QuenzoTool developers <developers@quenzo.example>")
set(CPACK_COMPONENTS_ALL runtime development host)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same_version "libquenzotool${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}-1)")
set(about_python "Scripts run in Python 2.7, which Debian has no more since release 12:
\\\"dependencies.sh python\\\", which comes beside these packages, gets it from
release 11.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libquenzotool${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# What the system's own tools would write; CPack's form calls ldconfig itself.
set(libraries_control "${PROJECT_BINARY_DIR}/debian/control")
file(WRITE "${libraries_control}/triggers" "activate-noawait ldconfig\n")
file(WRITE "${libraries_control}/shlibs" "")
foreach(library IN ITEMS QuenzoBase QuenzoTool)
    file(APPEND "${libraries_control}/shlibs"
        "lib${library} ${PROJECT_VERSION_MAJOR} libquenzotool${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION})\n")
endforeach()
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${libraries_control}/triggers" "${libraries_control}/shlibs")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libqt5sql5-sqlite")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "packaging work of a mobile game tool - libraries.
The library that does the heavy work of a packaging tool for mobile games:
scripts, records, project trees, channel icons and devices.
${about_python}")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libquenzotool-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}, qtbase5-dev (>= 5.15)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "packaging work of a mobile game tool - development files.
The headers, the CMake package and the pkg-config file that hosts of the
library are built with.")

set(CPACK_DEBIAN_HOST_PACKAGE_NAME quenzo)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "${same_version}, adb, aapt, openssl")
set(CPACK_DEBIAN_HOST_PACKAGE_SUGGESTS "apksigner, apktool") # for jobs that sign, or change manifests
set(CPACK_COMPONENT_HOST_DESCRIPTION "packaging work of a mobile game tool - command-line program.
Builds every channel's package of a game; imports channel SDKs, encrypts,
unpacks and packs APKs, makes launcher icons and installs on devices.
${about_python}")
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/prerm")

# The date of the sources, where the packager says it, and never that of the build.
string(TIMESTAMP debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(debian_dir "${PROJECT_BINARY_DIR}/debian")
configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in" "${debian_dir}/changelog.Debian" @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${debian_dir}/changelog" COPYONLY)
file(READ "${PROJECT_SOURCE_DIR}/LICENSES/MIT.txt" licence)
string(REGEX REPLACE "^.*developers\n\n" "" licence "${licence}")
string(REGEX REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REGEX REPLACE "\n(.)" "\n \\1" licence " ${licence}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/copyright.in" "${debian_dir}/copyright" @ONLY)
if(QUENZO_HOST_ROOT)
    execute_process(COMMAND gzip -9nkf changelog changelog.Debian WORKING_DIRECTORY "${debian_dir}"
        COMMAND_ERROR_IS_FATAL ANY)
    foreach(component IN ITEMS runtime development host)
        string(TOUPPER ${component} upper)
        install(FILES "${debian_dir}/copyright" "${debian_dir}/changelog.gz" "${debian_dir}/changelog.Debian.gz"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}" COMPONENT ${component})
    endforeach()
    # Written by scripts/package.sh when all is linked.
    install(FILES "${debian_dir}/quenzotool.spdx.json" OPTIONAL
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}" COMPONENT runtime)
    install(FILES README.md DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/quenzo" COMPONENT host)
    install(FILES docs/hosting.md docs/scripts.md
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/libquenzotool-dev" COMPONENT development)
    install(PROGRAMS scripts/dependencies.sh DESTINATION "${CMAKE_INSTALL_DATADIR}/quenzo" COMPONENT host)
    install(DIRECTORY host/sample DESTINATION "${CMAKE_INSTALL_DATADIR}/quenzo" COMPONENT host
        USE_SOURCE_PERMISSIONS)
    install(FILES cmake/debian/libquenzotool-dev.overrides DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides"
        RENAME libquenzotool-dev COMPONENT development)
endif()
include(CPack)
