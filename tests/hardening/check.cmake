# SPDX-License-Identifier: MIT
# Reads built files for the protections that every optimised build has.
#   cmake -DREADELF=… -DFILES=…;… -DFORTIFIED=…;… -P check.cmake
cmake_minimum_required(VERSION 3.22)

# require(FILE OPTION PATTERN WHAT): what readelf prints of a file matches a pattern.
function(require file option pattern what)
    execute_process(COMMAND "${READELF}" -W ${option} "${file}" OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    if(NOT output MATCHES "${pattern}")
        message(SEND_ERROR "${file} lacks ${what}")
    endif()
endfunction()

foreach(file IN LISTS FILES)
    require("${file}" --dynamic "FLAGS_1[^\n]* NOW" "immediate binding")
    require("${file}" --program-headers "GNU_RELRO" "relocations that are read-only")
    require("${file}" --program-headers "GNU_STACK +[^\n]* RW +" "a stack that cannot be executed")
    require("${file}" --file-header "Type: +DYN" "a position of the loader's choice")
    require("${file}" --dyn-syms "__stack_chk_fail" "guarded stacks")
endforeach()
foreach(file IN LISTS FORTIFIED)
    require("${file}" --dyn-syms " __[a-z]+_chk@" "checked calls of the C library")
endforeach()
