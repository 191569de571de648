// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/TextCollector.h"

#include "documents/word/fieldText.h"

#include <utility>

namespace quilvane {

namespace {

constexpr char32_t dropped = 0;

/// The plain form of a character that Unicode has several forms of, as far as they occur in addresses.
char32_t plainForm(char32_t character)
{
    switch (character) {
    case 0x00A0: // no-break space
    case 0x202F: // the narrow one
        return ' ';
    case 0x2010: // hyphen
    case 0x2011: // non-breaking hyphen
        return '-';
    case 0x00AD: // soft hyphen
    case 0x200B: // zero-width space, non-joiner, joiner
    case 0x200C:
    case 0x200D:
    case 0x2060: // word joiner
    case 0xFEFF: // byte order mark
        return dropped;
    default:
        return character;
    }
}

} // namespace

void TextCollector::put(char32_t character)
{
    constexpr char32_t firstBeyondControls = 0xA0;
    if (isPlain(character) || character == '\t') {
        append(static_cast<char>(character));
    } else if (character >= firstBeyondControls) {
        const char32_t plain = plainForm(character);
        if (plain != dropped)
            appendUtf8(plain);
    }
}

void TextCollector::putPlain(std::string_view characters)
{
    characters = characters.substr(0, mostText - m_size);
    m_open.back() += characters;
    m_size += characters.size();
}

void TextCollector::putUnit(char16_t unit)
{
    constexpr char32_t firstBeyond = 0x10000;
    const char16_t high = std::exchange(m_highSurrogate, char16_t(0));
    if ((unit & 0xFC00) == 0xD800)
        m_highSurrogate = unit;
    else if ((unit & 0xFC00) != 0xDC00)
        put(unit);
    else if (high != 0)
        put(firstBeyond + ((char32_t(high) & 0x3FF) << 10) + (unit & 0x3FF));
}

void TextCollector::endLine()
{
    append('\n');
}

void TextCollector::endParagraph()
{
    append('\n');
    if (m_open.size() == 1) {
        m_open.front() += m_aside;
        m_aside.clear();
    }
}

void TextCollector::openAside()
{
    m_open.emplace_back();
}

void TextCollector::closeAside()
{
    setAside(m_open.back());
    m_open.pop_back();
}

void TextCollector::closeFieldCode()
{
    setAside(fieldText(m_open.back()));
    m_open.pop_back();
}

std::string TextCollector::take()
{
    std::string text = std::move(m_open.front());
    std::string asides = std::move(m_aside);
    for (std::size_t i = 1; i < m_open.size(); ++i)
        asides += m_open[i] + '\n';
    if (!asides.empty())
        text += '\n' + asides;
    return text;
}

void TextCollector::append(char byte)
{
    if (isFull())
        return;
    m_open.back() += byte;
    ++m_size;
}

void TextCollector::appendUtf8(char32_t character)
{
    const auto appendTail
        = [this, character](int shift) { append(static_cast<char>(0x80 | (character >> shift & 0x3F))); };
    if (character < 0x80) {
        append(static_cast<char>(character));
    } else if (character < 0x800) {
        append(static_cast<char>(0xC0 | character >> 6));
        appendTail(0);
    } else if (character < 0x10000) {
        append(static_cast<char>(0xE0 | character >> 12));
        appendTail(6);
        appendTail(0);
    } else {
        append(static_cast<char>(0xF0 | character >> 18));
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

void TextCollector::setAside(const std::string& text)
{
    if (!text.empty())
        m_aside += text + '\n';
}

} // namespace quilvane
