// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/TextPieces.h"

#include "scan/byteClasses.h"

#include <cstring>

namespace quilvane {

namespace {

bool mayCutAfter(char byte)
{
    return byte != '@' && !isOf(byte, ByteClass::localPart);
}

} // namespace

TextPieces::TextPieces(std::size_t pieceSize)
    : m_capacity(pieceSize)
    , m_buffer(std::make_unique_for_overwrite<char[]>(pieceSize))
{
}

std::span<char> TextPieces::room()
{
    const std::size_t restSize = m_restEnd - m_restBegin;
    if (restSize == m_capacity) {
        auto larger = std::make_unique_for_overwrite<char[]>(2 * m_capacity);
        std::memcpy(larger.get(), m_buffer.get(), restSize);
        m_buffer = std::move(larger);
        m_capacity *= 2;
    } else if (m_restBegin != 0) {
        std::memmove(m_buffer.get(), m_buffer.get() + m_restBegin, restSize);
        m_restBegin = 0;
        m_restEnd = restSize;
    }
    return { m_buffer.get() + m_restEnd, m_capacity - m_restEnd };
}

std::string_view TextPieces::take(std::size_t bytesRead)
{
    // There is no place to cut in the rest, so only the new bytes are searched for one.
    const std::size_t newBegin = m_restEnd;
    m_restEnd += bytesRead;
    std::size_t cut = m_restEnd;
    while (cut != newBegin && !mayCutAfter(m_buffer[cut - 1]))
        --cut;
    if (cut == newBegin)
        return {};

    const std::string_view text(m_buffer.get() + m_restBegin, cut - m_restBegin);
    m_restBegin = cut;
    return text;
}

std::string_view TextPieces::rest() const
{
    return { m_buffer.get() + m_restBegin, m_restEnd - m_restBegin };
}

} // namespace quilvane
