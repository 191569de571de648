// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/Relationships.h"

#include "documents/word/ZipArchive.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <optional>

namespace quilvane {

namespace {

/// By the last segment of the type's URI, since the part before it differs between editions of the format.
std::optional<Relationships::Kind> kindOf(std::string_view type)
{
    using Kind = Relationships::Kind;
    struct Row {
        std::string_view name;
        Kind kind;
    };
    static constexpr Row rows[] = {
        { "officeDocument", Kind::MainDocument },
        { "header", Kind::Story },
        { "footer", Kind::Story },
        { "footnotes", Kind::Story },
        { "endnotes", Kind::Story },
        { "comments", Kind::Story },
        { "chart", Kind::Figure },
        { "chartEx", Kind::Figure },
        { "chartUserShapes", Kind::Figure },
        { "diagramData", Kind::Figure },
        { "aFChunk", Kind::EmbeddedDocument },
        { "hyperlink", Kind::Link },
    };
    const std::string_view name = type.substr(type.rfind('/') + 1);
    const auto* found
        = std::find_if(std::begin(rows), std::end(rows), [name](const Row& row) { return row.name == name; });
    return found == std::end(rows) ? std::nullopt : std::optional(found->kind);
}

/// With its '/'; empty if the part lies in no folder.
std::string_view folderOf(std::string_view part)
{
    return part.substr(0, part.rfind('/') + 1);
}

} // namespace

Relationships::Relationships(std::string_view source)
    : m_folder(folderOf(source))
{
}

std::string Relationships::partFor(std::string_view source)
{
    const std::string_view folder = folderOf(source);
    return std::string(folder) + "_rels/" + std::string(source.substr(folder.size())) + ".rels";
}

Relationships::Entry* Relationships::find(std::string_view id)
{
    if (m_byId.size() != m_entries.size()) {
        m_byId.resize(m_entries.size());
        std::iota(m_byId.begin(), m_byId.end(), 0U);
        std::stable_sort(m_byId.begin(), m_byId.end(), [this](std::uint32_t left, std::uint32_t right) {
            return m_entries[left].id < m_entries[right].id;
        });
    }
    const auto found = std::lower_bound(m_byId.begin(), m_byId.end(), id,
        [this](std::uint32_t index, std::string_view wanted) { return m_entries[index].id < wanted; });
    return found == m_byId.end() || m_entries[*found].id != id ? nullptr : &m_entries[*found];
}

void Relationships::startElement(
    std::string_view, std::string_view name, std::span<const XmlAttribute> attributes)
{
    constexpr std::size_t mostEntries = 50'000;
    if (name != "Relationship" || m_entries.size() == mostEntries)
        return;
    std::string_view id, type, target;
    bool isExternal = false;
    for (const XmlAttribute& attribute : attributes) {
        if (attribute.name == "Id")
            id = attribute.value;
        else if (attribute.name == "Type")
            type = attribute.value;
        else if (attribute.name == "Target")
            target = attribute.value;
        else if (attribute.name == "TargetMode")
            isExternal = attribute.value == "External";
    }
    const std::optional<Kind> kind = kindOf(type);
    if (!kind || (isExternal && *kind != Kind::Link))
        return;
    m_entries.push_back({ *kind, std::string(id), std::string(target) });
}

/// Resolved against the source's folder (RFC 3986, section 5.2.4).
std::string Relationships::partOf(const Entry& entry) const
{
    const bool isAbsolute = entry.target.starts_with('/') || entry.target.starts_with('\\');
    if (entry.target.size() + (isAbsolute ? 0 : m_folder.size()) > ZipArchive::longestName)
        return {};
    const std::string path = ZipArchive::normalised(isAbsolute ? entry.target : m_folder + entry.target);
    std::string result;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view segment = std::string_view(path).substr(at, end - at);
        if (segment == "..") {
            result.resize(result.find_last_of('/') == std::string::npos ? 0 : result.find_last_of('/'));
        } else if (segment != ".") {
            if (!result.empty())
                result += '/';
            result += segment;
        }
        at = end + 1;
    }
    return result;
}

} // namespace quilvane
