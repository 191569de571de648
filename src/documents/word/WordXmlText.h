// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/word/Relationships.h"
#include "documents/word/TextCollector.h"
#include "documents/word/XmlReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// Takes the text out of one XML part of a Word document: of its body, a header, notes, comments, a chart, a
/// diagram, or of all of them where they are one file (Word 2003 XML).
///
/// Handler of one readXml(); takeText() when that has finished. Words whose letters are formatted differently
/// come in one piece; paragraphs, cells and breaks stay apart. What stands beside the text of a paragraph
/// (text boxes, field codes, the targets of mail links) follows it on lines of its own, since its place may
/// be inside a word.
class WordXmlText : public XmlHandler {
public:
    /// `relationships` are the part's; it must outlive this.
    explicit WordXmlText(Relationships& relationships);

    /// The name of the root element if it is one of a word processor's, without the collection of building
    /// blocks (the glossary), whose text is not read; empty for any other.
    const std::string& root() const { return m_root; }

    /// UTF-8.
    std::string takeText() { return m_text.take(); }

    /// The figures and embedded documents that the text refers to, in that order, each once.
    const std::vector<const Relationships::Entry*>& references() const { return m_references; }

    void startElement(
        std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes) override;
    void endElement() override;
    void characters(std::string_view text) override;

    /// What an element means for the text.
    enum class Role : std::uint8_t;
    /// Which namespace a name belongs to, whatever edition of the format it is from.
    enum class Vocabulary : std::uint8_t;

private:
    /// An open aside (see TextCollector), or a field that has not ended.
    struct Beside {
        std::size_t owner; // index in m_open of its element; without meaning for a field
        bool isField;
        bool isInCode; // of a field: in its code, and not yet in its result
    };

    bool isSkipping() const { return m_skipped.has_value(); }
    Role parentRole() const;
    void skipThis();
    void skipNearest(Role role);

    void beginBeside();
    void endBeside();
    void endParagraph();

    void beginDeletion();
    void beginAnnotation(std::span<const XmlAttribute> attributes);
    void markField(std::string_view kind);
    bool isInFieldCode() const;
    void putSymbol(std::string_view code);
    void follow(std::span<const XmlAttribute> attributes);

    Relationships& m_relationships;
    std::string m_root;
    std::vector<Role> m_open; // from the root to the current element
    std::optional<std::size_t> m_skipped; // index in m_open of the element that is passed over
    std::vector<bool> m_isMarkDeleted; // of each open paragraph: whether it goes on in the next one
    std::vector<Beside> m_beside;
    TextCollector m_text;
    std::size_t m_outputSize = 0; // how much text and how many references came out so far
    std::vector<std::size_t> m_outputBefore; // the same at the beginning of each open set of alternatives
    std::vector<const Relationships::Entry*> m_references;
    std::string_view m_lastUri; // most elements are of the same namespace as the one before
    Vocabulary m_lastVocabulary{};
};

} // namespace quilvane
