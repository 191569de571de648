# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Checks the desktop entry and the metadata with the desktop's own validators.
#   cmake -D ENTRY=<desktop entry> -D METADATA=<AppStream metadata> -P desktopFiles.cmake
cmake_minimum_required(VERSION 3.25)

find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
find_program(APPSTREAMCLI appstreamcli)
if(NOT DESKTOP_FILE_VALIDATE OR NOT APPSTREAMCLI)
    message("SKIPPED: there is no desktop-file-validate or no appstreamcli here")
    return()
endif()

execute_process(COMMAND "${DESKTOP_FILE_VALIDATE}" "${ENTRY}" OUTPUT_VARIABLE said ERROR_VARIABLE said
    RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR NOT said STREQUAL "")
    message(FATAL_ERROR "desktop-file-validate: ${said}")
endif()

execute_process(COMMAND "${APPSTREAMCLI}" validate --no-net --pedantic --no-color "${METADATA}"
    OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE status)
# The id ends with the program's name, which has a capital letter.
string(REGEX REPLACE "P: [^\n]*cid-contains-uppercase-letter[^\n]*" "" others "${said}")
if(NOT status EQUAL 0 OR others MATCHES "(^|\n)[EWIP]: ")
    message(FATAL_ERROR "appstreamcli: ${said}")
endif()
