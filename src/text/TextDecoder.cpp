// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/TextDecoder.h"

#include "text/littleEndian.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <map>
#include <string>

#include <iconv.h>

namespace quilvane {

/// One character set, with the system's converter for it.
struct TextDecoder::CodePage {
    explicit CodePage(int number);
    ~CodePage() { iconv_close(converter); }
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

    /// The one character that the bytes are; `incomplete` if others must follow.
    char32_t convert(const char* bytes, std::size_t count) const;

    static constexpr char32_t incomplete = 0xFFFFFFFF;
    /// Where the system has no such converter it fails at each use, and every character is U+FFFD.
    iconv_t converter;
    /// The characters of the bytes from 128 on.
    std::array<char32_t, 128> single;
};

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr std::uint8_t firstBeyondAscii = 0x80;
constexpr int utf8 = 65001;
constexpr int macintosh = 10000;

constexpr int knownPages[] = { 437, 850, 852, 855, 866, 874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254,
    1255, 1256, 1257, 1258, 1361, macintosh, utf8 };

std::string converterName(int codePage)
{
    if (codePage == utf8)
        return "UTF-8";
    if (codePage == macintosh)
        return "MACINTOSH";
    return "CP" + std::to_string(codePage);
}

} // namespace

TextDecoder::CodePage::CodePage(int number)
    : converter(iconv_open("UTF-32LE", converterName(number).c_str()))
{
    for (std::size_t i = 0; i < single.size(); ++i) {
        const char byte = static_cast<char>(firstBeyondAscii + i);
        single[i] = convert(&byte, 1);
    }
}

char32_t TextDecoder::CodePage::convert(const char* bytes, std::size_t count) const
{
    std::array<char, 16> units{}; // a letter and its accent may come apart
    char* input = const_cast<char*>(bytes); // iconv does not write there
    char* output = units.data();
    std::size_t room = units.size();
    const std::size_t result = iconv(converter, &input, &count, &output, &room);
    if (result == std::size_t(-1))
        return errno == EINVAL ? incomplete : replacement;
    // Some sets hold a letter back until they know whether an accent follows.
    iconv(converter, nullptr, nullptr, &output, &room);
    return room == units.size() ? replacement : char32_t(u32At({ units.data(), units.size() }, 0));
}

/// They are read when they are first used, and kept.
const TextDecoder::CodePage& TextDecoder::pageOf(int number)
{
    static std::map<int, CodePage> pages;
    const bool isKnown
        = std::find(std::begin(knownPages), std::end(knownPages), number) != std::end(knownPages);
    return pages.try_emplace(isKnown ? number : westernEurope, isKnown ? number : westernEurope)
        .first->second;
}

TextDecoder::TextDecoder(int codePage)
    : m_page(&pageOf(codePage))
{
}

std::optional<char32_t> TextDecoder::next(std::uint8_t byte)
{
    if (!isPending()) {
        if (byte < firstBeyondAscii)
            return byte;
        const char32_t character = m_page->single[byte - firstBeyondAscii];
        if (character != CodePage::incomplete)
            return character;
    }
    m_pending[m_pendingCount++] = static_cast<char>(byte);
    const char32_t character = m_page->convert(m_pending.data(), m_pendingCount);
    if (character == CodePage::incomplete && m_pendingCount < m_pending.size())
        return {};
    m_pendingCount = 0;
    if (character != CodePage::incomplete && character != replacement)
        return character;
    // Not what must follow the bytes before it, and so a character of its own.
    return byte < firstBeyondAscii ? byte : replacement;
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
        return TextDecoder::westernEurope;
    }
}

std::optional<int> codePageOfCharset(int charset)
{
    struct Row {
        int charset, codePage;
    };
    constexpr Row rows[] = { { 77, macintosh }, { 128, 932 }, { 129, 949 }, { 130, 1361 }, { 134, 936 },
        { 136, 950 }, { 161, 1253 }, { 162, 1254 }, { 163, 1258 }, { 177, 1255 }, { 178, 1256 },
        { 186, 1257 }, { 204, 1251 }, { 222, 874 }, { 238, 1250 }, { 254, 437 }, { 255, 850 } };
    for (const Row& row : rows)
        if (row.charset == charset)
            return row.codePage;
    return {};
}

} // namespace quilvane
