// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/TextInputStream.h"

#include "framework/files/FolderItem.h"
#include "text/WideTextDecoder.h"

#include <utility>

namespace quilvane {

namespace {

constexpr std::size_t bufferSize = 4096; // bytes
/// A line of this length makes it likely that the file has no line ends at all.
constexpr std::size_t longLine = 4096 * bufferSize;

} // namespace

Ref<TextInputStream> TextInputStream::Open(const FolderItem& item)
{
    std::string whyNot;
    InputFile file = InputFile::open(item, InputFile::NotRegular::Refused, whyNot);
    if (!file.isOpen())
        return Ref<TextInputStream>::nil(std::move(whyNot));
    return Ref<TextInputStream>::make(std::move(file));
}

TextInputStream::TextInputStream(InputFile file)
    : m_file(std::move(file))
{
}

TextInputStream::~TextInputStream() = default;

std::string TextInputStream::ReadAll()
{
    m_file.requireMemoryForRest();
    std::string text;
    while (m_taken < m_buffer.size() || fillBuffer()) {
        text.append(m_buffer, m_taken);
        m_taken = m_buffer.size();
    }
    return text;
}

std::string TextInputStream::ReadLine()
{
    std::string line;
    while (m_taken < m_buffer.size() || fillBuffer()) {
        const std::size_t end = m_buffer.find_first_of("\r\n", m_taken);
        const bool wasLong = line.size() >= longLine;
        line.append(m_buffer, m_taken, end - m_taken);
        if (end == std::string::npos) {
            m_taken = m_buffer.size();
            if (!wasLong && line.size() >= longLine)
                m_file.requireMemoryForRest();
            continue;
        }
        m_taken = end + 1;
        if (m_buffer[end] == '\r' && (m_taken < m_buffer.size() || fillBuffer()) && m_buffer[m_taken] == '\n')
            ++m_taken;
        break;
    }
    return line;
}

std::size_t TextInputStream::Read(std::span<char> into)
{
    constexpr std::size_t longestMark = 4;
    if (m_taken == m_buffer.size() && !m_decoder && (m_hasBegun || into.size() >= longestMark)) {
        const std::size_t count = m_file.read(into);
        const std::string_view bytes(into.data(), count);
        if (!beginsDecoding(bytes))
            return count;
        m_buffer.clear();
        m_taken = 0;
        m_decoder->decode(bytes, m_buffer);
    }
    if (m_taken == m_buffer.size() && !fillBuffer())
        return 0;
    const std::size_t count = m_buffer.copy(into.data(), into.size(), m_taken);
    m_taken += count;
    return count;
}

void TextInputStream::Close()
{
    m_file.close();
    m_buffer.clear();
    m_taken = 0;
}

/// Replaces the buffer, all of which has been returned, by the next text. False at the end of the file.
bool TextInputStream::fillBuffer()
{
    m_buffer.clear();
    m_taken = 0;
    std::string bytes;
    do {
        bytes.resize(bufferSize);
        bytes.resize(m_file.read(bytes));
        beginsDecoding(bytes);
        if (!m_decoder) {
            m_buffer = std::move(bytes);
            return !m_buffer.empty();
        }
        if (bytes.empty())
            m_decoder->finish(m_buffer);
        else
            m_decoder->decode(bytes, m_buffer); // to nothing if they are only a byte order mark
    } while (m_buffer.empty() && !bytes.empty());
    return !m_buffer.empty();
}

/// Looks for a mark in the first bytes of the file; `bytes` are what was read last. True if it finds one.
bool TextInputStream::beginsDecoding(std::string_view bytes)
{
    if (std::exchange(m_hasBegun, true))
        return false;
    if (const auto decoder = WideTextDecoder::forBeginOf(bytes))
        m_decoder = std::make_unique<WideTextDecoder>(*decoder);
    return m_decoder != nullptr;
}

} // namespace quilvane
