# SPDX-License-Identifier: MIT
# Installs the build tree into a prefix of its own and runs what stands there: the host program, and a consumer that is
# built with the CMake package or, separately, with what pkg-config says.
#   cmake -DBINARY_DIR=… -DSOURCE_DIR=… -DWORK_DIR=… -DLIB_DIR=… -DCXX=… -DCXX_FLAGS=… -DHOST=ON -P check.cmake
cmake_minimum_required(VERSION 3.22)
include("${CMAKE_CURRENT_LIST_DIR}/examples.cmake")

# run(RESULT COMMAND...): runs a command that must succeed, and keeps what it prints.
function(run result)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE error RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\nended with ${code}\n${output}\n${error}")
    endif()
    set(${result} "${output}" PARENT_SCOPE)
endfunction()

function(expect actual expected what)
    if(NOT actual STREQUAL expected)
        message(FATAL_ERROR "${what}: \"${actual}\" instead of \"${expected}\"")
    endif()
endfunction()

# run_consumer(PROGRAM): runs it in the bin folder of a root of its own, beside its script.
function(run_consumer program)
    set(root "${WORK_DIR}/root")
    file(REMOVE_RECURSE "${root}")
    file(INSTALL "${program}" DESTINATION "${root}/bin" USE_SOURCE_PERMISSIONS)
    file(INSTALL "${SOURCE_DIR}/Script" DESTINATION "${root}")
    file(WRITE "${root}/tool/mac/Python/init_python_env.py" "")
    run(printed "${root}/bin/consumer")
    expect("${printed}" "hello consumer hello consumer hello consumer\nPythonToolThread\napp.apk\n" "the consumer printed")
    file(STRINGS "${root}/log/quenzotool.log" entries)
    if(NOT entries MATCHES "^[0-9T:.-]+ the consumer runs$")
        message(FATAL_ERROR "the consumer logged: ${entries}")
    endif()
endfunction()

set(prefix "${WORK_DIR}/prefix with blank")
file(REMOVE_RECURSE "${WORK_DIR}")
run(ignored ${CMAKE_COMMAND} --install "${BINARY_DIR}" --prefix "${prefix}")

foreach(file IN ITEMS include/QuenzoTool/quenzotool.h include/QuenzoTool/pythonforqt.h
        include/QuenzoTool/pythontoolthread.h include/QuenzoTool/quenzotool_export.h include/QuenzoBase/quenzobase.h
        include/QuenzoBase/quenzobase_export.h ${LIB_DIR}/libQuenzoTool.so ${LIB_DIR}/libQuenzoBase.so
        ${LIB_DIR}/pkgconfig/quenzotool.pc ${LIB_DIR}/cmake/QuenzoTool/QuenzoToolConfig.cmake)
    if(NOT EXISTS "${prefix}/${file}")
        message(FATAL_ERROR "${file} is not installed")
    endif()
endforeach()
if(HOST)
    foreach(folder IN ITEMS bin Script tool/mac log)
        if(NOT IS_DIRECTORY "${prefix}/${folder}")
            message(FATAL_ERROR "the folder ${folder} is not installed")
        endif()
    endforeach()
    run(version "${prefix}/bin/quenzo" --version)
    if(NOT version MATCHES "^quenzo [0-9.]+\n$")
        message(FATAL_ERROR "quenzo --version printed \"${version}\"")
    endif()
endif()

run(ignored ${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${WORK_DIR}/package" "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DCMAKE_CXX_COMPILER=${CXX}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run(ignored ${CMAKE_COMMAND} --build "${WORK_DIR}/package")
run_consumer("${WORK_DIR}/package/consumer")

# The build tree is no place to find the package in: only a part of it is there.
file(WRITE "${WORK_DIR}/tree/CMakeLists.txt" "cmake_minimum_required(VERSION 3.22)
project(tree LANGUAGES NONE)
find_package(QuenzoTool CONFIG)
if(QuenzoTool_FOUND OR QuenzoTool_CONSIDERED_CONFIGS)
    message(FATAL_ERROR \"found: \${QuenzoTool_CONSIDERED_CONFIGS}\")
endif()
")
run(ignored ${CMAKE_COMMAND} -S "${WORK_DIR}/tree" -B "${WORK_DIR}/tree/build" "-DCMAKE_PREFIX_PATH=${BINARY_DIR}"
    "-DQuenzoTool_ROOT=${BINARY_DIR}" -Wno-dev)
file(GLOB half "${BINARY_DIR}/*.pc" "${BINARY_DIR}/QuenzoTool*.cmake")
expect("${half}" "" "the build tree offers")

find_program(pkg_config NAMES pkg-config pkgconf REQUIRED)
set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIB_DIR}/pkgconfig")
run(flags ${pkg_config} --cflags --libs quenzotool)
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS}")
file(MAKE_DIRECTORY "${WORK_DIR}/plain")
run(ignored "${CXX}" ${cxx_flags} "${SOURCE_DIR}/main.cpp" ${flags} "-Wl,-rpath,${prefix}/${LIB_DIR}"
    -o "${WORK_DIR}/plain/consumer")
run_consumer("${WORK_DIR}/plain/consumer")

# By pkg-config's words, which the CMake package's equal.
check_header_examples("${prefix}" "${CXX}" ${cxx_flags} ${flags})
if(HOST)
    # What pkg-config prints has no quotation marks: the README's prefix is without a blank.
    set(plain_prefix "${WORK_DIR}/prefix")
    run(ignored ${CMAKE_COMMAND} --install "${BINARY_DIR}" --prefix "${plain_prefix}")
    check_readme_host("${SOURCE_DIR}/../../README.md" "${plain_prefix}"
        "${SOURCE_DIR}/../../host/sample/packages/harbourpay.zip")
endif()
