// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/text/LiteralText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quilvane {

namespace {

constexpr std::size_t longest = 64;

constexpr std::array<char, 256> foldedBytes = [] {
    std::array<char, 256> folded{};
    for (std::size_t i = 0; i < folded.size(); ++i)
        folded[i] = i >= 'A' && i <= 'Z' ? char(i - 'A' + 'a') : char(i);
    return folded;
}();

char fold(char byte)
{
    return foldedBytes[static_cast<unsigned char>(byte)];
}

bool isLetterOrDigit(char byte)
{
    const char folded = fold(byte);
    return (folded >= 'a' && folded <= 'z') || (byte >= '0' && byte <= '9');
}

/// The bytes that stand for themselves in every place of a pattern.
bool isPlain(char byte)
{
    return isLetterOrDigit(byte) || std::string_view("@_%-,;:!'\"/&=~ ").find(byte) != std::string_view::npos;
}

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

std::size_t LiteralText::find(std::string_view text, std::size_t start) const
{
    if (text.size() < start + m_folded.size())
        return std::string_view::npos;
    const std::string_view firsts = text.substr(0, text.size() - m_folded.size() + 1);
    const char lower = m_folded.front();
    const char upper = lower >= 'a' && lower <= 'z' ? char(lower - 'a' + 'A') : lower;
    std::size_t nextLower = firsts.find(lower, start);
    std::size_t nextUpper = upper == lower ? std::string_view::npos : firsts.find(upper, start);
    while (nextLower != nextUpper) { // both npos at the end
        const std::size_t candidate = std::min(nextLower, nextUpper);
        if (std::equal(m_folded.begin() + 1, m_folded.end(), text.begin() + std::ptrdiff_t(candidate) + 1,
                [](char wanted, char byte) { return wanted == fold(byte); }))
            return candidate;
        if (candidate == nextLower)
            nextLower = firsts.find(lower, candidate + 1);
        else
            nextUpper = firsts.find(upper, candidate + 1);
    }
    return std::string_view::npos;
}

} // namespace quilvane
