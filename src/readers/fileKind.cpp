// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/fileKind.h"

#include "framework/regex/RegEx.h"

#include <array>
#include <utility>

namespace quilvane {

FileKind fileKind(std::string_view name)
{
    constexpr std::array<std::pair<const char*, FileKind>, 4> kinds{ {
        { "\\.pdf", FileKind::PDF },
        { "\\.doc", FileKind::Word }, // .docx as well
        { "\\.csv", FileKind::Delimited },
        { "\\.txt", FileKind::Text },
    } };
    for (const auto& [pattern, kind] : kinds) {
        RegEx expression;
        expression.setSearchPattern(pattern);
        if (expression.matches(name))
            return kind;
    }
    return FileKind::Other;
}

} // namespace quilvane
