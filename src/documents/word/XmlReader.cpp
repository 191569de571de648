// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/XmlReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <utility>
#include <vector>

#include <libxml/parser.h>

namespace quilvane {

namespace {

constexpr int deepest = 10'000;
constexpr std::size_t mostAttributes = 1000;

std::string_view viewOf(const xmlChar* text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

std::string_view viewOf(const xmlChar* begin, const xmlChar* end)
{
    return { reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin) };
}

/// Counts the attributes of a start tag while its bytes come in.
class TagMeter {
public:
    /// `tag` begins with the tag's '<' and holds what was seen before, too.
    std::size_t attributesIn(std::string_view tag)
    {
        for (; m_seen < tag.size(); ++m_seen) {
            const char c = tag[m_seen];
            if (m_quote)
                m_quote = c == m_quote ? '\0' : m_quote;
            else if (c == '"' || c == '\'')
                m_quote = c;
            else if (c == '=')
                ++m_attributes;
        }
        return m_attributes;
    }

private:
    std::size_t m_seen = 0;
    std::size_t m_attributes = 0;
    char m_quote = '\0';
};

} // namespace

struct XmlReader::Native {
    XmlHandler& handler;
    ReadingBudget& budget;
    xmlParserCtxtPtr parser;
    std::vector<XmlAttribute> attributes; // of the element told at the moment
    std::vector<int> namespaceCounts; // declared by each open element
    std::size_t namespacesInScope = 0;
    bool isStopped = false;
    std::exception_ptr thrown; // by the handler: it must not fly through libxml2's frames
    unsigned long tokenBegin = 0;
    TagMeter tagMeter;

    Native(XmlHandler& itsHandler, ReadingBudget& itsBudget)
        : handler(itsHandler)
        , budget(itsBudget)
    {
        xmlSAXHandler sax = callbacks();
        parser = xmlCreatePushParserCtxt(&sax, this, nullptr, 0, nullptr);
        if (!parser)
            throw std::bad_alloc();
        // NOENT: or else "&amp;" in an attribute's value stays as it is.
        xmlCtxtUseOptions(parser, XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_RECOVER);
    }
    ~Native() { xmlFreeParserCtxt(parser); }
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    static Native& of(void* context) { return *static_cast<Native*>(context); }

    void stop()
    {
        isStopped = true;
        xmlStopParser(parser);
    }

    template <typename Call>
    void tell(Call call)
    {
        if (isStopped)
            return;
        try {
            call();
        } catch (...) {
            thrown = std::current_exception();
            stop();
        }
    }

    /// Ends the reading if the budget does not cover the cost.
    void spend(std::uint64_t cost)
    {
        if (cost > budget.xmlWork)
            stop();
        budget.xmlWork -= std::min(cost, budget.xmlWork);
    }

    /// libxml2 compares each attribute with all others, and each prefix with all namespaces in scope.
    std::uint64_t costOfElement(std::size_t attributeCount) const
    {
        constexpr std::uint64_t ofAny = 100; // as much as so many comparisons
        return ofAny + attributeCount * attributeCount + (attributeCount + 1) * (namespacesInScope + 1);
    }

    void startElement(const xmlChar* name, const xmlChar* uri, int namespaceCount, int attributeCount,
        const xmlChar** rawAttributes)
    {
        namespaceCounts.push_back(namespaceCount);
        namespacesInScope += static_cast<std::size_t>(namespaceCount);
        spend(costOfElement(static_cast<std::size_t>(attributeCount)));
        if (namespaceCounts.size() > deepest)
            stop();
        if (isStopped)
            return;
        attributes.clear();
        for (int i = 0; i < attributeCount; ++i) {
            constexpr int fieldsEach = 5; // name, prefix, URI, begin and end of the value
            const xmlChar** fields = rawAttributes + static_cast<std::ptrdiff_t>(i) * fieldsEach;
            attributes.push_back({ viewOf(fields[2]), viewOf(fields[0]), viewOf(fields[3], fields[4]) });
        }
        handler.startElement(viewOf(uri), viewOf(name), attributes);
    }

    void endElement()
    {
        namespacesInScope -= static_cast<std::size_t>(namespaceCounts.back());
        namespaceCounts.pop_back();
        handler.endElement();
    }

    /// A token comes to us when all of it is there. While it is not, libxml2 keeps its bytes, and looks
    /// through them again with each piece. When a tag is complete, it compares the attributes before we are
    /// told, so one of a great many must not get that far.
    void watchUnfinishedToken()
    {
        const xmlParserInput* input = parser->input;
        if (isStopped || !input)
            return;
        const unsigned long begin = input->consumed + static_cast<unsigned long>(input->cur - input->base);
        if (begin != tokenBegin) {
            tokenBegin = begin;
            tagMeter = {};
            return; // what is new is shorter than a piece
        }
        const std::string_view token = viewOf(input->cur, input->end);
        // Stopping frees the bytes that the token is a view of, so that comes last.
        const bool isTag = token.size() > 1 && token[0] == '<' && token[1] != '!' && token[1] != '?';
        if (isTag && tagMeter.attributesIn(token) > mostAttributes)
            stop();
        else
            spend(token.size());
    }

    void parse(std::string_view bytes, bool isLast)
    {
        const int failed = xmlParseChunk(parser, bytes.data(), static_cast<int>(bytes.size()), isLast);
        if (thrown)
            std::rethrow_exception(std::exchange(thrown, nullptr));
        if (failed == XML_ERR_NO_MEMORY)
            throw std::bad_alloc();
    }

    /// The functions that libxml2 calls.
    static xmlSAXHandler callbacks()
    {
        xmlSAXHandler sax{};
        sax.initialized = XML_SAX2_MAGIC;
        sax.startElementNs
            = [](void* context, const xmlChar* name, const xmlChar*, const xmlChar* uri, int namespaceCount,
                  const xmlChar**, int attributeCount, int, const xmlChar** rawAttributes) {
                  Native& native = Native::of(context);
                  native.tell(
                      [&] { native.startElement(name, uri, namespaceCount, attributeCount, rawAttributes); });
              };
        sax.endElementNs = [](void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
            Native& native = Native::of(context);
            native.tell([&] { native.endElement(); });
        };
        sax.characters = [](void* context, const xmlChar* text, int size) {
            Native& native = Native::of(context);
            native.tell([&] { native.handler.characters(viewOf(text, text + size)); });
        };
        sax.cdataBlock = sax.characters;
        sax.internalSubset = [](void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
            Native::of(context).stop(); // before any entity is declared
        };
        sax.serror = [](void* context, xmlErrorPtr) {
            Native& native = Native::of(context);
            if (--native.budget.xmlErrors <= 0)
                native.stop();
        };
        return sax;
    }
};

XmlReader::XmlReader(XmlHandler& handler, ReadingBudget& budget)
    : m_native(std::make_unique<Native>(handler, budget))
{
}

XmlReader::~XmlReader() = default;

bool XmlReader::feed(std::string_view bytes)
{
    constexpr std::size_t pieceSize = std::size_t(1) << 14;
    for (std::size_t at = 0; at < bytes.size() && !m_native->isStopped; at += pieceSize) {
        m_native->parse(bytes.substr(at, pieceSize), false);
        m_native->watchUnfinishedToken();
    }
    return !m_native->isStopped;
}

void XmlReader::finish()
{
    if (!m_native->isStopped)
        m_native->parse({}, true);
}

} // namespace quilvane
