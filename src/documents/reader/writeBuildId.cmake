# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Writes the source of buildId(): a hash of files, which equal sources share wherever they are built.
#   cmake -D ROOT=<folder> -D FILES=<names below ROOT> -D VERSION=<version> -D OUTPUT=<file> -P writeBuildId.cmake
cmake_minimum_required(VERSION 3.25)

set(all "${VERSION}")
foreach(file IN LISTS FILES)
    file(SHA256 "${ROOT}/${file}" hash)
    string(APPEND all " ${file} ${hash}")
endforeach()
string(SHA256 id "${all}")
file(WRITE "${OUTPUT}" "#include \"documents/reader/buildId.h\"

std::string quilvane::buildId()
{
    return \"${id}\";
}
")
