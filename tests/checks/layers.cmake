# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Checks every #include against the arrows between the rooms, and names each offender as file:line.
#   cmake -D ROOT=<source tree> -P layers.cmake
cmake_minimum_required(VERSION 3.25)

# Who may include whom. Left: a room of src/ (main is src/main.cpp) or a folder beside src/. Right: rooms, single
# headers, "std" (the C++ library), "system" (POSIX), "libraries" (all else). A room may always include its
# own headers.
set(arrows
    "main:      app framework std"
    "app:       batch/SearchRun.h filter/filterWIn.h search/searchWin.h scan framework std"
    "readers:   app scan framework std batch/readerRules.h"
    "batch:     app scan framework std"
    "filter:    app scan framework std"
    "search:    app scan framework std filter/filterWIn.h"
    "export:    app scan framework std search/Window2.h"
    "scan:      std cpuid.h immintrin.h sys/mman.h"
    "framework: documents text std system libraries"
    "documents: text std system libraries"
    "text:      std system libraries"
    "demo:      app readers batch filter search export scan framework std"
    "packaging: std libraries"
    "tests:     app readers batch filter search export scan framework documents text std system libraries"
    "bench:     app readers batch filter search export scan framework documents text std system libraries tests"
    "fuzz:      scan documents text std libraries tests"
)

# A private header belongs to its room: no other room and no public header may include it, but the room's tests may.
# The framework's public headers may include only std and each other.
set(privateHeader "(^|/)internal/")

set(standardHeader "^[a-z][a-z0-9_]*$")
set(systemHeader "^(sys|netinet|arpa|linux)/|^(dirent|fcntl|poll|pwd|signal|spawn|unistd)\\.h$")

foreach(arrow IN LISTS arrows)
    string(REGEX MATCH "^([a-z]+): *(.*)$" _ "${arrow}")
    string(REPLACE " " ";" "mayInclude_${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}")
endforeach()

# The room or folder of a path from ROOT.
function(roomOf path result)
    string(REGEX REPLACE "^src/" "" path "${path}")
    string(REGEX REPLACE "^main\\.cpp$" "main/" path "${path}")
    string(REGEX REPLACE "/.*$" "" room "${path}")
    set(${result} "${room}" PARENT_SCOPE)
endfunction()

# Sets result to a path from ROOT if the included header is the project's, else to std, system, libraries or
# nothing.
function(resolve includer quoted name result)
    if(NOT quoted)
        if(name MATCHES "${standardHeader}")
            set(found std)
        elseif(name MATCHES "${systemHeader}")
            set(found system)
        else()
            set(found libraries)
        endif()
    elseif(EXISTS "${ROOT}/src/${name}")
        set(found "src/${name}")
    elseif(name MATCHES "\\.moc$|(^|/)moc_")
        set(found libraries)
    else()
        set(found nothing)
        cmake_path(GET includer PARENT_PATH folder)
        foreach(candidate "tests/${name}" "${folder}/${name}")
            if(NOT includer MATCHES "^src/" AND EXISTS "${ROOT}/${candidate}")
                set(found "${candidate}")
                break()
            endif()
        endforeach()
    endif()
    set(${result} "${found}" PARENT_SCOPE)
endfunction()

# Sets result to the reason why the includer may not include the name, or to nothing.
function(objection includer quoted name result)
    roomOf("${includer}" room)
    resolve("${includer}" "${quoted}" "${name}" target)
    roomOf("${target}" targetRoom)
    if(includer MATCHES "\\.h$" AND NOT includer MATCHES "${privateHeader}")
        set(isPublic TRUE)
    else()
        set(isPublic FALSE)
    endif()

    set(reason "")
    if(target STREQUAL "nothing")
        set(reason "there is no such header; includes are written from src/")
    elseif(target MATCHES "^src/" AND name MATCHES "${privateHeader}")
        if(isPublic AND room STREQUAL targetRoom)
            set(reason "a public header may not include a private one")
        elseif(NOT room STREQUAL targetRoom AND NOT includer MATCHES "^tests/${targetRoom}/")
            set(reason "a private header of ${targetRoom}")
        endif()
    elseif(room STREQUAL targetRoom)
    elseif(NOT "${targetRoom}" IN_LIST mayInclude_${room} AND NOT "${name}" IN_LIST mayInclude_${room})
        set(reason "${room} may include: ${mayInclude_${room}}")
        string(REPLACE ";" " " reason "${reason}")
    elseif(room STREQUAL "framework" AND isPublic AND NOT target STREQUAL "std")
        set(reason "a public header of the framework shows std only")
    endif()
    set(${result} "${reason}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE files RELATIVE "${ROOT}"
    "${ROOT}/src/*.h" "${ROOT}/src/*.cpp" "${ROOT}/demo/*.h" "${ROOT}/demo/*.cpp" "${ROOT}/tests/*.h"
    "${ROOT}/tests/*.cpp" "${ROOT}/bench/*.h" "${ROOT}/bench/*.cpp" "${ROOT}/fuzz/*.h" "${ROOT}/fuzz/*.cpp"
    "${ROOT}/packaging/*.cpp")
set(offenders 0)
set(includes 0)
foreach(file IN LISTS files)
    # As a list of lines. First removes the characters that are special in CMake's lists.
    file(READ "${ROOT}/${file}" text)
    string(REGEX REPLACE "[][;\\]" "" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(number 0)
    foreach(line IN LISTS lines)
        math(EXPR number "${number} + 1")
        if(line MATCHES "^[ \t]*#[ \t]*include[ \t]*([<\"])([^>\"]+)[>\"]")
            set(name "${CMAKE_MATCH_2}")
            string(COMPARE EQUAL "${CMAKE_MATCH_1}" "\"" quoted)
            objection("${file}" "${quoted}" "${name}" reason)
            math(EXPR includes "${includes} + 1")
            if(reason)
                math(EXPR offenders "${offenders} + 1")
                message("${file}:${number}: includes ${name}: ${reason}")
            endif()
        endif()
    endforeach()
endforeach()

if(includes EQUAL 0)
    message(FATAL_ERROR "No includes found under ${ROOT}")
elseif(offenders GREATER 0)
    message(FATAL_ERROR "${offenders} of ${includes} includes go against the arrows")
endif()
message("${includes} includes follow the arrows")
