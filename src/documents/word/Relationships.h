// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/word/XmlReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// What one part of a document package refers to, as far as it concerns text: handler of a .rels part
/// (ECMA-376, part 2, section 9.3).
class Relationships : public XmlHandler {
public:
    enum class Kind {
        MainDocument,
        Story, // belongs to the document wherever it is referred to: headers, footers, notes, comments
        Figure, // text where it is referred to: charts and diagrams
        EmbeddedDocument,
        Link, // to somewhere outside of the package
    };
    struct Entry {
        Kind kind;
        std::string id;
        std::string target; // as written
        bool isUsed = false; // set by a reader that follows each entry only once
    };

    /// `source` is the name of the part whose relationships these are; empty for those of the package.
    explicit Relationships(std::string_view source = {});

    /// The name of the part that holds the relationships of `source`.
    static std::string partFor(std::string_view source);

    /// In the order of the file; at most 50,000.
    const std::vector<Entry>& entries() const { return m_entries; }

    /// Null if there is none with that id, or none that concerns text. To be called after the part was read.
    Entry* find(std::string_view id);

    /// The name of the part that an entry which is no link leads to, as a ZipArchive compares names; empty if
    /// it is longer than an archive's names are.
    std::string partOf(const Entry& entry) const;

    void startElement(
        std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes) override;
    void endElement() override { }
    void characters(std::string_view) override { }

private:
    std::string m_folder; // of the source, with its '/'
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_byId; // indices of the entries, sorted when first needed
};

} // namespace quilvane
