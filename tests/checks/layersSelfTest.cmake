# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Runs layers.cmake on a small tree that it writes, and compares the reported offenders with the expected
# ones.
#   cmake -D TREE=<folder to write> -P layersSelfTest.cmake
cmake_minimum_required(VERSION 3.25)

# File, the name in its only include, and whether the check must report it.
set(cases
    "src/main.cpp|\"scan/Scanner.h\"|bad"
    "src/app/Window1.h|\"batch/SearchRun.h\"|good"
    "src/batch/SearchRun.h|<string>|good"
    "src/app/App.h|\"search/Window2.h\"|bad"
    "src/app/Rows.cpp|\"readers/internal/Zip.h\"|bad"
    "src/app/Widget.cpp|<QWidget>|bad"
    "src/readers/Text.cpp|\"app/App.h\"|good"
    "src/readers/Files.cpp|<unistd.h>|bad"
    "src/readers/Zip.cpp|\"readers/internal/Zip.h\"|good"
    "src/readers/internal/Zip.h|<vector>|good"
    "src/filter/Keep.cpp|\"search/Window2.h\"|bad"
    "src/export/Rows.cpp|\"search/Window2.h\"|good"
    "src/search/Window2.h|\"framework/Button.h\"|good"
    "src/scan/Scanner.h|<string_view>|good"
    "src/scan/Scanner.cpp|<immintrin.h>|good"
    "src/scan/Reader.cpp|\"framework/Button.h\"|bad"
    "src/scan/Pattern.cpp|<pcre2.h>|bad"
    "src/framework/Button.h|<QPushButton>|bad"
    "src/framework/Label.h|\"framework/internal/Native.h\"|bad"
    "src/framework/Button.cpp|\"framework/internal/Native.h\"|good"
    "src/framework/Folder.cpp|<sys/stat.h>|good"
    "src/framework/Word.cpp|\"documents/word/Zip.h\"|good"
    "src/framework/Word.h|\"documents/word/Zip.h\"|bad"
    "src/documents/word/Zip.h|\"text/bytes.h\"|good"
    "src/documents/word/Zip.cpp|<zlib.h>|good"
    "src/documents/word/Upward.cpp|\"framework/Button.h\"|bad"
    "src/text/bytes.h|<string_view>|good"
    "src/text/Upward.cpp|\"documents/word/Zip.h\"|bad"
    "src/readers/Word.cpp|\"documents/word/Zip.h\"|bad"
    "src/framework/Upward.cpp|\"app/App.h\"|bad"
    "src/framework/Typo.cpp|\"Button.h\"|bad"
    "src/framework/internal/Native.h|<QWidget>|good"
    "demo/main.cpp|\"framework/internal/Native.h\"|bad"
    "tests/support/Folder.h|<filesystem>|good"
    "tests/scan/ScannerTest.cpp|\"support/Folder.h\"|good"
    "tests/scan/ButtonTest.cpp|\"framework/internal/Native.h\"|bad"
    "tests/framework/ButtonTest.cpp|\"framework/internal/Native.h\"|good"
)

file(REMOVE_RECURSE "${TREE}")
foreach(case IN LISTS cases)
    string(REPLACE "|" ";" case "${case}")
    list(GET case 0 file)
    list(GET case 1 name)
    file(WRITE "${TREE}/${file}" "#pragma once\n// [;\\\n#include ${name}\n")
endforeach()

execute_process(COMMAND "${CMAKE_COMMAND}" -D "ROOT=${TREE}" -P "${CMAKE_CURRENT_LIST_DIR}/layers.cmake"
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)

foreach(case IN LISTS cases)
    string(REPLACE "|" ";" case "${case}")
    list(GET case 0 file)
    list(GET case 2 expected)
    string(FIND "${output}" "${file}:3: includes " position)
    if(expected STREQUAL "bad" AND position EQUAL -1)
        message(SEND_ERROR "Not named, but against the arrows: ${case}")
    elseif(expected STREQUAL "good" AND NOT position EQUAL -1)
        message(SEND_ERROR "Named, but with the arrows: ${case}")
    endif()
endforeach()
if(status EQUAL 0)
    message(SEND_ERROR "The check did not fail over a tree with offenders")
endif()
