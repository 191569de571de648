// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/FileType.h"

#include <utility>

namespace quilvane {

namespace {

std::vector<Ref<FileType>> declaredTypes;

} // namespace

void FileType::declare(std::vector<Ref<FileType>> types)
{
    declaredTypes = std::move(types);
}

Ref<FileType> FileType::named(std::string_view name)
{
    for (const Ref<FileType>& type : declaredTypes) {
        if (type->Name == name)
            return type;
    }
    return Ref<FileType>::nil("There is no file type named " + std::string(name) + ".");
}

} // namespace quilvane
