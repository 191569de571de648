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

/// Turns the bytes of one of Windows' character sets (a "code page", by its number) into characters, one byte
/// at a time: where a character takes several bytes, all but the last one give nothing. Belongs to one
/// thread.
class TextDecoder {
public:
    /// A code page that is not known here is taken for Western Europe's.
    explicit TextDecoder(int codePage = codePages::westernEurope);

    /// The character that ends with this byte; U+FFFD for bytes that are none.
    std::optional<char32_t> next(std::uint8_t byte);
    /// Whether the begin of a character waits for its other bytes. If not, ASCII bytes stand for themselves.
    bool isPending() const { return m_pendingCount > 0; }

private:
    CodePageConverter* m_converter;
    std::array<char, 4> m_pending{};
    std::size_t m_pendingCount = 0;
};

/// The code page that documents of that language were written in. `language` is a Windows language
/// identifier, as in 0x0419 for Russian.
int codePageOfLanguage(std::uint16_t language);

/// The code page of a font's character set, by its Windows number, as in 204 for Cyrillic; nothing for 0, 1
/// and unknown ones, which stand for the document's own.
std::optional<int> codePageOfCharset(int charset);

} // namespace quilvane
