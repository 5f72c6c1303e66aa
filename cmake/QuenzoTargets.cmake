# SPDX-License-Identifier: MIT
# What every target of our own shares; nothing of it reaches a host.

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

# What makes memory faults hard to exploit, of that what the tools know; a builder's own flags on the same subject hold.
# Sanitizers take the place of all of it.
set(quenzo_optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
if(CMAKE_CXX_FLAGS MATCHES "-O[123sgz]")
    set(quenzo_optimised 1)
endif()
set(quenzo_hardening "")
set(quenzo_hardened_links "")
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    foreach(flag IN ITEMS stack-protector=-fstack-protector-strong stack-clash-protection=-fstack-clash-protection
            cf-protection=-fcf-protection)
        string(REGEX MATCH "^([^=]*)=(.*)$" ignored "${flag}")
        set(subject "${CMAKE_MATCH_1}")
        set(option "${CMAKE_MATCH_2}")
        check_cxx_compiler_flag(${option} QUENZO_HAVE_${subject})
        if(QUENZO_HAVE_${subject} AND NOT CMAKE_CXX_FLAGS MATCHES "${subject}")
            list(APPEND quenzo_hardening ${option})
        endif()
    endforeach()
    if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
        list(APPEND quenzo_hardening -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    check_linker_flag(CXX "-Wl,-z,relro,-z,now" QUENZO_HAVE_relro)
    set(link_flags "${CMAKE_CXX_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS} ${CMAKE_EXE_LINKER_FLAGS}")
    if(QUENZO_HAVE_relro AND NOT link_flags MATCHES "-z,?(lazy|norelro)")
        set(quenzo_hardened_links -Wl,-z,relro,-z,now)
    endif()
endif()

# quenzo_strict(TARGET): our warnings and the strict Qt switches; hardening, where the code is optimised.
function(quenzo_strict target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
        "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=") # messages name files of the project, not of the builder
    # Qt's own macros of logging categories, where nothing is put between their brackets.
    target_compile_options(${target} PRIVATE
        "$<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>")
    target_compile_options(${target} PRIVATE "$<${quenzo_optimised}:${quenzo_hardening}>")
    target_link_options(${target} PRIVATE "$<${quenzo_optimised}:${quenzo_hardened_links}>")
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS
        QT_USE_QSTRINGBUILDER QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
endfunction()

# quenzo_library(TARGET HEADERS... ): export header, include folders, version and installation of one library.
function(quenzo_library target)
    string(TOLOWER ${target} lower)
    generate_export_header(${target} BASE_NAME ${lower} EXPORT_FILE_NAME include/${lower}_export.h)
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    # In the system's own folder they are found without.
    if(NOT QUENZO_HOST_ROOT)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
    target_compile_features(${target} PUBLIC cxx_std_17)
    # What the library exports and calls itself may be inlined there.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>"
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}/include>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${target}>")
    add_library(QuenzoTool::${target} ALIAS ${target})
    install(TARGETS ${target} EXPORT QuenzoToolTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
    install(DIRECTORY include/ "${CMAKE_CURRENT_BINARY_DIR}/include/"
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${target} COMPONENT development FILES_MATCHING PATTERN "*.h")
    quenzo_strict(${target})
endfunction()
