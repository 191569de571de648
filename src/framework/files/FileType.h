// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// A kind of document that the application knows by name. It has an effect only when it is declared.
struct FileType {
    std::string Name;
    std::string Extensions; ///< each with its dot, separated by semicolons
    std::string MacType; ///< four characters, or none; a blank at the end counts
    std::string MacCreator; ///< as MacType
    std::string ConformsTo; ///< separated by a comma and a blank
    std::optional<std::string> UTI;
    std::string MimeType;
    bool Imported = false;

    /// Replaces the declared types by these.
    static void declare(std::vector<Ref<FileType>> types);

    /// The first declared type of that name; nil if there is none.
    static Ref<FileType> named(std::string_view name);
};

} // namespace quilvane
