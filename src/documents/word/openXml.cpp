// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/openXml.h"

#include "documents/documentText.h"
#include "documents/word/Relationships.h"
#include "documents/word/WordXmlText.h"
#include "documents/word/XmlReader.h"
#include "documents/word/ZipArchive.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

using Kind = Relationships::Kind;

/// Reads the parts of one package, each once.
class PackageReader {
public:
    PackageReader(std::string_view zip, ReadingBudget& budget)
        : m_archive(zip)
        , m_budget(budget)
    {
    }

    std::optional<std::string> text()
    {
        Relationships ofPackage = relationshipsOf({});
        for (const Relationships::Entry& entry : ofPackage.entries()) {
            if (entry.kind == Kind::MainDocument)
                readWithReferences(entry.target);
        }
        if (!m_isWord || m_archive.isDamaged())
            readPartsByName();
        if (!m_isWord || (m_archive.isDamaged() && m_text.empty()))
            return std::nullopt;
        return std::move(m_text);
    }

private:
    /// For a package whose relationships are lost: by the names that word processors use.
    void readPartsByName()
    {
        constexpr std::string_view folder = "word/";
        for (const ZipArchive::Entry& entry : m_archive.entries()) {
            const std::string_view name = entry.name;
            if (name.starts_with(folder) && name.ends_with(".xml")
                && name.find('/', folder.size()) == std::string_view::npos)
                readWithReferences(entry.name);
        }
    }

    void readWithReferences(const std::string& first)
    {
        std::vector<std::string> waiting{ first };
        for (std::size_t i = 0; i < waiting.size(); ++i) {
            const ZipArchive::Entry* entry = m_archive.find(waiting[i]);
            if (entry && m_budget.parts > 0 && m_read.insert(entry).second)
                read(*entry, waiting);
        }
    }

    /// Adds the names of the parts that are to be read behind this one.
    void read(const ZipArchive::Entry& entry, std::vector<std::string>& waiting)
    {
        Relationships relationships = relationshipsOf(entry.name);
        WordXmlText partText(relationships);
        parse(entry, partText);
        m_isWord = m_isWord || !partText.root().empty();
        m_text += partText.takeText();
        for (const Relationships::Entry* reference : partText.references()) {
            if (reference->kind == Kind::EmbeddedDocument)
                readEmbedded(reference->target);
            else
                waiting.push_back(reference->target);
        }
        for (const Relationships::Entry& relationship : relationships.entries()) {
            if (relationship.kind == Kind::Story)
                waiting.push_back(relationship.target);
        }
    }

    void readEmbedded(const std::string& name)
    {
        const ZipArchive::Entry* entry = m_archive.find(name);
        if (!entry || m_budget.parts == 0 || !m_read.insert(entry).second)
            return;
        std::string bytes;
        unpack(*entry, [&bytes](std::string_view piece) {
            bytes += piece;
            return true;
        });
        const bool isPlainText = name.ends_with(".txt");
        m_text += isPlainText ? bytes : documentText(bytes, m_budget).value_or(std::string());
        m_text += '\n';
    }

    Relationships relationshipsOf(std::string_view source)
    {
        Relationships relationships(source);
        if (const ZipArchive::Entry* entry = m_archive.find(Relationships::partFor(source)))
            parse(*entry, relationships);
        return relationships;
    }

    void parse(const ZipArchive::Entry& entry, XmlHandler& handler)
    {
        XmlReader reader(handler, m_budget);
        unpack(entry, [&reader](std::string_view piece) { return reader.feed(piece); });
        reader.finish();
    }

    /// ZipArchive::unpack within the budget.
    void unpack(const ZipArchive::Entry& entry, const std::function<bool(std::string_view)>& take)
    {
        if (m_budget.parts == 0)
            return;
        --m_budget.parts;
        std::size_t left = std::min(m_budget.bytes, ReadingBudget::partBytes);
        m_budget.bytes -= left;
        ZipArchive::unpack(entry, [&](std::string_view piece) {
            piece = piece.substr(0, left);
            left -= piece.size();
            return take(piece) && left > 0;
        });
        m_budget.bytes += left;
    }

    ZipArchive m_archive;
    ReadingBudget& m_budget;
    std::set<const ZipArchive::Entry*> m_read;
    std::string m_text;
    bool m_isWord = false;
};

constexpr std::string_view flatPackageUri = "http://schemas.microsoft.com/office/2006/xmlPackage";

/// Takes a flat package apart: hands the XML of each part to the handler that `handlerOf` names for it, if
/// any.
class FlatPackageSplitter : public XmlHandler {
public:
    explicit FlatPackageSplitter(std::function<XmlHandler*(const std::string& part)> handlerOf)
        : m_handlerOf(std::move(handlerOf))
    {
    }

    void startElement(
        std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes) override
    {
        if (m_depth > 0) {
            ++m_depth;
            if (m_handler)
                m_handler->startElement(uri, name, attributes);
        } else if (uri == flatPackageUri && name == "part") {
            for (const XmlAttribute& attribute : attributes) {
                if (attribute.name == "name")
                    m_part = ZipArchive::normalised(attribute.value);
            }
        } else if (uri == flatPackageUri && name == "xmlData") {
            m_depth = 1;
            m_handler = m_handlerOf(m_part);
        }
    }

    void endElement() override
    {
        if (m_depth > 0 && --m_depth > 0 && m_handler)
            m_handler->endElement();
    }

    void characters(std::string_view text) override
    {
        if (m_depth > 0 && m_handler)
            m_handler->characters(text);
    }

private:
    std::function<XmlHandler*(const std::string&)> m_handlerOf;
    std::string m_part;
    XmlHandler* m_handler = nullptr;
    int m_depth = 0; // of elements in the XML of a part, the one around it included
};

/// Notes the root element.
class RootProbe : public XmlHandler {
public:
    std::string uri, name;

    void startElement(
        std::string_view itsUri, std::string_view itsName, std::span<const XmlAttribute>) override
    {
        if (name.empty()) {
            uri = itsUri;
            name = itsName;
        }
    }
    void endElement() override { }
    void characters(std::string_view) override { }
};

void parse(std::string_view xml, XmlHandler& handler, ReadingBudget& budget)
{
    XmlReader reader(handler, budget);
    reader.feed(xml.substr(0, budget.bytes));
    reader.finish();
}

using RelationshipsByPart = std::map<std::string, Relationships>;

/// The names of the parts that hold the document's text.
std::set<std::string> textParts(RelationshipsByPart& relationships)
{
    std::set<std::string> found;
    std::vector<std::string> waiting{ {} };
    while (!waiting.empty()) {
        const auto source = relationships.find(waiting.back());
        waiting.pop_back();
        if (source == relationships.end())
            continue;
        for (const Relationships::Entry& entry : source->second.entries()) {
            const bool isText = entry.kind != Kind::Link && entry.kind != Kind::EmbeddedDocument;
            if (isText && found.insert(entry.target).second)
                waiting.push_back(entry.target);
        }
    }
    return found;
}

/// The part whose relationships are kept in a part of that name; nothing for a part that keeps none.
std::optional<std::string> sourceOf(std::string_view part)
{
    constexpr std::string_view folder = "_rels/";
    constexpr std::string_view suffix = ".rels";
    const std::size_t at = part.rfind(folder);
    if (at == std::string_view::npos || !part.ends_with(suffix))
        return std::nullopt;
    std::string source(part.substr(0, at));
    source += part.substr(at + folder.size());
    source.resize(source.size() - suffix.size());
    return source;
}

/// Read twice, as the relationships may stand behind what they belong to.
std::string textOfFlatPackage(std::string_view xml, ReadingBudget& budget)
{
    RelationshipsByPart relationships;
    FlatPackageSplitter findRelationships([&](const std::string& part) -> XmlHandler* {
        const std::optional<std::string> source = sourceOf(part);
        return source ? &relationships.try_emplace(*source, *source).first->second : nullptr;
    });
    parse(xml, findRelationships, budget);

    const std::set<std::string> wanted = textParts(relationships);
    std::map<std::string, WordXmlText> texts;
    FlatPackageSplitter findText([&](const std::string& part) -> XmlHandler* {
        if (!wanted.contains(part) || texts.contains(part))
            return nullptr;
        Relationships& ofPart = relationships.try_emplace(part, part).first->second;
        return &texts.try_emplace(part, ofPart).first->second;
    });
    parse(xml, findText, budget);

    std::string text;
    for (auto& [part, partText] : texts)
        text += partText.takeText();
    return text;
}

} // namespace

std::optional<std::string> textOfOpenXml(std::string_view zip, ReadingBudget& budget)
{
    return PackageReader(zip, budget).text();
}

std::optional<std::string> textOfFlatXml(std::string_view xml, ReadingBudget& budget)
{
    constexpr std::size_t rootIsWithin = std::size_t(1) << 16;
    RootProbe root;
    parse(xml.substr(0, rootIsWithin), root, budget);
    if (root.uri == flatPackageUri)
        return textOfFlatPackage(xml, budget);

    Relationships none;
    WordXmlText text(none);
    parse(xml, text, budget);
    if (text.root().empty())
        return std::nullopt;
    return text.takeText();
}

} // namespace quilvane
