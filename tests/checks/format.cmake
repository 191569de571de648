# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Checks that clang-format 14 would change no source file.
#   cmake -D ROOT=<source tree> -P format.cmake
cmake_minimum_required(VERSION 3.25)

find_program(CLANG_FORMAT NAMES clang-format-14 clang-format)
if(CLANG_FORMAT)
    execute_process(COMMAND "${CLANG_FORMAT}" --version OUTPUT_VARIABLE version)
endif()
# Other versions format differently, so their result would mean nothing.
if(NOT CLANG_FORMAT OR NOT version MATCHES "version 14\\.")
    message("SKIPPED: there is no clang-format 14 here")
    return()
endif()

execute_process(COMMAND git ls-files --cached --others --exclude-standard -- *.h *.cpp
    WORKING_DIRECTORY "${ROOT}" OUTPUT_VARIABLE files OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" files "${files}")
execute_process(COMMAND "${CLANG_FORMAT}" --dry-run -Werror ${files} WORKING_DIRECTORY "${ROOT}"
    RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "Not formatted; run: clang-format -i FILE")
endif()
