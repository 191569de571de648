// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/html/htmlText.h"

#include "documents/html/HtmlTokenizer.h"
#include "text/addressCharacters.h"
#include "text/ascii.h"
#include "text/charset.h"
#include "text/mailLink.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

constexpr std::size_t longestHead = 4096; // bytes in which a character set is looked for
constexpr std::size_t longestSniffed = std::size_t(1) << 20; // a comment may come first

// Each table is sorted.
constexpr std::string_view cellElements[] = { "td", "th" };
// What stands on lines of its own, and what ends a line.
constexpr std::string_view lineElements[] = { "address", "article", "aside", "blockquote", "body", "br",
    "button", "caption", "center", "dd", "details", "dialog", "dir", "div", "dl", "dt", "fieldset",
    "figcaption", "figure", "footer", "form", "h1", "h2", "h3", "h4", "h5", "h6", "head", "header", "hr",
    "legend", "li", "listing", "main", "menu", "nav", "ol", "optgroup", "option", "p", "pre", "section",
    "select", "summary", "table", "tbody", "textarea", "tfoot", "thead", "tr", "ul", "xmp" };
// What stands within a line, or is not seen.
constexpr std::string_view otherElements[] = { "a", "abbr", "acronym", "applet", "area", "audio", "b", "base",
    "basefont", "bdi", "bdo", "big", "canvas", "cite", "code", "col", "colgroup", "data", "datalist", "del",
    "dfn", "em", "embed", "font", "frame", "frameset", "html", "i", "img", "input", "ins", "kbd", "label",
    "link", "map", "mark", "meta", "meter", "noscript", "object", "output", "param", "picture", "progress",
    "q", "s", "samp", "slot", "small", "source", "span", "strike", "strong", "sub", "sup", "svg", "template",
    "time", "tt", "u", "var", "video", "wbr" };
constexpr std::string_view preformattedElements[] = { "listing", "pre", "textarea", "xmp" };

template <std::size_t count>
bool isOneOf(std::string_view name, const std::string_view (&names)[count])
{
    return std::binary_search(std::begin(names), std::end(names), name);
}

bool isKnown(std::string_view element)
{
    return isOneOf(element, lineElements) || isOneOf(element, otherElements)
        || isOneOf(element, cellElements);
}

bool isWhiteSpace(char c)
{
    return htmlWhiteSpace.find(c) != std::string_view::npos;
}

/// Gathers the text of a page from its tokens.
class BodyText {
public:
    void addTag(const HtmlToken& tag)
    {
        const int step = tag.kind == HtmlToken::Kind::StartTag ? 1 : -1;
        if (isOneOf(tag.name, lineElements))
            widenGap(Gap::Line);
        else if (isOneOf(tag.name, cellElements))
            widenGap(Gap::Tab);
        // End tags that fit nothing are as frequent as missing ones.
        if (isOneOf(tag.name, preformattedElements))
            m_preformattedDepth = std::max(m_preformattedDepth + step, 0);
        else if (tag.name == "template")
            m_templateDepth = std::max(m_templateDepth + step, 0);
    }

    void addText(std::string_view text)
    {
        if (m_templateDepth > 0)
            return;
        if (m_preformattedDepth > 0) {
            addWord(text);
            return;
        }
        for (auto at = text.begin(); at != text.end();) {
            const auto wordEnd = std::find_if(at, text.end(), isWhiteSpace);
            addWord({ at, wordEnd });
            at = std::find_if_not(wordEnd, text.end(), isWhiteSpace);
            if (at != wordEnd)
                widenGap(Gap::Blank);
        }
    }

    /// The place in the text where the next piece will continue the last word; nothing between words.
    std::optional<std::size_t> placeInWord() const
    {
        return m_gap == Gap::None ? std::optional(m_text.size()) : std::nullopt;
    }

    std::string take() { return std::move(m_text); }

private:
    enum class Gap { None, Blank, Tab, Line };

    void widenGap(Gap gap) { m_gap = std::max(m_gap, gap); }

    void addWord(std::string_view word)
    {
        if (word.empty())
            return;
        if (m_gap != Gap::None && !m_text.empty())
            m_text += m_gap == Gap::Line ? '\n' : m_gap == Gap::Tab ? '\t' : ' ';
        m_gap = Gap::None;
        m_text += word;
    }

    std::string m_text;
    Gap m_gap = Gap::None; // between m_text and the next word
    int m_preformattedDepth = 0;
    int m_templateDepth = 0;
};

struct ByteOrderMark {
    std::string_view bytes;
    int codePage;
};

constexpr ByteOrderMark byteOrderMarks[] = {
    { "\xEF\xBB\xBF", codePages::utf8 },
    { "\xFF\xFE", codePages::utf16LittleEndian },
    { "\xFE\xFF", codePages::utf16BigEndian },
};

/// UTF-16 without a mark is recognised by the zero byte beside the first tag's '<'.
int wideCodePageOf(std::string_view html)
{
    using namespace std::string_view_literals;
    return html.starts_with("<\0"sv) ? codePages::utf16LittleEndian
        : html.starts_with("\0<"sv)  ? codePages::utf16BigEndian
                                     : 0;
}

/// The text of a page that does not name its character set.
std::string utf8OfUnnamed(std::string_view html)
{
    std::string text = toUtf8(html, codePages::utf8);
    return text == html ? text : toUtf8(html, codePages::westernEurope);
}

std::string utf8Page(std::string_view html, const std::string& charset)
{
    for (const ByteOrderMark& mark : byteOrderMarks)
        if (html.starts_with(mark.bytes))
            return toUtf8(html.substr(mark.bytes.size()), mark.codePage);
    if (const int wide = wideCodePageOf(html))
        return toUtf8(html, wide);
    if (!charset.empty())
        return toUtf8(html, codePageNamed(charset).value_or(codePages::utf8));
    const std::string named = charsetNamedIn(html.substr(0, longestHead));
    if (named.empty())
        return utf8OfUnnamed(html);
    // The name could be read as single bytes, so the page is not in a set of wider units, such as UTF-16.
    const bool isUnicode = beginsIgnoringCase(named, "UTF");
    return toUtf8(html, isUnicode ? codePages::utf8 : codePageNamed(named).value_or(codePages::utf8));
}

struct MailTarget {
    std::string address;
    std::optional<std::size_t> place; // in the text, where the link begins inside a word
};

} // namespace

bool looksLikeHtml(std::string_view bytes)
{
    constexpr std::size_t farEnough = 4096;
    const std::string page = utf8Page(bytes.substr(0, longestSniffed), {});
    const std::string_view begin = withoutLeading(page, htmlWhiteSpace);
    if (!begin.starts_with('<'))
        return false;
    if (beginsIgnoringCase(begin, "<!doctype html"))
        return true;
    // In other XML, names like "a" or "table" may mean anything.
    bool isAnyEnough = !begin.starts_with("<?xml");
    HtmlTokenizer tokens(begin);
    for (HtmlToken token = tokens.next(); token.kind != HtmlToken::Kind::End; token = tokens.next()) {
        if (token.kind == HtmlToken::Kind::Text)
            continue;
        if (token.name == "html" || token.name == "head" || token.name == "body"
            || (isAnyEnough && isKnown(token.name)))
            return true;
        isAnyEnough = false;
        if (begin.size() - tokens.left() > farEnough)
            return false;
    }
    return false;
}

std::string htmlBodyText(std::string_view html, const std::string& charset)
{
    const std::string page = utf8Page(html, charset);
    HtmlTokenizer tokens(page);
    BodyText body;
    std::vector<MailTarget> targets;
    for (HtmlToken token = tokens.next(); token.kind != HtmlToken::Kind::End; token = tokens.next()) {
        if (token.kind == HtmlToken::Kind::Text)
            body.addText(withPlainCharacters(withoutReferences(token.text)));
        else
            body.addTag(token);
        if (std::string target = mailTarget(withoutReferences(token.href)); !target.empty())
            targets.push_back({ std::move(target), body.placeInWord() });
    }
    std::string text = body.take();
    std::string lines;
    for (const auto& [address, place] : targets)
        if (!(place && isTailOfAddress(address, text, *place)))
            lines += (text.empty() && lines.empty() ? "" : "\n") + address;
    return text += lines;
}

} // namespace quilvane
