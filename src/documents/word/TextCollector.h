// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// Gathers the text of a document that is walked from its begin to its end, as UTF-8 in which an address
/// stands in one piece. Put characters and line ends, then take the text, once.
///
/// What interrupts a text (a footnote, the code of a field) is an aside: opened and closed where it stands,
/// it comes out on lines of its own behind the paragraph, so that it tears no word apart. Asides nest.
class TextCollector {
public:
    /// Bytes. What comes beyond is dropped, so that no document makes more text than that.
    static constexpr std::size_t mostText = std::size_t(128) << 20;

    TextCollector()
        : m_open(1)
    {
    }

    /// A character of any kind but a line's end. Hyphens of all kinds become '-', blanks ' '; what has no
    /// width is dropped, and so are control characters other than the tab.
    void put(char32_t character);
    /// The same for many characters at once, all from ' ' to '~'.
    void putPlain(std::string_view characters);
    static constexpr bool isPlain(char32_t character) { return character >= ' ' && character <= '~'; }
    /// The same for UTF-16: a pair may come in two calls.
    void putUnit(char16_t unit);
    /// Ends a line, without being the end of a paragraph.
    void endLine();
    void endParagraph();

    void openAside();
    /// Both need an open aside.
    void closeAside();
    /// Of the code of a field, only what may hold an address comes out; see fieldText().
    void closeFieldCode();

    /// From then on nothing that is put makes a difference.
    bool isFull() const { return m_size >= mostText; }

    /// Asides that are still open come last.
    std::string take();

private:
    void append(char byte);
    void appendUtf8(char32_t character);
    void setAside(const std::string& text);

    /// The text itself, then the asides that are open, the innermost one last.
    std::vector<std::string> m_open;
    /// Closed asides that wait for their paragraph's end; each ends in a line end.
    std::string m_aside;
    std::size_t m_size = 0;
    char16_t m_highSurrogate = 0;
};

} // namespace quilvane
