// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/addressCharacters.h"

#include "text/utf8.h"

#include <algorithm>
#include <cstddef>

namespace quilvane {

std::optional<std::string_view> plainForm(char32_t character)
{
    static constexpr std::string_view ligatures[] = { "ff", "fi", "fl", "ffi", "ffl", "st", "st" };
    static constexpr std::string_view printableAscii
        = "!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~";
    if (character >= 0xFB00 && character <= 0xFB06)
        return ligatures[character - 0xFB00];
    if (character >= 0xFF01 && character <= 0xFF5E)
        return printableAscii.substr(character - 0xFF01, 1);
    switch (character) {
    case 0x00A0: // no-break space
    case 0x202F: // the narrow one
        return " ";
    case 0x2010: // hyphen
    case 0x2011: // non-breaking hyphen
        return "-";
    case 0x00AD: // soft hyphen
    case 0x200B: // zero-width space, non-joiner, joiner
    case 0x200C:
    case 0x200D:
    case 0x200E: // marks of direction
    case 0x200F:
    case 0x2060: // word joiner
    case 0xFEFF: // byte order mark
        return "";
    default:
        return std::nullopt;
    }
}

std::string withPlainCharacters(std::string_view text)
{
    std::string plain;
    plain.reserve(text.size());
    while (!text.empty()) {
        const auto special = std::find_if(
            text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) > 127; });
        const auto ascii = static_cast<std::size_t>(special - text.begin());
        plain.append(text, 0, ascii);
        text.remove_prefix(ascii);
        if (text.empty())
            break;
        const Utf8Character character = firstCharacter(text);
        plain.append(plainForm(character.code).value_or(text.substr(0, character.length)));
        text.remove_prefix(character.length);
    }
    return plain;
}

} // namespace quilvane
