// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/TextDecoder.h"

#include "text/CodePageConverter.h"
#include "text/utf8.h"

namespace quilvane {

namespace {

constexpr std::uint8_t firstBeyondAscii = 0x80;

} // namespace

TextDecoder::TextDecoder(int codePage)
    : m_converter(&CodePageConverter::of(codePage))
{
}

std::optional<char32_t> TextDecoder::next(std::uint8_t byte)
{
    if (!isPending()) {
        if (byte < firstBeyondAscii)
            return byte;
        const char32_t character = m_converter->upperCharacter(byte - firstBeyondAscii);
        if (character != CodePageConverter::incomplete)
            return character;
    }
    m_pending[m_pendingCount++] = static_cast<char>(byte);
    const char32_t character = m_converter->character({ m_pending.data(), m_pendingCount });
    if (character == CodePageConverter::incomplete && m_pendingCount < m_pending.size())
        return {};
    m_pendingCount = 0;
    if (character != CodePageConverter::incomplete && character != replacementCharacter)
        return character;
    // The byte does not continue the character, so it is a character of its own.
    return byte < firstBeyondAscii ? byte : replacementCharacter;
}

int codePageOfLanguage(std::uint16_t language)
{
    switch (language) {
    case 0x0404: // Chinese in traditional characters
    case 0x0C04:
    case 0x1404:
        return 950;
    case 0x0C1A: // Serbian in Cyrillic letters
    case 0x1C1A:
        return 1251;
    default:
        break;
    }
    constexpr unsigned primaryLanguage = 0x3FF;
    switch (language & primaryLanguage) {
    case 0x1E: // Thai
        return 874;
    case 0x11: // Japanese
        return 932;
    case 0x04: // Chinese
        return 936;
    case 0x12: // Korean
        return 949;
    case 0x05: // Czech, Hungarian, Polish, Romanian, Croatian, Slovak, Albanian, Slovenian
    case 0x0E:
    case 0x15:
    case 0x18:
    case 0x1A:
    case 0x1B:
    case 0x1C:
    case 0x24:
        return 1250;
    case 0x02: // Bulgarian, Russian, Ukrainian, Belarusian, Macedonian
    case 0x19:
    case 0x22:
    case 0x23:
    case 0x2F:
        return 1251;
    case 0x08: // Greek
        return 1253;
    case 0x1F: // Turkish
        return 1254;
    case 0x0D: // Hebrew
        return 1255;
    case 0x01: // Arabic, Urdu, Persian
    case 0x20:
    case 0x29:
        return 1256;
    case 0x25: // Estonian, Latvian, Lithuanian
    case 0x26:
    case 0x27:
        return 1257;
    case 0x2A: // Vietnamese
        return 1258;
    default:
        return codePages::westernEurope;
    }
}

std::optional<int> codePageOfCharset(int charset)
{
    struct Row {
        int charset, codePage;
    };
    constexpr Row rows[] = { { 77, codePages::macintosh }, { 128, 932 }, { 129, 949 }, { 130, 1361 },
        { 134, 936 }, { 136, 950 }, { 161, 1253 }, { 162, 1254 }, { 163, 1258 }, { 177, 1255 }, { 178, 1256 },
        { 186, 1257 }, { 204, 1251 }, { 222, 874 }, { 238, 1250 }, { 254, 437 }, { 255, 850 } };
    for (const Row& row : rows)
        if (row.charset == charset)
            return row.codePage;
    return {};
}

} // namespace quilvane
