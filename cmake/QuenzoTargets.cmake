# SPDX-License-Identifier: MIT
# What every target of our own shares; nothing of it reaches a host.

# quenzo_strict(TARGET): our warnings and the strict Qt switches.
function(quenzo_strict target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
        "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=") # messages name files of the project, not of the builder
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS
        QT_USE_QSTRINGBUILDER QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
endfunction()

# quenzo_library(TARGET HEADERS... ): export header, include folders, version and installation of one library.
function(quenzo_library target)
    string(TOLOWER ${target} lower)
    generate_export_header(${target} BASE_NAME ${lower} EXPORT_FILE_NAME include/${lower}_export.h)
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "$ORIGIN")
    target_compile_features(${target} PUBLIC cxx_std_17)
    # What the library exports and calls itself may be inlined there.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>"
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}/include>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${target}>")
    add_library(QuenzoTool::${target} ALIAS ${target})
    install(TARGETS ${target} EXPORT QuenzoToolTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY include/ "${CMAKE_CURRENT_BINARY_DIR}/include/"
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${target} FILES_MATCHING PATTERN "*.h")
    quenzo_strict(${target})
endfunction()
