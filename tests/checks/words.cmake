# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Checks that the project's files explain themselves: none refers to a document that a reader does not have,
# or to a path on somebody's machine.
#   cmake -D ROOT=<source tree> -P words.cmake
cmake_minimum_required(VERSION 3.25)

# Written so that the patterns do not match themselves. Case-sensitive: a published standard may be cited by
# its title.
set(patterns
    "\\bspecifi[c]ations?\\b"
    "\\bspe[c]s?\\b"
    "\\bas specifie[d]\\b"
    "\\bPar[t] [1-8]\\.[1-4]\\b"
    "(^|[^A-Za-z0-9_.~-])/(hom[e]|User[s]|roo[t]|wor[k]|mn[t])/"
    "[^r]/tm[p]/[a-z]"
)
list(JOIN patterns "|" pattern)

execute_process(COMMAND git grep --untracked --line-number -I --extended-regexp "${pattern}"
    WORKING_DIRECTORY "${ROOT}" RESULT_VARIABLE status)
if(status EQUAL 0)
    message(FATAL_ERROR "These lines lean on what a reader does not have")
elseif(NOT status EQUAL 1)
    message(FATAL_ERROR "git grep failed")
endif()
