// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/XmlReader.h"

#include "text/ascii.h"
#include "text/charset.h"
#include "text/utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <expat.h>
#include <malloc.h>

namespace quilvane {

namespace {

/// Bytes that all parsers at work may take: expat keeps every open element and every name.
constexpr std::size_t mostMemory = std::size_t(64) << 20;
thread_local std::size_t usedMemory = 0;

void* resized(void* block, std::size_t size)
{
    const std::size_t before = malloc_usable_size(block);
    if (size > before && size - before > mostMemory - std::min(usedMemory, mostMemory))
        return nullptr;
    void* result = std::realloc(block, size);
    if (result)
        usedMemory += malloc_usable_size(result) - before;
    return result;
}

void* allocated(std::size_t size)
{
    return resized(nullptr, size);
}

void freed(void* block)
{
    usedMemory -= malloc_usable_size(block);
    std::free(block);
}

constexpr XML_Memory_Handling_Suite memoryFunctions{ allocated, resized, freed };

/// Which namespace each prefix stands for at the moment. This is not left to expat, which copies the
/// namespace's name for each attribute: long names, and many attributes, would take it hours.
class Namespaces {
public:
    /// Call it for each declaration of an element, then openElement().
    void declare(std::string_view prefix, std::string_view uri)
    {
        constexpr std::size_t longest = 255;
        constexpr std::size_t most = 100'000;
        if (m_declared.size() == most || m_uris.size() == most)
            return;
        const auto place = m_uris.try_emplace(std::string(prefix)).first;
        m_declared.push_back({ place, std::move(place->second), m_depth });
        place->second = uri.size() <= longest ? uri : std::string_view();
        m_lastPlace = m_uris.end();
    }
    /// For a document whose root element is damaged, with all that is declared there: what word processors
    /// write.
    void assumeUsual()
    {
        using Uri = std::string_view;
        for (const auto& [prefix, uri] :
            { std::pair<Uri, Uri>{ "w", "http://schemas.openxmlformats.org/wordprocessingml/2006/main" },
                { "r", "http://schemas.openxmlformats.org/officeDocument/2006/relationships" },
                { "a", "http://schemas.openxmlformats.org/drawingml/2006/main" },
                { "mc", "http://schemas.openxmlformats.org/markup-compatibility/2006" },
                { "v", "urn:schemas-microsoft-com:vml" } })
            m_uris.try_emplace(std::string(prefix), uri);
        m_lastPlace = m_uris.end();
    }
    void openElement() { ++m_depth; }
    void closeElement()
    {
        --m_depth;
        for (; !m_declared.empty() && m_declared.back().depth == m_depth; m_declared.pop_back())
            m_declared.back().place->second = std::move(m_declared.back().before);
    }

    /// Empty for a prefix that was not declared.
    std::string_view uriOf(std::string_view prefix)
    {
        if (m_lastPlace == m_uris.end() || m_lastPlace->first != prefix)
            m_lastPlace = m_uris.find(prefix);
        return m_lastPlace == m_uris.end() ? std::string_view() : m_lastPlace->second;
    }

private:
    using Uris = std::map<std::string, std::string, std::less<>>;
    struct Declared {
        Uris::iterator place;
        std::string before; // what the prefix stood for
        std::size_t depth;
    };

    Uris m_uris;
    Uris::iterator m_lastPlace = m_uris.end();
    std::vector<Declared> m_declared;
    std::size_t m_depth = 0;
};

/// The two halves of "w:p"; the first one is empty without a prefix.
std::pair<std::string_view, std::string_view> split(std::string_view name)
{
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos)
        return { {}, name };
    return { name.substr(0, colon), name.substr(colon + 1) };
}

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

/// One reading of one document, by one parser after the other: each ends at the first damage.
class Reading {
public:
    Reading(XmlHandler& handler, ReadingBudget& budget)
        : m_handler(handler)
        , m_budget(budget)
    {
    }

    void read(std::string_view xml)
    {
        constexpr std::size_t deepest = 100; // where reading goes on after damage
        const bool isWide = xml.substr(0, 4).find('\0') != std::string_view::npos;
        while (const std::optional<std::size_t> damage = readUpToDamage(xml)) {
            if (isWide || m_open.size() > deepest || m_budget.xmlDamage == 0)
                return;
            --m_budget.xmlDamage;
            if (m_open.empty())
                m_namespaces.assumeUsual();
            xml.remove_prefix(*damage);
            if (m_error == XML_ERROR_TAG_MISMATCH)
                closeElement(xml.substr(0, xml.find_first_of("> \t\r\n")));
            xml.remove_prefix(std::min(xml.find('<', 1), xml.size()));
        }
    }

private:
    /// The place of the damage, of an end tag that does not fit that of its name; `m_error` tells which.
    /// Nothing if there is none, or reading must not go on: a token that has no end was looked through to the
    /// end.
    std::optional<std::size_t> readUpToDamage(std::string_view xml)
    {
        const Parser parser = makeParser();
        m_parser = parser.get();
        // The elements that were open before the damage, so that their end tags make sense.
        std::string openTags;
        for (const std::string& name : m_open)
            openTags += '<' + name + '>';
        m_isTold = false;
        XML_Status status = parse(openTags, false);
        m_isTold = true;
        // A token that a piece cuts is read again with the next one, so the pieces then grow.
        constexpr std::size_t smallest = std::size_t(1) << 16;
        std::size_t size = smallest;
        for (std::size_t at = 0; status == XML_STATUS_OK && !m_isStopped && at < xml.size();) {
            const std::string_view piece = xml.substr(at, size);
            at += piece.size();
            status = parse(piece, at == xml.size());
            size = at - std::min(place() - openTags.size(), at) > size / 2 ? size * 2 : smallest;
        }
        m_error = XML_GetErrorCode(m_parser);
        const std::size_t damage = place() - std::min(place(), openTags.size());
        if (status == XML_STATUS_OK || m_isStopped || damage >= xml.size() || m_error == XML_ERROR_NO_MEMORY
            || m_error == XML_ERROR_UNCLOSED_TOKEN || m_error == XML_ERROR_UNCLOSED_CDATA_SECTION)
            return {};
        return damage;
    }

    XML_Status parse(std::string_view piece, bool isLast)
    {
        const XML_Status status = XML_Parse(
            m_parser, piece.data(), static_cast<int>(piece.size()), isLast ? XML_TRUE : XML_FALSE);
        if (m_thrown)
            std::rethrow_exception(m_thrown);
        return status;
    }

    std::size_t place() const { return static_cast<std::size_t>(XML_GetCurrentByteIndex(m_parser)); }

    Parser makeParser()
    {
        Parser parser(XML_ParserCreate_MM(
            m_encoding.empty() ? nullptr : m_encoding.c_str(), &memoryFunctions, nullptr));
        if (!parser)
            throw std::bad_alloc();
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(
            parser.get(),
            [](void* self, const XML_Char* name, const XML_Char** attributes) {
                of(self).tell(&Reading::startElement, name, attributes);
            },
            [](void* self, const XML_Char*) { of(self).tell(&Reading::endElement); });
        XML_SetCharacterDataHandler(parser.get(), [](void* self, const XML_Char* text, int size) {
            of(self).tell(&Reading::characters, std::string_view(text, static_cast<std::size_t>(size)));
        });
        XML_SetXmlDeclHandler(parser.get(), [](void* self, const XML_Char*, const XML_Char* encoding, int) {
            // That of what is read here has one byte for a letter, whatever it says.
            of(self).m_encoding = encoding && !beginsIgnoringCase(encoding, "UTF-16") ? encoding : "";
        });
        XML_SetStartDoctypeDeclHandler(parser.get(),
            [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) { of(self).stop(); });
        XML_SetUnknownEncodingHandler(parser.get(), takeEncoding, nullptr);
        return parser;
    }

    static Reading& of(void* self) { return *static_cast<Reading*>(self); }

    void stop()
    {
        m_isStopped = true;
        XML_StopParser(m_parser, XML_FALSE);
    }

    /// Calls that expat makes after a stop are dropped. What is thrown must not fly through expat's frames.
    template <typename... Parameters, typename... Arguments>
    void tell(void (Reading::*call)(Parameters...), Arguments... arguments)
    {
        if (m_isStopped || !m_isTold)
            return;
        try {
            (this->*call)(arguments...);
        } catch (...) {
            m_thrown = std::current_exception();
            stop();
        }
    }

    void startElement(const XML_Char* name, const XML_Char** attributes)
    {
        m_attributes.clear();
        for (const XML_Char** attribute = attributes; *attribute; attribute += 2) {
            const auto [prefix, ownName] = split(attribute[0]);
            if (prefix == "xmlns" || (prefix.empty() && ownName == "xmlns"))
                m_namespaces.declare(prefix.empty() ? prefix : ownName, attribute[1]);
            else
                m_attributes.push_back({ prefix, ownName, attribute[1] });
        }
        for (XmlAttribute& attribute : m_attributes)
            if (!attribute.uri.empty())
                attribute.uri = m_namespaces.uriOf(attribute.uri);
        m_namespaces.openElement();
        m_open.emplace_back(name);
        const auto [prefix, ownName] = split(name);
        m_handler.startElement(m_namespaces.uriOf(prefix), ownName, m_attributes);
    }

    void endElement()
    {
        m_open.pop_back();
        m_namespaces.closeElement();
        m_handler.endElement();
    }

    /// Takes an end tag that comes too early, and closes what is open in that element; passes over one that
    /// fits nothing.
    void closeElement(std::string_view name)
    {
        const auto found = std::find(m_open.rbegin(), m_open.rend(), name);
        const auto left = static_cast<std::size_t>(m_open.rend() - found);
        while (left > 0 && m_open.size() >= left)
            endElement();
    }

    void characters(std::string_view text) { m_handler.characters(text); }

    /// Of the character sets that expat does not know, those of one byte for each character; of others,
    /// ASCII.
    static int takeEncoding(void*, const XML_Char* name, XML_Encoding* encoding)
    {
        const int codePage = codePageNamed(name).value_or(codePages::utf8);
        for (int byte = 0; byte < 256; ++byte) {
            const char c = static_cast<char>(byte);
            encoding->map[byte] = static_cast<int>(firstCharacter(toUtf8({ &c, 1 }, codePage)).code);
        }
        encoding->data = nullptr;
        encoding->convert = nullptr;
        encoding->release = nullptr;
        return XML_STATUS_OK;
    }

    XmlHandler& m_handler;
    ReadingBudget& m_budget;
    XML_Parser m_parser = nullptr;
    XML_Error m_error = XML_ERROR_NONE;
    std::string m_encoding; // as the document names it
    Namespaces m_namespaces;
    std::vector<std::string> m_open; // the names of the open elements
    std::vector<XmlAttribute> m_attributes; // of the element told at the moment
    bool m_isTold = true;
    bool m_isStopped = false;
    std::exception_ptr m_thrown;
};

} // namespace

void readXml(std::string_view xml, XmlHandler& handler, ReadingBudget& budget)
{
    Reading(handler, budget).read(xml);
}

} // namespace quilvane
