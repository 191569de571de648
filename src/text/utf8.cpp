// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/utf8.h"

#include <cstdint>

namespace quilvane {

namespace {

constexpr char32_t lastCharacter = 0x10FFFF;

constexpr bool isSurrogate(char32_t code)
{
    return isHighSurrogate(code) || isLowSurrogate(code);
}

} // namespace

Utf8Character firstCharacter(std::string_view text)
{
    constexpr char32_t smallest[] = { 0, 0, 0x80, 0x800, 0x10000 }; // by length: no character has two forms
    constexpr Utf8Character none{ Utf8Character::none, 1 };
    const auto lead = static_cast<std::uint8_t>(text.front());
    if (lead < 0x80)
        return { lead, 1 };
    const std::size_t length = lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
    if (length == 0 || length > text.size())
        return none;
    char32_t code = lead & (0x7FU >> length);
    for (const char next : text.substr(1, length - 1)) {
        if ((next & 0xC0) != 0x80)
            return none;
        code = code << 6 | (static_cast<std::uint8_t>(next) & 0x3FU);
    }
    if (code < smallest[length] || code > lastCharacter || isSurrogate(code))
        return none;
    return { code, length };
}

void appendUtf8(std::string& text, char32_t character)
{
    if (character > lastCharacter || isSurrogate(character))
        character = replacementCharacter;
    const auto tail
        = [character](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    const auto lead
        = [character](unsigned mark, int shift) { return static_cast<char>(mark | character >> shift); };
    if (character < 0x80)
        text += static_cast<char>(character);
    else if (character < 0x800)
        text += { lead(0xC0, 6), tail(0) };
    else if (character < 0x10000)
        text += { lead(0xE0, 12), tail(6), tail(0) };
    else
        text += { lead(0xF0, 18), tail(12), tail(6), tail(0) };
}

} // namespace quilvane
