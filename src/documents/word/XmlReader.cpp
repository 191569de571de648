// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/XmlReader.h"

#include "documents/html/HtmlTokenizer.h"
#include "text/ascii.h"
#include "text/charset.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

constexpr auto npos = std::string_view::npos;

constexpr bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// Whether a byte ends the name of an element or of an attribute.
constexpr std::array<bool, 256> endsName = [] {
    std::array<bool, 256> result{};
    for (const char c : { ' ', '\t', '\r', '\n', '/', '=', '<', '>' })
        result[static_cast<unsigned char>(c)] = true;
    return result;
}();

/// Which namespace each prefix stands for at the moment.
class Namespaces {
public:
    Namespaces()
    {
        // The prefixes that word processors use, for a document whose root element, which declares them, is
        // damaged.
        using Uri = std::string_view;
        for (const auto& [prefix, uri] :
            { std::pair<Uri, Uri>{ "w", "http://schemas.openxmlformats.org/wordprocessingml/2006/main" },
                { "r", "http://schemas.openxmlformats.org/officeDocument/2006/relationships" },
                { "a", "http://schemas.openxmlformats.org/drawingml/2006/main" },
                { "mc", "http://schemas.openxmlformats.org/markup-compatibility/2006" },
                { "v", "urn:schemas-microsoft-com:vml" } })
            m_uris.emplace(prefix, uri);
    }

    /// `depth` is the depth of the element that declares it. Both views must outlive this.
    void declare(std::string_view prefix, std::string_view uri, std::size_t depth)
    {
        constexpr std::size_t most = 100'000;
        if (m_declared.size() == most || m_uris.size() == most)
            return;
        const auto place = m_uris.try_emplace(prefix).first;
        m_declared.push_back({ place, std::exchange(place->second, uri), depth });
        m_lastPlace = m_uris.end();
    }

    void leave(std::size_t depth)
    {
        for (; !m_declared.empty() && m_declared.back().depth == depth; m_declared.pop_back())
            m_declared.back().place->second = m_declared.back().before;
    }

    /// Empty for a prefix that was not declared.
    std::string_view uriOf(std::string_view prefix)
    {
        if (m_lastPlace == m_uris.end() || m_lastPlace->first != prefix)
            m_lastPlace = m_uris.find(prefix);
        return m_lastPlace == m_uris.end() ? std::string_view() : m_lastPlace->second;
    }

private:
    using Uris = std::map<std::string_view, std::string_view>;
    struct Declared {
        Uris::iterator place;
        std::string_view before; // what the prefix stood for
        std::size_t depth;
    };

    Uris m_uris;
    Uris::iterator m_lastPlace = m_uris.end();
    std::vector<Declared> m_declared;
};

/// The two halves of "w:p"; the first one is empty without a prefix.
std::pair<std::string_view, std::string_view> split(std::string_view name)
{
    const std::size_t colon = name.find(':');
    if (colon == npos)
        return { {}, name };
    return { name.substr(0, colon), name.substr(colon + 1) };
}

/// One reading of one document, in UTF-8.
class Reading {
public:
    Reading(std::string_view xml, XmlHandler& handler)
        : m_rest(xml)
        , m_handler(handler)
    {
    }

    void read()
    {
        constexpr std::size_t deepest = 10'000;
        while (!m_rest.empty() && m_open.size() < deepest) {
            takeText();
            if (m_rest.starts_with("</"))
                takeEndTag();
            else if (m_rest.starts_with("<!DOCTYPE"))
                return; // entities would be declared there
            else if (m_rest.starts_with("<![CDATA["))
                m_handler.characters(takeThrough("<![CDATA[", "]]>"));
            else if (m_rest.starts_with("<!--"))
                takeThrough("<!--", "-->");
            else if (m_rest.starts_with("<?"))
                takeThrough("<?", "?>");
            else
                takeStartTag();
        }
        while (!m_open.empty())
            closeElement();
    }

private:
    std::string_view take(std::size_t count)
    {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view takeName()
    {
        std::size_t size = 0;
        while (size < m_rest.size() && !endsName[static_cast<unsigned char>(m_rest[size])])
            ++size;
        return take(size);
    }

    void skipBlanks()
    {
        while (!m_rest.empty() && isBlank(m_rest.front()))
            m_rest.remove_prefix(1);
    }

    /// The text between `begin`, which comes next, and `end`.
    std::string_view takeThrough(std::string_view begin, std::string_view end)
    {
        take(begin.size());
        const std::string_view content = take(m_rest.find(end));
        take(end.size());
        return content;
    }

    /// With its references replaced; valid until forgetReplaced().
    std::string_view plain(std::string_view text)
    {
        if (text.find('&') == npos)
            return text;
        return m_replaced.emplace_back(withoutReferences(text));
    }

    void forgetReplaced()
    {
        if (!m_replaced.empty())
            m_replaced.clear();
    }

    void takeText()
    {
        const std::string_view text = take(m_rest.find('<'));
        if (!text.empty() && !m_open.empty())
            m_handler.characters(plain(text));
        forgetReplaced();
    }

    /// Also closes the elements that are open inside its element, unless they are too many. An end tag that
    /// fits no open element is skipped.
    void takeEndTag()
    {
        take(2);
        const std::string_view name = takeName();
        take(std::min(m_rest.find_first_of("<>"), m_rest.size()));
        if (m_rest.starts_with('>'))
            take(1);
        constexpr std::size_t mostLeftOpen = 100;
        const auto farthest
            = m_open.rbegin() + static_cast<std::ptrdiff_t>(std::min(m_open.size(), mostLeftOpen));
        const auto found = std::find(m_open.rbegin(), farthest, name);
        if (found == farthest)
            return;
        const auto left = static_cast<std::size_t>(m_open.rend() - found) - 1;
        while (m_open.size() > left)
            closeElement();
    }

    void closeElement()
    {
        m_namespaces.leave(m_open.size());
        m_open.pop_back();
        m_handler.endElement();
    }

    /// A damaged tag is skipped up to the next '<' or '>' and opens no element.
    void takeStartTag()
    {
        take(1);
        m_attributes.clear();
        const std::string_view name = takeName();
        const std::size_t depth = m_open.size() + 1;
        skipBlanks();
        while (!m_rest.empty() && m_rest.front() != '/' && m_rest.front() != '>') {
            if (!takeAttribute(depth))
                break;
            skipBlanks();
        }
        const bool isEmpty = m_rest.starts_with("/>");
        if (name.empty() || (!isEmpty && !m_rest.starts_with('>'))) {
            m_namespaces.leave(depth);
            forgetReplaced();
            take(m_rest.find_first_of("<>"));
            if (m_rest.starts_with('>'))
                take(1);
            return;
        }
        take(isEmpty ? 2 : 1);
        for (XmlAttribute& attribute : m_attributes)
            if (!attribute.uri.empty())
                attribute.uri = m_namespaces.uriOf(attribute.uri);
        const auto [prefix, ownName] = split(name);
        m_open.push_back(name);
        m_handler.startElement(m_namespaces.uriOf(prefix), ownName, m_attributes);
        forgetReplaced();
        if (isEmpty)
            closeElement();
    }

    /// False if there is none.
    bool takeAttribute(std::size_t depth)
    {
        constexpr std::size_t mostAttributes = 1000;
        const std::string_view name = takeName();
        skipBlanks();
        if (name.empty() || !m_rest.starts_with('='))
            return false;
        take(1);
        skipBlanks();
        if (!m_rest.starts_with('"') && !m_rest.starts_with('\''))
            return false;
        const char quote = take(1).front();
        const std::string_view value = m_rest.substr(0, m_rest.find(quote));
        if (value.size() == m_rest.size() || value.find('<') != npos)
            return false;
        take(value.size() + 1);
        const auto [prefix, ownName] = split(name);
        if (prefix == "xmlns" || (prefix.empty() && ownName == "xmlns"))
            m_namespaces.declare(prefix.empty() ? prefix : ownName, value, depth);
        else if (m_attributes.size() < mostAttributes)
            m_attributes.push_back({ prefix, ownName, plain(value) });
        return true;
    }

    std::string_view m_rest;
    XmlHandler& m_handler;
    Namespaces m_namespaces;
    std::vector<std::string_view> m_open; // the names of the open elements
    std::vector<XmlAttribute> m_attributes; // of the current tag
    std::deque<std::string> m_replaced; // texts whose references were replaced, of the current tag or text
};

/// The code page of a document, detected from its first bytes (XML 1.0, appendix F); nothing for UTF-8.
std::optional<int> codePageOf(std::string_view xml)
{
    using namespace std::string_view_literals;
    if (xml.starts_with("\xFF\xFE"sv) || xml.starts_with("<\0"sv))
        return codePages::utf16LittleEndian;
    if (xml.starts_with("\xFE\xFF"sv) || xml.starts_with("\0<"sv))
        return codePages::utf16BigEndian;
    const std::string_view declaration = xml.substr(0, xml.find("?>"));
    constexpr std::string_view key = "encoding=";
    const std::size_t at = declaration.find(key);
    if (!xml.starts_with("<?xml") || at == npos)
        return {};
    const std::string_view quoted = withoutLeading(declaration.substr(at + key.size()), "\"'");
    const std::string_view name = quoted.substr(0, quoted.find_first_of("\"'"));
    // The declaration could be read with one byte for each letter, so UTF-16 or UTF-32 can't be true.
    if (beginsIgnoringCase(name, "UTF"))
        return {};
    return codePageNamed(name);
}

} // namespace

void readXml(std::string_view xml, XmlHandler& handler)
{
    std::string converted;
    if (const std::optional<int> codePage = codePageOf(xml)) {
        converted = toUtf8(xml, *codePage);
        xml = converted;
    }
    Reading(xml, handler).read();
}

} // namespace quilvane
