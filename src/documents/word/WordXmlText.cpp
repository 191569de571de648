// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/WordXmlText.h"

#include "text/mailLink.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <tuple>
#include <utility>

namespace quilvane {

enum class WordXmlText::Role : std::uint8_t {
    None,
    Text,
    Line, // text that is a line
    FieldCode,
    Paragraph,
    Row,
    Cell,
    Run,
    RunProperties,
    RowProperties,
    Tab,
    PositionedTab,
    Break,
    NoBreakHyphen,
    Symbol,
    Deletion,
    CellDeletion,
    Aside, // a text beside the paragraph that it is in
    FieldMark,
    SimpleField,
    OldLink,
    Alternatives,
    Alternative,
    Annotation,
    WordArt,
};

enum class WordXmlText::Vocabulary : std::uint8_t {
    Unknown,
    Word,
    Drawing,
    Chart,
    NewChart,
    Mathematics,
    Reference,
    Compatibility,
    Vml,
    Annotations,
};

namespace {

using Role = WordXmlText::Role;
using Vocabulary = WordXmlText::Vocabulary;

/// The namespaces: of ECMA-376 (transitional), of ISO/IEC 29500 (strict), and those beside the standard.
Vocabulary vocabularyOf(std::string_view uri)
{
    struct Row {
        std::string_view uri;
        Vocabulary vocabulary;
    };
    static constexpr Row rows[] = {
        { "http://schemas.openxmlformats.org/wordprocessingml/2006/main", Vocabulary::Word },
        { "http://purl.oclc.org/ooxml/wordprocessingml/main", Vocabulary::Word },
        { "http://schemas.microsoft.com/office/word/2003/wordml", Vocabulary::Word },
        { "http://schemas.openxmlformats.org/drawingml/2006/main", Vocabulary::Drawing },
        { "http://purl.oclc.org/ooxml/drawingml/main", Vocabulary::Drawing },
        { "http://schemas.openxmlformats.org/drawingml/2006/chart", Vocabulary::Chart },
        { "http://purl.oclc.org/ooxml/drawingml/chart", Vocabulary::Chart },
        { "http://schemas.microsoft.com/office/drawing/2014/chartex", Vocabulary::NewChart },
        { "http://schemas.openxmlformats.org/officeDocument/2006/math", Vocabulary::Mathematics },
        { "http://purl.oclc.org/ooxml/officeDocument/math", Vocabulary::Mathematics },
        { "http://schemas.openxmlformats.org/officeDocument/2006/relationships", Vocabulary::Reference },
        { "http://purl.oclc.org/ooxml/officeDocument/relationships", Vocabulary::Reference },
        { "http://schemas.openxmlformats.org/markup-compatibility/2006", Vocabulary::Compatibility },
        { "urn:schemas-microsoft-com:vml", Vocabulary::Vml },
        { "http://schemas.microsoft.com/aml/2001/core", Vocabulary::Annotations },
    };
    const auto* found
        = std::find_if(std::begin(rows), std::end(rows), [uri](const Row& row) { return row.uri == uri; });
    return found == std::end(rows) ? Vocabulary::Unknown : found->vocabulary;
}

Role roleOf(Vocabulary vocabulary, std::string_view name)
{
    struct Row {
        std::string_view name;
        Vocabulary vocabulary;
        Role role;

        constexpr auto key() const { return std::tie(vocabulary, name); }
    };
    // Sorted by vocabulary, then by name.
    static constexpr Row rows[] = {
        { "br", Vocabulary::Word, Role::Break },
        { "cellDel", Vocabulary::Word, Role::CellDeletion },
        { "cr", Vocabulary::Word, Role::Break },
        { "del", Vocabulary::Word, Role::Deletion },
        { "endnote", Vocabulary::Word, Role::Aside },
        { "fldChar", Vocabulary::Word, Role::FieldMark },
        { "fldSimple", Vocabulary::Word, Role::SimpleField },
        { "footnote", Vocabulary::Word, Role::Aside },
        { "ftr", Vocabulary::Word, Role::Aside },
        { "hdr", Vocabulary::Word, Role::Aside },
        { "hlink", Vocabulary::Word, Role::OldLink },
        { "instrText", Vocabulary::Word, Role::FieldCode },
        { "moveFrom", Vocabulary::Word, Role::Deletion },
        { "noBreakHyphen", Vocabulary::Word, Role::NoBreakHyphen },
        { "p", Vocabulary::Word, Role::Paragraph },
        { "ptab", Vocabulary::Word, Role::PositionedTab },
        { "r", Vocabulary::Word, Role::Run },
        { "rPr", Vocabulary::Word, Role::RunProperties },
        { "rt", Vocabulary::Word, Role::Aside },
        { "sym", Vocabulary::Word, Role::Symbol },
        { "t", Vocabulary::Word, Role::Text },
        { "tab", Vocabulary::Word, Role::Tab },
        { "tc", Vocabulary::Word, Role::Cell },
        { "tr", Vocabulary::Word, Role::Row },
        { "trPr", Vocabulary::Word, Role::RowProperties },
        { "txbxContent", Vocabulary::Word, Role::Aside },
        { "br", Vocabulary::Drawing, Role::Break },
        { "p", Vocabulary::Drawing, Role::Paragraph },
        { "t", Vocabulary::Drawing, Role::Text },
        { "tc", Vocabulary::Drawing, Role::Cell },
        { "txBody", Vocabulary::Drawing, Role::Aside },
        { "v", Vocabulary::Chart, Role::Line },
        { "pt", Vocabulary::NewChart, Role::Line },
        { "v", Vocabulary::NewChart, Role::Line },
        { "t", Vocabulary::Mathematics, Role::Text },
        { "AlternateContent", Vocabulary::Compatibility, Role::Alternatives },
        { "Choice", Vocabulary::Compatibility, Role::Alternative },
        { "Fallback", Vocabulary::Compatibility, Role::Alternative },
        { "textpath", Vocabulary::Vml, Role::WordArt },
        { "annotation", Vocabulary::Annotations, Role::Annotation },
    };
    static_assert(std::is_sorted(std::begin(rows), std::end(rows),
        [](const Row& left, const Row& right) { return left.key() < right.key(); }));
    const auto key = std::tie(vocabulary, name);
    const auto* found = std::lower_bound(std::begin(rows), std::end(rows), key,
        [](const Row& row, const auto& wanted) { return row.key() < wanted; });
    return found != std::end(rows) && found->key() == key ? found->role : Role::None;
}

/// By its name alone: where the format gives an attribute a namespace, some writers leave it out. Empty if
/// there is none.
std::string_view valueOf(std::span<const XmlAttribute> attributes, std::string_view name)
{
    for (const XmlAttribute& attribute : attributes) {
        if (attribute.name == name)
            return attribute.value;
    }
    return {};
}

} // namespace

WordXmlText::WordXmlText(Relationships& relationships)
    : m_relationships(relationships)
{
}

void WordXmlText::startElement(
    std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes)
{
    if (uri.data() != m_lastUri.data()) {
        m_lastUri = uri;
        m_lastVocabulary = vocabularyOf(uri);
    }
    const Vocabulary vocabulary = m_lastVocabulary;
    const Role role = roleOf(vocabulary, name);
    m_open.push_back(role);
    if (m_open.size() == 1) {
        if (vocabulary == Vocabulary::Word && name == "glossaryDocument")
            skipThis();
        else if (vocabulary == Vocabulary::Word)
            m_root = name;
    }
    if (isSkipping())
        return;

    follow(attributes);
    switch (role) {
    case Role::Paragraph:
        m_isMarkDeleted.push_back(false);
        break;
    case Role::Tab:
        if (parentRole() == Role::Run) // elsewhere it is a tab stop
            m_text.put('\t');
        break;
    case Role::PositionedTab:
        m_text.put('\t');
        break;
    case Role::Break:
        m_text.endLine();
        break;
    case Role::NoBreakHyphen:
        m_text.put('-');
        break;
    case Role::Symbol:
        putSymbol(valueOf(attributes, "char"));
        break;
    case Role::Deletion:
        beginDeletion();
        break;
    case Role::CellDeletion:
        skipNearest(Role::Cell);
        break;
    case Role::Aside:
        beginBeside();
        break;
    case Role::FieldMark:
        markField(valueOf(attributes, "fldCharType"));
        break;
    case Role::SimpleField:
        m_text.openAside();
        m_text.putText(valueOf(attributes, "instr"));
        m_text.closeFieldCode();
        break;
    case Role::OldLink:
        m_text.putMailTarget(mailTarget(valueOf(attributes, "dest")));
        break;
    case Role::Alternatives:
        m_outputBefore.push_back(m_outputSize);
        break;
    case Role::Alternative:
        if (!m_outputBefore.empty() && m_outputSize > m_outputBefore.back())
            skipThis();
        break;
    case Role::Annotation:
        beginAnnotation(attributes);
        break;
    case Role::WordArt:
        m_outputSize += valueOf(attributes, "string").size();
        m_text.putAside(valueOf(attributes, "string"));
        break;
    default:
        break;
    }
    if (vocabulary == Vocabulary::Vml)
        m_text.putMailTarget(mailTarget(valueOf(attributes, "href")));
}

void WordXmlText::endElement()
{
    const Role role = m_open.back();
    m_open.pop_back();
    if (isSkipping()) {
        if (*m_skipped == m_open.size())
            m_skipped.reset();
        else
            return;
    }
    switch (role) {
    case Role::Paragraph:
        endParagraph();
        break;
    case Role::Line:
        m_text.endLine();
        break;
    case Role::Aside:
    case Role::Annotation:
        endBeside();
        break;
    case Role::Alternatives:
        m_outputBefore.pop_back();
        break;
    default:
        break;
    }
}

void WordXmlText::characters(std::string_view text)
{
    if (isSkipping() || m_open.empty())
        return;
    switch (m_open.back()) {
    case Role::Text:
    case Role::Line:
        m_outputSize += text.size();
        m_text.putText(text);
        break;
    case Role::FieldCode:
        if (isInFieldCode())
            m_text.putText(text);
        break;
    default:
        break; // between the elements
    }
}

WordXmlText::Role WordXmlText::parentRole() const
{
    return m_open.size() < 2 ? Role::None : m_open[m_open.size() - 2];
}

void WordXmlText::skipThis()
{
    m_skipped = m_open.size() - 1;
}

void WordXmlText::skipNearest(Role role)
{
    const auto found = std::find(m_open.rbegin(), m_open.rend(), role);
    if (found != m_open.rend())
        m_skipped = static_cast<std::size_t>(m_open.rend() - found) - 1;
}

/// Outside of paragraphs the text has no word to be torn apart, and goes on in its order.
void WordXmlText::beginBeside()
{
    if (m_isMarkDeleted.empty())
        return;
    m_beside.push_back({ m_open.size() - 1, false, false });
    m_text.openAside();
}

/// Closes the aside that the element which has just ended had opened, if any, and the fields in it that have
/// no end.
void WordXmlText::endBeside()
{
    const auto begun = std::find_if(m_beside.rbegin(), m_beside.rend(),
        [this](const Beside& beside) { return !beside.isField && beside.owner == m_open.size(); });
    if (begun == m_beside.rend())
        return;
    const auto left = static_cast<std::size_t>(m_beside.rend() - begun) - 1;
    for (; m_beside.size() > left; m_beside.pop_back()) {
        if (m_beside.back().isInCode)
            m_text.closeFieldCode();
        else if (!m_beside.back().isField)
            m_text.closeAside();
    }
}

void WordXmlText::endParagraph()
{
    if (!m_isMarkDeleted.back())
        m_text.endParagraph();
    m_isMarkDeleted.pop_back();
}

void WordXmlText::beginDeletion()
{
    if (parentRole() == Role::RunProperties && !m_isMarkDeleted.empty())
        m_isMarkDeleted.back() = true;
    else if (parentRole() == Role::RowProperties)
        skipNearest(Role::Row);
    else
        skipThis();
}

/// Word 2003 XML: changes and comments are in the text and differ by their type.
void WordXmlText::beginAnnotation(std::span<const XmlAttribute> attributes)
{
    const std::string_view type = valueOf(attributes, "type");
    if (type.starts_with("Word.Deletion"))
        beginDeletion();
    else if (type == "Word.Comment")
        beginBeside();
}

void WordXmlText::markField(std::string_view kind)
{
    constexpr std::size_t mostOpen = 1000;
    if (kind == "begin" && m_beside.size() < mostOpen) {
        m_beside.push_back({ 0, true, true });
        m_text.openAside();
        return;
    }
    if (m_beside.empty() || !m_beside.back().isField)
        return;
    if (std::exchange(m_beside.back().isInCode, false))
        m_text.closeFieldCode();
    if (kind == "end")
        m_beside.pop_back();
}

bool WordXmlText::isInFieldCode() const
{
    return !m_beside.empty() && m_beside.back().isInCode;
}

/// `code`: the character's number in its font, hexadecimal. In fonts of pictures it lies in the private area
/// of Unicode, and stays there: it is no letter, and parts the words beside it.
void WordXmlText::putSymbol(std::string_view code)
{
    std::uint16_t number = 0;
    std::from_chars(code.data(), code.data() + code.size(), number, 16);
    const bool isSurrogate = number >= 0xD800 && number < 0xE000;
    if (!isSurrogate)
        m_text.put(number);
}

/// Each relationship is followed once, however often it is named.
void WordXmlText::follow(std::span<const XmlAttribute> attributes)
{
    for (const XmlAttribute& attribute : attributes) {
        if (attribute.uri.empty() || vocabularyOf(attribute.uri) != Vocabulary::Reference)
            continue;
        Relationships::Entry* entry = m_relationships.find(attribute.value);
        if (!entry || std::exchange(entry->isUsed, true))
            continue;
        if (entry->kind == Relationships::Kind::Link) {
            m_text.putMailTarget(mailTarget(entry->target));
        } else if (entry->kind != Relationships::Kind::Story) {
            ++m_outputSize;
            m_references.push_back(entry);
        }
    }
}

} // namespace quilvane
