// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/fieldText.h"

#include "text/ascii.h"
#include "text/mailLink.h"

namespace quilvane {

FieldText fieldText(std::string_view code)
{
    code = withoutLeading(code, " \t\n");
    const std::string_view kind = code.substr(0, code.find_first_of(" \t\n\""));
    if (equalsIgnoringCase(kind, "HYPERLINK")) {
        const std::string_view argument = withoutLeading(code.substr(kind.size()), " \t\n\"");
        return { mailTarget(argument.substr(0, argument.find_first_of("\" \t\n"))), true };
    }
    return { code.find('@') == std::string_view::npos ? std::string() : std::string(code), false };
}

} // namespace quilvane
