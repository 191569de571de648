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
                readWithReferences(ofPackage.partOf(entry));
        }
        if (!m_isWord || m_archive.isDamaged())
            readPartsByName();
        if (!m_isWord || (m_archive.isDamaged() && m_text.empty()))
            return std::nullopt;
        return std::move(m_text);
    }

private:
    /// For a package whose relationships are lost: finds the parts by the names that word processors use.
    void readPartsByName()
    {
        constexpr std::string_view folder = "word/";
        for (const ZipArchive::Entry& entry : m_archive.entries()) {
            const std::string name = ZipArchive::normalised(entry.name);
            if (name.starts_with(folder) && name.ends_with(".xml")
                && name.find('/', folder.size()) == std::string_view::npos)
                readWithReferences(name);
        }
    }

    /// Null if there is none, or it was taken before.
    const ZipArchive::Entry* taken(const std::string& name)
    {
        const ZipArchive::Entry* entry = m_archive.find(name);
        return entry && m_taken.insert(entry).second ? entry : nullptr;
    }

    void readWithReferences(const std::string& first)
    {
        std::vector<const ZipArchive::Entry*> waiting{ taken(first) };
        for (std::size_t i = 0; i < waiting.size(); ++i)
            if (waiting[i])
                read(*waiting[i], waiting);
    }

    /// Reads one part. Adds to `waiting` the parts that it refers to.
    void read(const ZipArchive::Entry& entry, std::vector<const ZipArchive::Entry*>& waiting)
    {
        Relationships relationships = relationshipsOf(ZipArchive::normalised(entry.name));
        WordXmlText partText(relationships);
        readXml(unpacked(entry), partText);
        m_isWord = m_isWord || !partText.root().empty();
        m_text += partText.takeText();
        for (const Relationships::Entry* reference : partText.references()) {
            if (reference->kind == Kind::EmbeddedDocument)
                readEmbedded(relationships.partOf(*reference));
            else
                waiting.push_back(taken(relationships.partOf(*reference)));
        }
        for (const Relationships::Entry& relationship : relationships.entries()) {
            if (relationship.kind == Kind::Story)
                waiting.push_back(taken(relationships.partOf(relationship)));
        }
    }

    void readEmbedded(const std::string& name)
    {
        const ZipArchive::Entry* entry = taken(name);
        if (!entry)
            return;
        const std::string bytes = unpacked(*entry);
        const bool isPlainText = name.ends_with(".txt");
        m_text += isPlainText ? bytes : documentText(bytes, m_budget).value_or(std::string());
        m_text += '\n';
    }

    Relationships relationshipsOf(std::string_view source)
    {
        Relationships relationships(source);
        if (const ZipArchive::Entry* entry = m_archive.find(Relationships::partFor(source)))
            readXml(unpacked(*entry), relationships);
        m_budget.spend(relationships.entries().size() * ReadingBudget::costOfRelationship);
        return relationships;
    }

    /// As much of it as the budget has left.
    std::string unpacked(const ZipArchive::Entry& entry)
    {
        std::string bytes = ZipArchive::unpacked(entry, std::min(m_budget.bytes, ReadingBudget::partBytes));
        m_budget.spend(bytes.size() + ReadingBudget::costOfPart);
        return bytes;
    }

    ZipArchive m_archive;
    ReadingBudget& m_budget;
    std::set<const ZipArchive::Entry*> m_taken;
    std::string m_text;
    bool m_isWord = false;
};

constexpr std::string_view flatPackageUri = "http://schemas.microsoft.com/office/2006/xmlPackage";

/// Takes a flat package apart: passes the XML of each part to the handler that `handlerOf` returns for it, if
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
    int m_depth = 0; // of elements in the XML of a part, the surrounding one included
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
            if (entry.kind == Kind::Link || entry.kind == Kind::EmbeddedDocument)
                continue;
            const auto [part, isNew] = found.insert(source->second.partOf(entry));
            if (isNew)
                waiting.push_back(*part);
        }
    }
    return found;
}

/// The part whose relationships the part of this name holds; nothing for a part that holds none.
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

/// Reads the package twice, since the relationships of a part may come after the part.
std::string textOfFlatPackage(std::string_view xml, ReadingBudget& budget)
{
    RelationshipsByPart relationships;
    FlatPackageSplitter findRelationships([&](const std::string& part) -> XmlHandler* {
        const std::optional<std::string> source = sourceOf(part);
        if (!source || budget.bytes == 0)
            return nullptr;
        budget.spend(ReadingBudget::costOfPart);
        return &relationships.try_emplace(*source, *source).first->second;
    });
    readXml(xml, findRelationships);
    for (const auto& [part, ofPart] : relationships)
        budget.spend(ofPart.entries().size() * ReadingBudget::costOfRelationship);

    const std::set<std::string> wanted = textParts(relationships);
    std::map<std::string, WordXmlText> texts;
    FlatPackageSplitter findText([&](const std::string& part) -> XmlHandler* {
        if (!wanted.contains(part) || texts.contains(part) || budget.bytes == 0)
            return nullptr;
        budget.spend(ReadingBudget::costOfPart);
        Relationships& ofPart = relationships.try_emplace(part, part).first->second;
        return &texts.try_emplace(part, ofPart).first->second;
    });
    readXml(xml, findText);

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
    xml = xml.substr(0, budget.bytes);
    constexpr std::size_t rootIsWithin = std::size_t(1) << 16;
    RootProbe root;
    readXml(xml.substr(0, rootIsWithin), root);
    if (root.uri == flatPackageUri)
        return textOfFlatPackage(xml, budget);

    // Most other XML is no document, which its beginning shows.
    for (const std::string_view part : { xml.substr(0, rootIsWithin), xml }) {
        Relationships none;
        WordXmlText text(none);
        readXml(part, text);
        if (text.root().empty())
            return std::nullopt;
        if (part.size() == xml.size())
            return text.takeText();
    }
    return std::nullopt;
}

} // namespace quilvane
