// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/RowStore.h"

#include "framework/files/availableMemory.h"
#include "framework/keepWindowPainted.h"
#include "framework/regex/LiteralText.h"
#include "framework/regex/RegEx.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include <malloc.h>

namespace quilvane {

namespace {

/// In bytes, with the share of the index that finds duplicates.
constexpr std::uint64_t memoryForRow = 96;

/// To be called after so many chunks were freed: otherwise the heap keeps freed memory that lies below memory
/// in use.
void giveBackMemoryOf(std::size_t chunks)
{
    constexpr std::size_t many = 256;
    if (chunks > many)
        ::malloc_trim(0);
}

/// A chunk of long rows grows with them, and is not made so large beforehand.
constexpr std::size_t mostGuessed = std::size_t(1) << 20; // bytes of text

/// Calls take(i) for each row i that holds `literal`. `text` is the rows one after the other; row i ends at
/// ends[i] - offset.
template <typename Take>
void forEachRowWith(const LiteralText& literal, std::string_view text, const std::uint32_t* ends,
    std::uint32_t offset, Take take)
{
    std::size_t row = 0;
    std::size_t place = literal.find(text, 0);
    while (place != std::string_view::npos) {
        while (ends[row] - offset <= place)
            ++row;
        const std::size_t rowEnd = ends[row] - offset;
        const bool inOneRow = place + literal.size() <= rowEnd;
        if (inOneRow)
            take(row);
        place = literal.find(text, inOneRow ? rowEnd : place + 1);
    }
}

} // namespace

RowStore::RowStore(RowStore&& other) noexcept
    : m_chunks(std::exchange(other.m_chunks, {}))
    , m_size(std::exchange(other.m_size, 0))
    , m_room(std::exchange(other.m_room, 0))
{
}

RowStore& RowStore::operator=(RowStore&& other) noexcept
{
    m_chunks = std::exchange(other.m_chunks, {});
    m_size = std::exchange(other.m_size, 0);
    m_room = std::exchange(other.m_room, 0);
    return *this;
}

void RowStore::append(const RowStore& other, std::size_t first)
{
    requireMemory((other.m_size - first) * memoryForRow, "The list is too long");
    while (first < other.m_size) {
        const std::size_t begin = first % rowsPerChunk;
        const std::size_t count = std::min(rowsPerChunk - begin, other.m_size - first);
        appendRows(*other.m_chunks[first / rowsPerChunk], begin, begin + count);
        first += count;
        keepWindowPainted();
    }
}

void RowStore::take(RowStore&& other)
{
    RowStore rest = std::move(other);
    if (empty())
        std::swap(*this, rest);
    for (ChunkPointer& chunk : rest.m_chunks) {
        appendRows(*chunk, 0, std::min(rowsPerChunk, rest.m_size));
        rest.m_size -= std::min(rowsPerChunk, rest.m_size);
        chunk.reset();
        keepWindowPainted();
    }
}

void RowStore::appendMatching(
    RegEx& expression, std::size_t first, std::size_t end, std::vector<std::size_t>& found) const
{
    while (first < end) {
        const std::size_t chunkBegin = (end - 1) / rowsPerChunk * rowsPerChunk;
        const std::size_t begin = std::max(first, chunkBegin);
        if (const LiteralText* literal = expression.literal()) {
            const Chunk& chunk = *m_chunks[chunkBegin / rowsPerChunk];
            const std::uint32_t* ends = chunk.ends + (begin - chunkBegin);
            const auto before = static_cast<std::ptrdiff_t>(found.size());
            forEachRowWith(*literal, chunk.rows(begin - chunkBegin, end - chunkBegin), ends + 1, *ends,
                [&](std::size_t row) { found.push_back(begin + row); });
            std::reverse(found.begin() + before, found.end());
        } else {
            for (std::size_t row = end; row-- > begin;) {
                if (expression.matches((*this)[row]))
                    found.push_back(row);
            }
        }
        end = begin;
    }
}

void RowStore::clear()
{
    const std::size_t chunks = m_chunks.size();
    *this = {};
    giveBackMemoryOf(chunks);
}

void RowStore::truncate(std::size_t count)
{
    m_chunks.resize((count + rowsPerChunk - 1) / rowsPerChunk);
    m_size = count;
    m_room = 0; // makeRoom() finds out with the next row
}

void RowStore::retain(std::size_t first, std::span<const unsigned char> stays)
{
    const auto leading = static_cast<std::size_t>(std::find(stays.begin(), stays.end(), 0) - stays.begin());
    const std::size_t oldSize = m_size;
    std::size_t row = first + leading; // the first row that goes
    if (row == oldSize)
        return;

    // The chunks from that row on are taken out, and their remaining rows are added again. Each old chunk is
    // freed at once: at most the list and one chunk are in memory, not the list twice.
    const std::size_t firstChunk = row / rowsPerChunk;
    requireMemoryToRetain(row);
    std::vector<ChunkPointer> old(std::make_move_iterator(m_chunks.begin() + std::ptrdiff_t(firstChunk)),
        std::make_move_iterator(m_chunks.end()));
    truncate(firstChunk * rowsPerChunk);
    appendRows(*old.front(), 0, row % rowsPerChunk);
    for (std::size_t i = 0; i < old.size(); ++i) {
        const std::size_t chunkBegin = (firstChunk + i) * rowsPerChunk;
        const std::size_t chunkEnd = std::min(chunkBegin + rowsPerChunk, oldSize);
        while (row < chunkEnd) {
            std::size_t runBegin = row;
            while (runBegin < chunkEnd && stays[runBegin - first] == 0)
                ++runBegin;
            row = runBegin;
            while (row < chunkEnd && stays[row - first] != 0)
                ++row;
            appendRows(*old[i], runBegin - chunkBegin, row - chunkBegin);
        }
        old[i].reset();
    }
    giveBackMemoryOf(firstChunk + old.size() - m_chunks.size());
}

void RowStore::requireMemoryToRetain(std::size_t first) const
{
    std::size_t largest = 0;
    for (std::size_t i = first / rowsPerChunk; i < m_chunks.size(); ++i) {
        const std::size_t rows = std::min(rowsPerChunk, m_size - i * rowsPerChunk);
        largest = std::max<std::size_t>(largest, m_chunks[i]->ends[rows]);
    }
    ChunkPointer copy;
    resize(copy, 2 * largest + mostGuessed); // with the room that makeRoom() adds
}

void RowStore::makeRoomIfMemoryAllows(std::size_t bytes)
{
    // Checked once in a million rows, and not for a short list.
    constexpr std::size_t million = std::size_t(1) << 20;
    if (m_size % million == 16 * rowsPerChunk)
        requireMemory(million * memoryForRow, "The list is too long");
    makeRoom(bytes);
}

void RowStore::makeRoom(std::size_t bytes)
{
    constexpr std::size_t smallestText = 4096;
    constexpr std::size_t largestText = std::numeric_limits<std::uint32_t>::max();
    const std::size_t index = m_size % rowsPerChunk;
    const std::size_t lastText
        = m_chunks.empty() ? 0 : m_chunks.back()->ends[index == 0 ? rowsPerChunk : index];
    const std::size_t used = index == 0 ? 0 : lastText;
    if (bytes > largestText - used)
        throw std::length_error(
            "These rows are too long for a list: more than 4 GB in a few thousand of them.");
    if (index == 0) {
        if (!m_chunks.empty())
            resize(m_chunks.back(), lastText);
        // The next rows will be about as long as the last ones.
        const std::size_t guess = std::min(lastText + lastText / 16, mostGuessed);
        const std::size_t room = std::max({ bytes, guess, smallestText });
        ChunkPointer next;
        resize(next, room);
        next->ends[0] = 0;
        m_chunks.push_back(std::move(next));
        m_room = room;
    } else {
        const std::size_t room = std::min(std::max(bytes, used / 2), largestText - used);
        resize(m_chunks.back(), used + room);
        m_room = room; // only after resize(), which may throw
    }
}

void RowStore::resize(ChunkPointer& chunk, std::size_t textSize)
{
    void* memory = std::realloc(chunk.get(), sizeof(Chunk) + textSize);
    if (!memory)
        throw std::bad_alloc();
    static_cast<void>(chunk.release());
    chunk.reset(static_cast<Chunk*>(memory));
}

void RowStore::appendRows(const Chunk& chunk, std::size_t begin, std::size_t end)
{
    while (begin < end) {
        const std::size_t index = m_size % rowsPerChunk;
        const std::size_t count = std::min(end - begin, rowsPerChunk - index);
        const std::string_view text = chunk.rows(begin, begin + count);
        if (index == 0 || text.size() > m_room)
            makeRoom(text.size());
        Chunk& last = *m_chunks.back();
        const std::uint32_t place = last.ends[index];
        text.copy(last.text() + place, text.size());
        for (std::size_t row = 1; row <= count; ++row)
            last.ends[index + row] = chunk.ends[begin + row] - chunk.ends[begin] + place;
        m_room -= text.size();
        m_size += count;
        begin += count;
    }
}

} // namespace quilvane
