// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

inline constexpr std::string_view htmlWhiteSpace = " \t\r\n\f";

struct HtmlToken {
    enum class Kind {
        Text,
        StartTag,
        EndTag,
        End, // of the page
    };

    Kind kind = Kind::End;
    std::string_view text = {}; // as it stands in the page, with its character references; Text only
    std::string name = {}; // in lower case; tags only
    std::string_view href = {}; // as it stands in the page; empty if there is none; StartTag only
};

/// Cuts a page into tags and the texts between them, by the rules of the HTML standard (WHATWG, 13.2.5),
/// which give every text a meaning. Comments and declarations are skipped, and so are elements whose content
/// is neither markup nor visible, such as scripts. Keeps no stack of elements: deep nesting does no harm, and
/// the time is linear, unlike that of parsers which repair the order of the tags.
class HtmlTokenizer {
public:
    /// `html` is UTF-8 and must outlive the tokenizer and its tokens.
    explicit HtmlTokenizer(std::string_view html)
        : m_rest(html)
    {
    }

    HtmlToken next();
    /// Bytes of the page that are not cut into tokens yet.
    std::size_t left() const { return m_rest.size(); }

private:
    bool atMarkup() const;
    void skipComment();
    void skipContentOf(std::string_view element);
    HtmlToken takeText();
    HtmlToken takeTag();
    void takeAttribute(HtmlToken& tag);
    std::string_view takeValue();
    std::string_view take(std::size_t count);
    std::string_view takeUntil(std::string_view characters);
    void skip(std::string_view characters);

    std::string_view m_rest;
};

/// `text` with its character references (&#64; or &amp;) replaced: the numeric ones, the names of Latin-1 and
/// those that are usual near addresses. Others stay unchanged.
std::string withoutReferences(std::string_view text);

} // namespace quilvane
