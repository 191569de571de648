// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// The text of a page, UTF-8 as the layout gives it, without what would break an address.
///
/// Ligatures, full-width forms and typographic hyphens become the ASCII characters that they stand for;
/// soft hyphens, zero-width characters and the form feed at the end go. So does a line break inside an
/// address that is not whole yet: after its @, or after a hyphen or a dot of its domain. Bytes that are no
/// UTF-8 stay as they are. Linear in the text.
std::string tidyPageText(std::string_view text);

} // namespace quilvane
