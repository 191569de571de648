// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

/// Stands for bytes that are no character.
inline constexpr char32_t replacementCharacter = 0xFFFD;

struct Utf8Character {
    /// The code of a byte that is no part of a character (RFC 3629, section 3).
    static constexpr char32_t none = 0xFFFFFFFF;

    char32_t code;
    std::size_t length; // bytes; 1 for `none`
};

/// The first character of `text`, which must not be empty.
Utf8Character firstCharacter(std::string_view text);

constexpr bool isHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool isLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/// The character that both halves of a pair make in UTF-16.
constexpr char32_t characterOfPair(char32_t high, char32_t low)
{
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

/// Appends U+FFFD for a number that is no character.
void appendUtf8(std::string& text, char32_t character);

} // namespace quilvane
