// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/html/HtmlTokenizer.h"

#include "text/ascii.h"
#include "text/utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <optional>

namespace quilvane {

namespace {

constexpr std::string_view lettersAndDigits
    = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";
constexpr std::string_view digits = hexDigits.substr(0, 10);
constexpr std::string_view unseenElements[] = { "iframe", "noembed", "noframes", "script", "style", "title" };

std::optional<std::string> characterNumbered(std::string_view number, int base)
{
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), code, base);
    if (error != std::errc() || code == 0)
        return {};
    std::string character;
    appendUtf8(character, code);
    return character;
}

/// The names of the characters from U+00A0 to U+00FF, in their order.
constexpr std::string_view latinNames[] = { "nbsp", "iexcl", "cent", "pound", "curren", "yen", "brvbar",
    "sect", "uml", "copy", "ordf", "laquo", "not", "shy", "reg", "macr", "deg", "plusmn", "sup2", "sup3",
    "acute", "micro", "para", "middot", "cedil", "sup1", "ordm", "raquo", "frac14", "frac12", "frac34",
    "iquest", "Agrave", "Aacute", "Acirc", "Atilde", "Auml", "Aring", "AElig", "Ccedil", "Egrave", "Eacute",
    "Ecirc", "Euml", "Igrave", "Iacute", "Icirc", "Iuml", "ETH", "Ntilde", "Ograve", "Oacute", "Ocirc",
    "Otilde", "Ouml", "times", "Oslash", "Ugrave", "Uacute", "Ucirc", "Uuml", "Yacute", "THORN", "szlig",
    "agrave", "aacute", "acirc", "atilde", "auml", "aring", "aelig", "ccedil", "egrave", "eacute", "ecirc",
    "euml", "igrave", "iacute", "icirc", "iuml", "eth", "ntilde", "ograve", "oacute", "ocirc", "otilde",
    "ouml", "divide", "oslash", "ugrave", "uacute", "ucirc", "uuml", "yacute", "thorn", "yuml" };

struct NamedCharacter {
    std::string_view name;
    std::string_view character;
};

/// Names of characters that are usual near addresses, or that pages use to hide addresses from programs like
/// this one. Sorted by name.
constexpr NamedCharacter namedCharacters[] = { { "NewLine", "\n" }, { "OElig", "\u0152" },
    { "Scaron", "\u0160" }, { "Tab", "\t" }, { "Yuml", "\u0178" }, { "amp", "&" }, { "apos", "'" },
    { "bdquo", "\u201E" }, { "bull", "\u2022" }, { "colon", ":" }, { "comma", "," }, { "commat", "@" },
    { "darr", "\u2193" }, { "dash", "\u2010" }, { "emsp", "\u2003" }, { "ensp", "\u2002" },
    { "euro", "\u20AC" }, { "excl", "!" }, { "gt", ">" }, { "hellip", "\u2026" }, { "hyphen", "\u2010" },
    { "larr", "\u2190" }, { "ldquo", "\u201C" }, { "lowbar", "_" }, { "lpar", "(" }, { "lrm", "\u200E" },
    { "lsaquo", "\u2039" }, { "lsqb", "[" }, { "lsquo", "\u2018" }, { "lt", "<" }, { "mdash", "\u2014" },
    { "ndash", "\u2013" }, { "num", "#" }, { "oelig", "\u0153" }, { "percnt", "%" }, { "period", "." },
    { "plus", "+" }, { "quot", "\"" }, { "rarr", "\u2192" }, { "rdquo", "\u201D" }, { "rlm", "\u200F" },
    { "rpar", ")" }, { "rsaquo", "\u203A" }, { "rsqb", "]" }, { "rsquo", "\u2019" }, { "sbquo", "\u201A" },
    { "scaron", "\u0161" }, { "semi", ";" }, { "sol", "/" }, { "thinsp", "\u2009" }, { "trade", "\u2122" },
    { "uarr", "\u2191" }, { "zwj", "\u200D" }, { "zwnj", "\u200C" } };

constexpr bool isLower(const NamedCharacter& left, const NamedCharacter& right)
{
    return left.name < right.name;
}
static_assert(std::is_sorted(std::begin(namedCharacters), std::end(namedCharacters), isLower));

std::optional<std::string> characterNamed(std::string_view name)
{
    const auto* found = std::lower_bound(
        std::begin(namedCharacters), std::end(namedCharacters), NamedCharacter{ name, {} }, isLower);
    if (found != std::end(namedCharacters) && found->name == name)
        return std::string(found->character);
    const auto* latin = std::find(std::begin(latinNames), std::end(latinNames), name);
    if (latin == std::end(latinNames))
        return {};
    constexpr char32_t firstLatin = 0xA0;
    std::string character;
    appendUtf8(character, firstLatin + static_cast<char32_t>(latin - std::begin(latinNames)));
    return character;
}

struct Reference {
    std::optional<std::string> character; // none if it refers to nothing
    std::size_t length; // bytes that it takes of the text, whether it refers to something or not
};

/// `text` begins with an ampersand. Many pages forget the semicolon after a number.
Reference firstReference(std::string_view text)
{
    const std::string_view number = text.substr(1).starts_with('#') ? text.substr(2) : std::string_view();
    const bool hexadecimal = number.starts_with('x') || number.starts_with('X');
    const std::size_t begin = number.empty() ? 1 : hexadecimal ? 3 : 2;
    const std::string_view characters = number.empty() ? lettersAndDigits : hexadecimal ? hexDigits : digits;
    const std::size_t end = std::min(text.find_first_not_of(characters, begin), text.size());
    const std::string_view name = text.substr(begin, end - begin);
    const bool closed = text.substr(end).starts_with(';');

    std::optional<std::string> character;
    if (!number.empty())
        character = characterNumbered(name, hexadecimal ? 16 : 10);
    else if (closed)
        character = characterNamed(name);
    return { character, character && closed ? end + 1 : end };
}

} // namespace

HtmlToken HtmlTokenizer::next()
{
    while (!m_rest.empty()) {
        if (!atMarkup())
            return takeText();
        const char mark = m_rest[1];
        if (!isLetter(mark) && !(mark == '/' && m_rest.size() > 2 && isLetter(m_rest[2]))) {
            skipComment();
            continue;
        }
        HtmlToken tag = takeTag();
        const bool unseen = std::find(std::begin(unseenElements), std::end(unseenElements), tag.name)
            != std::end(unseenElements);
        if (!unseen)
            return tag;
        if (tag.kind == HtmlToken::Kind::StartTag)
            skipContentOf(tag.name);
    }
    return {};
}

bool HtmlTokenizer::atMarkup() const
{
    return m_rest.size() > 1 && m_rest[0] == '<'
        && (isLetter(m_rest[1]) || m_rest[1] == '/' || m_rest[1] == '!' || m_rest[1] == '?');
}

void HtmlTokenizer::skipComment()
{
    if (!m_rest.starts_with("<!--")) { // a declaration or something broken
        takeUntil(">");
        take(1);
        return;
    }
    take(4);
    if (m_rest.starts_with('>')) {
        take(1);
        return;
    }
    const std::size_t end = m_rest.find("-->");
    take(end == std::string_view::npos ? end : end + 3);
}

void HtmlTokenizer::skipContentOf(std::string_view element)
{
    for (;;) {
        const std::size_t tag = m_rest.find("</");
        take(tag);
        if (m_rest.empty() || equalsIgnoringCase(m_rest.substr(2, element.size()), element))
            return;
        take(2);
    }
}

HtmlToken HtmlTokenizer::takeText()
{
    HtmlToken token{ .kind = HtmlToken::Kind::Text };
    const char* begin = m_rest.data();
    do {
        take(m_rest.find('<', 1));
    } while (!m_rest.empty() && !atMarkup());
    token.text = { begin, static_cast<std::size_t>(m_rest.data() - begin) };
    return token;
}

HtmlToken HtmlTokenizer::takeTag()
{
    take(1);
    HtmlToken tag{ .kind = HtmlToken::Kind::StartTag };
    if (m_rest.starts_with('/')) {
        tag.kind = HtmlToken::Kind::EndTag;
        take(1);
    }
    tag.name = lowerCased(takeUntil(" \t\r\n\f/>"));
    for (;;) {
        skip(" \t\r\n\f/");
        if (m_rest.empty() || m_rest.starts_with('>')) {
            take(1);
            return tag;
        }
        takeAttribute(tag);
    }
}

void HtmlTokenizer::takeAttribute(HtmlToken& tag)
{
    const char* begin = m_rest.data();
    take(1); // even an equals sign begins a name
    takeUntil(" \t\r\n\f/>=");
    const std::string_view name(begin, static_cast<std::size_t>(m_rest.data() - begin));
    skip(htmlWhiteSpace);
    if (!m_rest.starts_with('='))
        return;
    take(1);
    skip(htmlWhiteSpace);
    const std::string_view value = takeValue();
    if (tag.href.empty() && equalsIgnoringCase(name, "href"))
        tag.href = value;
}

std::string_view HtmlTokenizer::takeValue()
{
    if (!m_rest.starts_with('"') && !m_rest.starts_with('\''))
        return takeUntil(" \t\r\n\f>");
    const std::string_view quote = take(1);
    const std::string_view value = takeUntil(quote);
    take(1);
    return value;
}

/// The next `count` bytes, or all that are left if they are fewer.
std::string_view HtmlTokenizer::take(std::size_t count)
{
    const std::string_view taken = m_rest.substr(0, count);
    m_rest.remove_prefix(taken.size());
    return taken;
}

std::string_view HtmlTokenizer::takeUntil(std::string_view characters)
{
    return take(m_rest.find_first_of(characters));
}

void HtmlTokenizer::skip(std::string_view characters)
{
    take(m_rest.find_first_not_of(characters));
}

std::string withoutReferences(std::string_view text)
{
    std::string result;
    for (;;) {
        const std::size_t mark = std::min(text.find('&'), text.size());
        result += text.substr(0, mark);
        text.remove_prefix(mark);
        if (text.empty())
            return result;
        const Reference reference = firstReference(text);
        result += reference.character ? *reference.character : text.substr(0, reference.length);
        text.remove_prefix(reference.length);
    }
}

} // namespace quilvane
