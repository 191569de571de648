// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// What of a field's code, as in HYPERLINK "mailto:a%40b.org", belongs to the text: of a link what stands
/// behind "mailto:", with %XX decoded; of another field all of the code if it holds an '@'. Otherwise
/// nothing.
std::string fieldText(std::string_view code);

/// What stands behind "mailto:" in a link's target, with %XX decoded; empty if it is another link.
std::string mailTarget(std::string_view target);

} // namespace quilvane
