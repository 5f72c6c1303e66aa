# SPDX-License-Identifier: MIT
# The folders a host finds beside bin/: the build tree gets them at each build, an installed prefix likewise.
if(WIN32)
    set(tool_dir tool/win)
else()
    set(tool_dir tool/mac)
endif()
set(host_root .)
if(QUENZO_HOST_ROOT)
    set(host_root "${QUENZO_HOST_ROOT}")
endif()

# quenzo_stage(SOURCE DESTINATION [PERMISSIONS...]): keeps a file of the source tree up to date in the build tree's
# root, installs it, with further permissions.
function(quenzo_stage source destination)
    cmake_path(GET source FILENAME name)
    set(staged "${PROJECT_BINARY_DIR}/${destination}/${name}")
    # A copy onto a link, such as an earlier version left, would go to the program behind it.
    if(IS_SYMLINK "${staged}")
        file(REMOVE "${staged}")
    endif()
    add_custom_command(OUTPUT "${staged}" DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${source}"
        COMMAND ${CMAKE_COMMAND} -E make_directory "${PROJECT_BINARY_DIR}/${destination}"
        COMMAND ${CMAKE_COMMAND} -E copy "${CMAKE_CURRENT_SOURCE_DIR}/${source}" "${staged}" VERBATIM)
    set_property(DIRECTORY APPEND PROPERTY staged_files "${staged}")
    install(PROGRAMS "${source}" DESTINATION "${host_root}/${destination}" COMPONENT host
        PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ ${ARGN})
endfunction()

# quenzo_link_program(NAME LINK): a link to the system's program in the tool folder.
function(quenzo_link_program name link)
    find_program(QUENZO_${name} NAMES ${name})
    if(NOT QUENZO_${name})
        message(WARNING "The program ${name} was not found: the commands that need it will say so.")
        return()
    endif()
    file(CREATE_LINK "${QUENZO_${name}}" "${PROJECT_BINARY_DIR}/${tool_dir}/${link}" SYMBOLIC)
    install(FILES "${PROJECT_BINARY_DIR}/${tool_dir}/${link}" DESTINATION "${host_root}/${tool_dir}" COMPONENT host)
endfunction()

file(GLOB scripts CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" Script/*)
foreach(script IN LISTS scripts)
    quenzo_stage(${script} Script)
endforeach()
file(GLOB modules CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" tool/Python/*.py)
foreach(module IN LISTS modules)
    quenzo_stage(${module} ${tool_dir}/Python)
endforeach()

file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/${tool_dir}" "${PROJECT_BINARY_DIR}/log")
if(WIN32)
    quenzo_link_program(adb adb)
else()
    # Our launcher stands in adb's place, and falls back on the PATH when its link leads nowhere.
    quenzo_stage(tool/adb ${tool_dir} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
    quenzo_link_program(adb adb-program)
endif()
quenzo_link_program(aapt aapt)
if(NOT QUENZO_HOST_ROOT)
    install(DIRECTORY DESTINATION log COMPONENT host)
endif()

get_property(staged DIRECTORY PROPERTY staged_files)
add_custom_target(runtime_folders ALL DEPENDS ${staged})
