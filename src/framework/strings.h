// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// The line end in the text files that the program writes.
inline constexpr std::string_view endOfLine = "\n";

/// Plain decimal digits, with a minus sign below 0.
template <std::integral Number>
std::string Str(Number number)
{
    return std::to_string(number);
}

/// The ASCII character of that code, 0 to 127; OutOfBoundsException for any other.
std::string Chr(int code);

/// The pieces of `text` between the separators, one more than there are separators, so never none. An empty
/// separator cuts nowhere.
std::vector<std::string> Split(std::string_view text, std::string_view separator);

} // namespace quilvane
