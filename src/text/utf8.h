// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

struct Utf8Character {
    /// The code of a byte that is no part of a character (RFC 3629, section 3).
    static constexpr char32_t none = 0xFFFFFFFF;

    char32_t code;
    std::size_t length; // bytes; 1 for `none`
};

/// The first character of `text`, which must not be empty.
Utf8Character firstCharacter(std::string_view text);

/// Appends U+FFFD for a number that is no character.
void appendUtf8(std::string& text, char32_t character);

} // namespace quilvane
