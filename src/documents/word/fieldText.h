// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// What of a field's code belongs to the text.
struct FieldText {
    std::string text; // empty if nothing does
    bool isMailTarget; // see mailTarget()
};

/// Of a link, as in HYPERLINK "mailto:a%40b.org", that is where mail goes; of another field all of the code
/// if it holds an '@'.
FieldText fieldText(std::string_view code);

} // namespace quilvane
