// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/pdf/pageText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quilvane {

namespace {

/// No longer address can be mailed to: RFC 5321, 4.5.3.1, 64 bytes before the @ and 255 behind it.
constexpr std::size_t longestAddress = 64 + 1 + 255;

bool isLower(char c)
{
    return c >= 'a' && c <= 'z';
}

bool isLetter(char c)
{
    return isLower(c) || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isDomainCharacter(char c)
{
    return isLetter(c) || isDigit(c) || c == '.' || c == '-';
}

/// Whether a domain that begins `text` has a name, a dot and a top level of two letters or more, whatever
/// comes then: "example.com-" does, "example.c" and "example.co1" do not.
bool beginsWithWholeDomain(std::string_view text)
{
    for (std::size_t dot = text.find('.', 1); dot != std::string_view::npos; dot = text.find('.', dot + 1)) {
        std::size_t end = dot + 1;
        while (end < text.size() && isLetter(text[end]))
            ++end;
        const bool endsAWord = end == text.size() || !(isDigit(text[end]) || text[end] == '_');
        if (end - dot > 2 && endsAWord)
            return true;
    }
    return false;
}

/// Whether `text` ends in an address that is not whole yet: an @ and the begin of a domain, or nothing.
bool endsInUnfinishedAddress(std::string_view text)
{
    std::size_t begin = text.size();
    const std::size_t farthest = text.size() - std::min(text.size(), longestAddress);
    while (begin > farthest && isDomainCharacter(text[begin - 1]))
        --begin;
    return begin > farthest && text[begin - 1] == '@' && !beginsWithWholeDomain(text.substr(begin));
}

/// Whether the line break between `before` and `after` stands inside an address.
bool breaksAddress(std::string_view before, std::string_view after)
{
    if (before.empty() || after.empty())
        return false;
    // A sentence may end in the dot, and the next one then begins with a capital.
    const char last = before.back();
    const bool goesOn
        = last == '.' ? isLower(after.front()) : isLetter(after.front()) || isDigit(after.front());
    return goesOn && (last == '@' || last == '.' || last == '-') && endsInUnfinishedAddress(before);
}

struct Character {
    std::uint32_t code;
    std::size_t length;
};

/// The character of two or three bytes that begins `text`; one byte of length for all else.
Character firstCharacter(std::string_view text)
{
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const auto continues
        = [&](std::size_t index) { return index < text.size() && (byte(index) & 0xC0u) == 0x80u; };
    if ((byte(0) & 0xE0u) == 0xC0u && continues(1))
        return { (byte(0) & 0x1Fu) << 6 | (byte(1) & 0x3Fu), 2 };
    if ((byte(0) & 0xF0u) == 0xE0u && continues(1) && continues(2))
        return { (byte(0) & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu), 3 };
    return { byte(0), 1 };
}

/// What stands in place of a character in the tidied text; nothing for one that stays.
std::optional<std::string_view> replacementOf(std::uint32_t code)
{
    static constexpr std::string_view ligatures[] = { "ff", "fi", "fl", "ffi", "ffl", "st", "st" };
    static constexpr std::string_view printableAscii
        = "!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~";
    if (code >= 0xFB00 && code <= 0xFB06)
        return ligatures[code - 0xFB00];
    if (code >= 0xFF01 && code <= 0xFF5E)
        return printableAscii.substr(code - 0xFF01, 1);
    if (code == 0x2010 || code == 0x2011)
        return "-";
    // Soft hyphen; zero-width space, joiners and direction marks; word joiner; byte order mark.
    if (code == 0xAD || (code >= 0x200B && code <= 0x200F) || code == 0x2060 || code == 0xFEFF)
        return "";
    return std::nullopt;
}

std::string withPlainCharacters(std::string_view text)
{
    std::string plain;
    plain.reserve(text.size());
    while (!text.empty()) {
        const auto special = std::find_if(text.begin(), text.end(), [](char c) { return c < 0; });
        const auto ascii = static_cast<std::size_t>(special - text.begin());
        plain.append(text, 0, ascii);
        text.remove_prefix(ascii);
        if (text.empty())
            break;
        const Character character = firstCharacter(text);
        plain.append(replacementOf(character.code).value_or(text.substr(0, character.length)));
        text.remove_prefix(character.length);
    }
    return plain;
}

} // namespace

std::string tidyPageText(std::string_view text)
{
    if (text.ends_with('\f'))
        text.remove_suffix(1);
    const std::string plain = withPlainCharacters(text);
    std::string tidy;
    tidy.reserve(plain.size());
    std::string_view rest = plain;
    for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
        tidy.append(rest, 0, end);
        rest.remove_prefix(end + 1);
        if (!breaksAddress(tidy, rest))
            tidy += '\n';
    }
    tidy += rest;
    return tidy;
}

} // namespace quilvane
