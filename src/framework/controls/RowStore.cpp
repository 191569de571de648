// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/RowStore.h"

#include "framework/files/availableMemory.h"
#include "framework/regex/LiteralText.h"
#include "framework/regex/RegEx.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace quilvane {

namespace {

/// In bytes, with what it takes to look for duplicates among them.
constexpr std::uint64_t memoryForMillionRows = std::uint64_t(96) << 20;

/// Calls take(i) for each row i that holds `literal`, of rows that stand one behind the other in `text`.
/// `ends` are the places behind each.
template <typename Take>
void forEachRowWith(
    const LiteralText& literal, std::string_view text, std::span<const std::uint32_t> ends, Take take)
{
    std::size_t row = 0;
    std::size_t place = literal.find(text, 0);
    while (place != std::string_view::npos) {
        while (ends[row] <= place)
            ++row;
        const bool inOneRow = place + literal.size() <= ends[row];
        if (inOneRow)
            take(row);
        place = literal.find(text, inOneRow ? ends[row] : place + 1);
    }
}

} // namespace

void RowStore::append(std::string_view text)
{
    if (m_size % (256 * rowsPerChunk) == 0)
        requireMemory(memoryForMillionRows, "The list is too long");
    appendUnchecked(text);
}

void RowStore::appendUnchecked(std::string_view text)
{
    if (m_size == m_chunks.size() * rowsPerChunk) {
        Chunk next;
        next.ends.reserve(rowsPerChunk);
        if (!m_chunks.empty()) {
            m_chunks.back().text.shrink_to_fit();
            next.text.reserve(m_chunks.back().text.size());
        }
        m_chunks.push_back(std::move(next));
    }
    Chunk& chunk = m_chunks.back();
    if (chunk.text.size() + text.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error(
            "These rows are too long for a list: more than 4 GB in a few thousand of them.");
    chunk.text.append(text);
    chunk.ends.push_back(std::uint32_t(chunk.text.size()));
    ++m_size;
}

std::string_view RowStore::operator[](std::size_t row) const
{
    const Chunk& chunk = m_chunks[row / rowsPerChunk];
    const std::size_t index = row % rowsPerChunk;
    const std::size_t begin = index == 0 ? 0 : chunk.ends[index - 1];
    return std::string_view(chunk.text).substr(begin, chunk.ends[index] - begin);
}

std::vector<std::size_t> RowStore::matching(RegEx& expression, const std::function<void()>& meanwhile) const
{
    std::vector<std::size_t> found;
    std::size_t behind = m_size;
    while (behind > 0) {
        const std::size_t first = (behind - 1) / rowsPerChunk * rowsPerChunk;
        if (const LiteralText* literal = expression.literal()) {
            const Chunk& chunk = m_chunks[first / rowsPerChunk];
            const std::span<const std::uint32_t> ends(chunk.ends.data(), behind - first);
            const auto before = std::ptrdiff_t(found.size());
            forEachRowWith(*literal, std::string_view(chunk.text).substr(0, ends.back()), ends,
                [&](std::size_t row) { found.push_back(first + row); });
            std::reverse(found.begin() + before, found.end());
            meanwhile();
        } else {
            for (std::size_t row = behind; row-- > first;) {
                if (expression.matches((*this)[row]))
                    found.push_back(row);
                meanwhile();
            }
        }
        behind = first;
    }
    return found;
}

void RowStore::clear()
{
    m_chunks = {};
    m_size = 0;
}

void RowStore::retain(std::span<const unsigned char> keep)
{
    RowStore kept;
    for (std::size_t row = 0; row < m_size; ++row) {
        if (keep[row])
            kept.appendUnchecked((*this)[row]);
        // What has been copied goes at once: the peak is the list and one chunk, not the list twice.
        if (row % rowsPerChunk == rowsPerChunk - 1)
            m_chunks[row / rowsPerChunk] = {};
    }
    *this = std::move(kept);
}

void RowStore::arrange(std::span<const std::size_t> rows)
{
    RowStore arranged;
    for (const std::size_t row : rows)
        arranged.append((*this)[row]);
    *this = std::move(arranged);
}

} // namespace quilvane
