// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/html/htmlText.h"

#include "documents/html/HtmlTokenizer.h"
#include "text/ascii.h"
#include "text/charset.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

constexpr std::size_t longestHead = 4096; // bytes in which a character set is looked for

// Each table is sorted.
constexpr std::string_view cellElements[] = { "td", "th" };
// What stands on lines of its own, and what ends a line.
constexpr std::string_view lineElements[] = { "address", "article", "aside", "blockquote", "body", "br",
    "button", "caption", "center", "dd", "details", "dialog", "dir", "div", "dl", "dt", "fieldset",
    "figcaption", "figure", "footer", "form", "h1", "h2", "h3", "h4", "h5", "h6", "head", "header", "hr",
    "legend", "li", "listing", "main", "menu", "nav", "ol", "optgroup", "option", "p", "pre", "section",
    "select", "summary", "table", "tbody", "textarea", "tfoot", "thead", "tr", "ul", "xmp" };
constexpr std::string_view preformattedElements[] = { "listing", "pre", "textarea", "xmp" };

template <std::size_t count>
bool isOneOf(std::string_view name, const std::string_view (&names)[count])
{
    return std::binary_search(std::begin(names), std::end(names), name);
}

bool isWhiteSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const int lower = c | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// RFC 3986, section 2.1.
std::string percentDecoded(std::string_view text)
{
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0
            && hexDigit(text[i + 2]) >= 0;
        decoded += escape ? static_cast<char>(16 * hexDigit(text[i + 1]) + hexDigit(text[i + 2])) : text[i];
        if (escape)
            i += 2;
    }
    return decoded;
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

    void addLine(std::string_view line)
    {
        widenGap(Gap::Line);
        addWord(line);
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
    const char* charset;
};

constexpr ByteOrderMark byteOrderMarks[] = {
    { "\xEF\xBB\xBF", "UTF-8" },
    { "\xFF\xFE", "UTF-16LE" },
    { "\xFE\xFF", "UTF-16BE" },
};

/// What pages of that character set are really in (WHATWG, Encoding Standard, 4.2).
std::string customary(const std::string& charset)
{
    for (const std::string_view western : { "iso-8859-1", "iso8859-1", "latin1", "us-ascii", "ascii" })
        if (equalsIgnoringCase(charset, western))
            return "windows-1252";
    return charset;
}

/// A page that does not say what it is in.
std::string utf8OfUnnamed(std::string_view html)
{
    std::string text = toUtf8(html, "UTF-8");
    return text == html ? text : toUtf8(html, "windows-1252");
}

std::string utf8Page(std::string_view html, const std::string& charset)
{
    for (const ByteOrderMark& mark : byteOrderMarks)
        if (html.starts_with(mark.bytes))
            return toUtf8(html.substr(mark.bytes.size()), mark.charset);
    if (!charset.empty())
        return toUtf8(html, customary(charset));
    const std::string named = charsetNamedIn(html.substr(0, longestHead));
    if (named.empty())
        return utf8OfUnnamed(html);
    // The name was read in single bytes, so it is no set of wider units that the page is in.
    const bool unicode = equalsIgnoringCase(named.substr(0, 3), "UTF");
    return toUtf8(html, unicode ? "UTF-8" : customary(named));
}

void takeLink(std::string_view href, std::vector<std::string>& targets)
{
    constexpr std::string_view scheme = "mailto:";
    const std::string target = withoutReferences(href);
    if (equalsIgnoringCase(std::string_view(target).substr(0, scheme.size()), scheme))
        targets.push_back(percentDecoded(std::string_view(target).substr(scheme.size())));
}

} // namespace

std::string htmlBodyText(
    std::string_view html, MailtoLinks links, const std::string& charset, const std::stop_token& stop)
{
    const std::string page = utf8Page(html, charset);
    HtmlTokenizer tokens(page);
    BodyText body;
    std::vector<std::string> targets;
    for (HtmlToken token = tokens.next(); token.kind != HtmlToken::Kind::End; token = tokens.next()) {
        if (token.kind == HtmlToken::Kind::Text)
            body.addText(withoutReferences(token.text));
        else
            body.addTag(token);
        if (links == MailtoLinks::Append && !token.href.empty())
            takeLink(token.href, targets);
        if (stop.stop_requested())
            break;
    }
    for (const std::string& target : targets)
        body.addLine(target);
    return body.take();
}

} // namespace quilvane
