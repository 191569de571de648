// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The longest address that mail allows: RFC 5321, 4.5.3.1, 64 bytes before the @ and 255 after it.
inline constexpr std::size_t longestAddress = 64 + 1 + 255;

/// The plain form of a character that would otherwise break an address: the ASCII characters for a ligature,
/// a full-width form, a typographic hyphen or a no-break space, and an empty text for a soft hyphen and
/// characters without width. Nothing for all others.
std::optional<std::string_view> plainForm(char32_t character);

/// UTF-8 with all characters in their plain forms. Bytes that are no UTF-8 stay as they are.
std::string withPlainCharacters(std::string_view text);

} // namespace quilvane
