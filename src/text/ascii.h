// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

// Bytes above 127 are no letters, and equal only themselves.

constexpr bool isLowerLetter(char c)
{
    return c >= 'a' && c <= 'z';
}

constexpr char lowerCased(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool isLetter(char c)
{
    return isLowerLetter(lowerCased(c));
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string lowerCased(std::string_view text);

bool equalsIgnoringCase(std::string_view left, std::string_view right);

inline bool beginsIgnoringCase(std::string_view text, std::string_view begin)
{
    return equalsIgnoringCase(text.substr(0, begin.size()), begin);
}

/// `text` from its first character on that is not one of `characters`.
std::string_view withoutLeading(std::string_view text, std::string_view characters);

} // namespace quilvane
