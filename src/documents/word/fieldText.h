// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// The part of a field's code that belongs to the text.
struct FieldText {
    std::string text; // empty if there is none
    bool isMailTarget; // see mailTarget()
};

/// For a link such as HYPERLINK "mailto:a%40b.org" it is the mail address, for another field the whole code
/// if it holds an '@'.
FieldText fieldText(std::string_view code);

} // namespace quilvane
