// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// Gathers the text of a document that is walked from its beginning to its end, as UTF-8 in which an address
/// stands in one piece. Put characters and line ends, then take the text, once.
///
/// What interrupts a text (a footnote, the code of a field) is an aside: opened and closed where it stands,
/// it comes out on lines of its own after the paragraph, so that it tears no word apart. Asides nest.
class TextCollector {
public:
    /// Bytes. What comes beyond is dropped, so that no document makes more text than that.
    static constexpr std::size_t mostText = std::size_t(128) << 20;

    TextCollector()
        : m_open(1)
    {
    }

    /// A character of any kind but a line's end, in its plain form (see plainForm()). Control characters
    /// other than the tab are dropped.
    void put(char32_t character);
    /// The same for UTF-8, with a blank for each line end.
    void putText(std::string_view text);
    /// The same for many characters at once, all from ' ' to '~'.
    void putPlain(std::string_view characters);
    static constexpr bool isPlain(char32_t character) { return character >= ' ' && character <= '~'; }
    /// The same for UTF-16: a pair may come in two calls.
    void putUnit(char16_t unit);
    /// Ends a line, without being the end of a paragraph.
    void endLine();
    void endParagraph();

    void openAside();
    /// This and closeFieldCode() need an open aside.
    void closeAside();
    /// Of the code of a field, only what may hold an address comes out; see fieldText().
    void closeFieldCode();
    /// An aside of one line; nothing for an empty one.
    void putAside(std::string_view line);
    /// Where a mail link leads, as mailTarget() gives it: an aside, unless it is only the tail of an address
    /// in what the link shows, which must follow.
    void putMailTarget(std::string_view target);

    /// Whether all further text will be dropped.
    bool isFull() const { return m_size >= mostText; }

    /// Asides that are still open come last.
    std::string take();

private:
    struct Link {
        std::size_t at; // where the text that it shows begins, in OpenText::text
        std::size_t begin, size; // of its target in m_aside
    };
    struct OpenText {
        std::string text;
        std::vector<Link> links; // that begin inside a word
    };

    void append(char byte);
    void appendAside(std::string_view text);
    void dropTails(OpenText& open);

    /// The text itself, then the asides that are open, the innermost one last.
    std::vector<OpenText> m_open;
    /// Closed asides that wait for their paragraph's end; each ends in a line end.
    std::string m_aside;
    std::size_t m_size = 0;
    char16_t m_highSurrogate = 0;
};

} // namespace quilvane
