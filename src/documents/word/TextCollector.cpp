// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/TextCollector.h"

#include "documents/word/fieldText.h"
#include "text/addressCharacters.h"
#include "text/mailLink.h"
#include "text/utf8.h"

#include <algorithm>
#include <utility>

namespace quilvane {

void TextCollector::put(char32_t character)
{
    constexpr char32_t firstBeyondControls = 0xA0;
    if (isPlain(character) || character == '\t') {
        append(static_cast<char>(character));
    } else if (character >= firstBeyondControls && !isFull()) {
        std::string& text = m_open.back().text;
        const std::size_t before = text.size();
        if (const std::optional<std::string_view> plain = plainForm(character))
            text += *plain;
        else
            appendUtf8(text, character);
        m_size += text.size() - before;
    }
}

void TextCollector::putPlain(std::string_view characters)
{
    characters = characters.substr(0, mostText - std::min(m_size, mostText));
    m_open.back().text += characters;
    m_size += characters.size();
}

void TextCollector::putText(std::string_view text)
{
    while (!text.empty()) {
        const auto* const plainEnd = std::find_if_not(
            text.begin(), text.end(), [](char c) { return isPlain(static_cast<unsigned char>(c)); });
        const auto count = static_cast<std::size_t>(plainEnd - text.begin());
        putPlain(text.substr(0, count));
        text.remove_prefix(count);
        if (text.empty())
            return;
        const Utf8Character character = firstCharacter(text);
        put(character.code == '\n' || character.code == '\r' ? ' ' : character.code);
        text.remove_prefix(character.length);
    }
}

void TextCollector::putUnit(char16_t unit)
{
    const char16_t high = std::exchange(m_highSurrogate, char16_t(0));
    if (isHighSurrogate(unit))
        m_highSurrogate = unit;
    else if (!isLowSurrogate(unit))
        put(unit);
    else if (high != 0)
        put(characterOfPair(high, unit));
}

void TextCollector::endLine()
{
    append('\n');
}

void TextCollector::endParagraph()
{
    append('\n');
    if (m_open.size() == 1) {
        dropTails(m_open.front());
        m_open.front().text += m_aside;
        m_aside.clear();
    }
}

void TextCollector::openAside()
{
    m_open.emplace_back();
}

void TextCollector::closeAside()
{
    dropTails(m_open.back());
    appendAside(m_open.back().text);
    m_open.pop_back();
}

void TextCollector::closeFieldCode()
{
    dropTails(m_open.back());
    const FieldText field = fieldText(m_open.back().text);
    m_open.pop_back();
    if (field.isMailTarget)
        putMailTarget(field.text);
    else
        appendAside(field.text);
}

void TextCollector::putAside(std::string_view line)
{
    openAside();
    putText(line);
    closeAside();
}

void TextCollector::putMailTarget(std::string_view target)
{
    const std::size_t begin = m_aside.size();
    putAside(target);
    const std::size_t end = m_aside.size();
    OpenText& open = m_open.back();
    if (begin == end || isFull() || open.text.empty() || open.text.back() <= ' ')
        return;
    open.links.push_back({ open.text.size(), begin, end - begin - 1 });
    m_size += sizeof(Link); // they take memory, as text does
}

std::string TextCollector::take()
{
    for (OpenText& open : m_open)
        dropTails(open);
    std::string text = std::move(m_open.front().text);
    std::string asides = std::move(m_aside);
    for (std::size_t i = 1; i < m_open.size(); ++i)
        asides += m_open[i].text + '\n';
    if (!asides.empty())
        text += '\n' + asides;
    return text;
}

void TextCollector::append(char byte)
{
    if (isFull())
        return;
    m_open.back().text += byte;
    ++m_size;
}

void TextCollector::appendAside(std::string_view text)
{
    if (!text.empty())
        m_aside.append(text) += '\n';
}

/// Makes empty lines of the targets that are only tails of addresses in the text.
void TextCollector::dropTails(OpenText& open)
{
    for (const Link& link : open.links) {
        if (isTailOfAddress(std::string_view(m_aside).substr(link.begin, link.size), open.text, link.at))
            std::fill_n(m_aside.begin() + static_cast<std::ptrdiff_t>(link.begin), link.size, '\n');
    }
    open.links.clear();
}

} // namespace quilvane
