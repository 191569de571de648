// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The plain form of a character that would otherwise break an address: the ASCII characters for a ligature,
/// a full-width form, a typographic hyphen or a no-break space, and an empty text for a soft hyphen and
/// characters without width. Nothing for all others.
std::optional<std::string_view> plainForm(char32_t character);

/// UTF-8 with all characters in their plain forms. Bytes that are no UTF-8 stay as they are.
std::string withPlainCharacters(std::string_view text);

} // namespace quilvane
