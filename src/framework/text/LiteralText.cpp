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
    const char first = m_folded.front();
    const std::size_t last = text.size() - m_folded.size();
    for (std::size_t i = start; i <= last; ++i) {
        if (fold(text[i]) == first
            && std::equal(m_folded.begin() + 1, m_folded.end(), text.begin() + std::ptrdiff_t(i) + 1,
                [](char wanted, char byte) { return wanted == fold(byte); }))
            return i;
    }
    return std::string_view::npos;
}

} // namespace quilvane
