// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "text/charset.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quilvane {

class CodePageConverter;

/// Turns bytes of one of Windows' character sets (a "code page", by its number) into characters, one byte at
/// a time: if a character has several bytes, all but the last one give nothing. Belongs to one thread.
class TextDecoder {
public:
    /// For an unknown code page that of Western Europe is used.
    explicit TextDecoder(int codePage = codePages::westernEurope);

    /// The character that ends with this byte; U+FFFD for bytes that are none.
    std::optional<char32_t> next(std::uint8_t byte);
    /// Whether a character has begun and needs further bytes. If not, ASCII bytes stand for themselves.
    bool isPending() const { return m_pendingCount > 0; }

private:
    CodePageConverter* m_converter;
    std::array<char, 4> m_pending{};
    std::size_t m_pendingCount = 0;
};

/// The code page that documents of that language were written in. `language` is a Windows language
/// identifier, such as 0x0419 for Russian.
int codePageOfLanguage(std::uint16_t language);

/// The code page of a font's character set, by its Windows number, such as 204 for Cyrillic; nothing for 0, 1
/// and unknown ones, which stand for the document's own.
std::optional<int> codePageOfCharset(int charset);

} // namespace quilvane
