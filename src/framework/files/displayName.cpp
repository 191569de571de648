// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/displayName.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quilvane {

namespace {

struct Character {
    std::uint32_t code;
    std::size_t length; // in bytes; 0 if the text does not begin with valid UTF-8
};

unsigned byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

/// The first character of `text`, which must not be empty. RFC 3629: no overlong forms, no surrogates,
/// nothing above U+10FFFF.
Character firstCharacter(std::string_view text)
{
    constexpr std::array<std::uint32_t, 5> smallest = { 0, 0, 0x80, 0x800, 0x10000 }; // by length
    const unsigned lead = byteAt(text, 0);
    if (lead < 0x80)
        return { lead, 1 };
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return { 0, 0 };
    std::uint32_t code = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned next = byteAt(text, i);
        if ((next & 0xC0) != 0x80)
            return { 0, 0 };
        code = (code << 6) | (next & 0x3F);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < smallest[length] || code > 0x10FFFF || surrogate)
        return { 0, 0 };
    return { code, length };
}

/// Control characters, line ends of Unicode, and those that change the direction of the text or take no room.
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
        const Character character = firstCharacter(bytes);
        const std::size_t length = character.length == 0 ? 1 : character.length;
        if (character.length == 0 || (length == 1 && mustBeSpelled(character.code)))
            shown += "\\x" + inHexadecimal(byteAt(bytes, 0), 2);
        else if (mustBeSpelled(character.code))
            shown += "\\u" + inHexadecimal(character.code, 4);
        else
            shown += bytes.substr(0, length);
        bytes.remove_prefix(length);
    }
    return shown;
}

} // namespace quilvane
