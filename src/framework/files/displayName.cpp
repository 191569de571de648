// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/displayName.h"

#include "text/utf8.h"

#include <cstddef>
#include <cstdint>

namespace quilvane {

namespace {

/// Control characters, line ends of Unicode, and characters that change the direction of the text or have no
/// width.
bool mustBeSpelled(std::uint32_t code)
{
    const auto within
        = [code](std::uint32_t first, std::uint32_t last) { return code >= first && code <= last; };
    return code < 0x20 || within(0x7F, 0x9F) || code == 0x061C || within(0x200B, 0x200F)
        || within(0x2028, 0x202E) || within(0x2060, 0x206F) || code == 0xFEFF;
}

std::string inHexadecimal(std::uint32_t value, int digits)
{
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[(value >> shift) & 0xF];
    return text;
}

} // namespace

std::string displayPath(std::string_view bytes)
{
    std::string shown;
    shown.reserve(bytes.size());
    while (!bytes.empty()) {
        const Utf8Character character = firstCharacter(bytes);
        const bool isByte = character.code == Utf8Character::none;
        if (isByte || (character.length == 1 && mustBeSpelled(character.code)))
            shown += "\\x" + inHexadecimal(static_cast<std::uint8_t>(bytes.front()), 2);
        else if (mustBeSpelled(character.code))
            shown += "\\u" + inHexadecimal(character.code, 4);
        else
            shown += bytes.substr(0, character.length);
        bytes.remove_prefix(character.length);
    }
    return shown;
}

} // namespace quilvane
