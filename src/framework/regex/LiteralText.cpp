// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/regex/LiteralText.h"

#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace quilvane {

namespace {

constexpr std::size_t longest = 64;

constexpr std::array<char, 256> foldedBytes = [] {
    std::array<char, 256> folded{};
    for (std::size_t i = 0; i < folded.size(); ++i)
        folded[i] = lowerCased(static_cast<char>(i));
    return folded;
}();

char fold(char byte)
{
    return foldedBytes[static_cast<unsigned char>(byte)];
}

/// Whether the byte stands for itself everywhere in a pattern.
bool isPlain(char byte)
{
    return isLetter(byte) || isDigit(byte)
        || std::string_view("@_%-,;:!'\"/&=~ ").find(byte) != std::string_view::npos;
}

constexpr std::uint64_t everyByte = 0x0101010101010101;

/// Not 0 if a byte is 0.
std::uint64_t zeroBytes(std::uint64_t bytes)
{
    return (bytes - everyByte) & ~bytes & everyByte * 0x80;
}

/// Eight copies of a folded byte, to compare eight places at once.
class EightCopies {
public:
    explicit EightCopies(char folded)
        : m_wanted(everyByte * static_cast<unsigned char>(folded))
        , m_caseBits(isLowerLetter(folded) ? everyByte * 0x20 : 0)
    {
    }

    /// A byte of the result is 0 where the byte of `text` is the wanted one, in upper or lower case.
    std::uint64_t differenceTo(const char* text) const
    {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text, sizeof bytes);
        return (bytes | m_caseBits) ^ m_wanted;
    }

private:
    std::uint64_t m_wanted;
    std::uint64_t m_caseBits;
};

} // namespace

std::optional<LiteralText> LiteralText::of(std::string_view pattern)
{
    std::string folded;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        char byte = pattern[i];
        if (byte == '\\' && i + 1 < pattern.size()
            && std::string_view(".$+-@").find(pattern[i + 1]) != std::string_view::npos)
            byte = pattern[++i];
        else if (!isPlain(byte))
            return std::nullopt;
        folded += fold(byte);
    }
    if (folded.empty() || folded.size() > longest)
        return std::nullopt;
    return LiteralText(std::move(folded));
}

LiteralText::LiteralText(std::string folded)
    : m_folded(std::move(folded))
{
}

bool LiteralText::standsAt(const char* text) const
{
    return std::equal(
        m_folded.begin(), m_folded.end(), text, [](char wanted, char byte) { return wanted == fold(byte); });
}

std::size_t LiteralText::find(std::string_view text, std::size_t start) const
{
    if (text.size() < start + m_folded.size())
        return std::string_view::npos;
    const EightCopies first(m_folded.front());
    const EightCopies last(m_folded.back());
    const char* place = text.data() + start;
    const char* const endOfStarts = text.data() + (text.size() - m_folded.size() + 1);
    const std::size_t toLast = m_folded.size() - 1;
    // Only places with both the first and the last byte are compared. They are few, so most steps skip 32
    // bytes.
    const auto candidates = [&](const char* eight) {
        return zeroBytes(first.differenceTo(eight) | last.differenceTo(eight + toLast));
    };
    while (place != endOfStarts) {
        while (endOfStarts - place >= 32
            && (candidates(place) | candidates(place + 8) | candidates(place + 16) | candidates(place + 24))
                == 0)
            place += 32;
        while (endOfStarts - place >= 8 && candidates(place) == 0)
            place += 8;
        const char* const next = place + std::min<std::ptrdiff_t>(8, endOfStarts - place);
        for (; place != next; ++place) {
            if (standsAt(place))
                return std::size_t(place - text.data());
        }
    }
    return std::string_view::npos;
}

} // namespace quilvane
