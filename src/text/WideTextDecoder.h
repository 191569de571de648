// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// Turns text in UTF-16 or UTF-32 that comes in pieces into UTF-8. The encoding is recognised by the byte
/// order mark with which spreadsheets and editors begin such a file (The Unicode Standard, 23.8).
class WideTextDecoder {
public:
    /// For a text that begins with these bytes, four of them if there are so many. Nothing if they are no
    /// such mark.
    static std::optional<WideTextDecoder> forBeginOf(std::string_view text);

    /// Appends the characters of the next bytes, without the mark. Invalid ones become U+FFFD; a character
    /// that is cut is kept for the next piece.
    void decode(std::string_view bytes, std::string& utf8);
    /// At the end of the text: U+FFFD for a character that is cut.
    void finish(std::string& utf8);

private:
    WideTextDecoder(std::size_t unitSize, bool bigEndian)
        : m_unitSize(unitSize)
        , m_bigEndian(bigEndian)
    {
    }

    char32_t unitAt(std::string_view bytes, std::size_t begin) const;
    void take(char32_t unit, std::string& utf8);

    std::size_t m_unitSize; // bytes
    bool m_bigEndian;
    bool m_atBegin = true;
    std::string m_cutUnit;
    char32_t m_highSurrogate = 0; // 0 if no pair is incomplete
};

} // namespace quilvane
