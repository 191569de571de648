// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/html/HtmlTokenizer.h"

#include "text/ascii.h"

#include <libxml/HTMLparser.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <optional>
#include <unordered_map>

namespace quilvane {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n\f";
constexpr std::string_view lettersAndDigits
    = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";
constexpr std::string_view digits = hexDigits.substr(0, 10);
constexpr std::string_view unseenElements[] = { "iframe", "noembed", "noframes", "script", "style", "title" };

bool isLetter(char c)
{
    const int lower = c | 0x20;
    return lower >= 'a' && lower <= 'z';
}

std::string inLowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + ('a' - 'A'));
    return lower;
}

std::string utf8(std::uint32_t code)
{
    const auto tail = [code](int shift) { return static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    const auto lead = [code](unsigned mark, int shift) { return static_cast<char>(mark | (code >> shift)); };
    if (code < 0x80)
        return { static_cast<char>(code) };
    if (code < 0x800)
        return { lead(0xC0, 6), tail(0) };
    if (code < 0x10000)
        return { lead(0xE0, 12), tail(6), tail(0) };
    return { lead(0xF0, 18), tail(12), tail(6), tail(0) };
}

std::optional<std::string> characterNumbered(std::string_view number, int base)
{
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), code, base);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (error != std::errc() || code == 0 || code > 0x10FFFF || surrogate)
        return {};
    return utf8(code);
}

using Characters = std::unordered_map<std::string_view, std::uint32_t>;

/// libxml2 looks names up one by one, in a list of all.
Characters namedCharacters()
{
    constexpr unsigned last = 0x2666; // "diams"
    // Those of HTML 5 that addresses are written with, to hide them from programs like this one.
    Characters characters{ { "apos", '\'' }, { "commat", '@' }, { "lowbar", '_' }, { "period", '.' },
        { "plus", '+' } };
    for (unsigned code = 1; code <= last; ++code)
        if (const htmlEntityDesc* entity = htmlEntityValueLookup(code))
            characters.emplace(entity->name, code);
    return characters;
}

std::optional<std::string> characterNamed(std::string_view name)
{
    static const Characters characters = namedCharacters();
    const auto found = characters.find(name);
    if (found == characters.end())
        return {};
    return utf8(found->second);
}

struct Reference {
    std::optional<std::string> character; // none if it refers to nothing
    std::size_t length; // of the reference in the text; where it refers to nothing, of what is no reference
};

/// `text` begins with an ampersand. Many pages forget the semicolon behind a number.
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
    tag.name = inLowerCase(takeUntil(" \t\r\n\f/>"));
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
    skip(whiteSpace);
    if (!m_rest.starts_with('='))
        return;
    take(1);
    skip(whiteSpace);
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
