// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace quilvane {

class RegEx;

/// The rows of a list: texts in chunks of one arena each, so that millions cost little more than their bytes
/// and adding a row never moves the earlier ones. Rows are numbered from 0.
///
/// Functions that add rows throw OutOfMemoryException when memory gets short, and std::length_error when
/// 4,096 rows come to more than 4 GB.
class RowStore {
public:
    RowStore() = default;
    /// The store that was moved from is empty afterwards.
    RowStore(RowStore&& other) noexcept;
    RowStore& operator=(RowStore&& other) noexcept;

    void append(std::string_view text)
    {
        const std::size_t index = m_size % rowsPerChunk;
        if (index == 0 || text.size() > m_room)
            makeRoomIfMemoryAllows(text.size());
        Chunk& chunk = *m_chunks.back();
        const std::uint32_t begin = chunk.ends[index];
        text.copy(chunk.text() + begin, text.size());
        chunk.ends[index + 1] = begin + static_cast<std::uint32_t>(text.size());
        m_room -= text.size();
        ++m_size;
    }

    /// Adds copies of the rows of `other`, another store, from row `first` on. Keeps the window painted.
    void append(const RowStore& other, std::size_t first);

    /// Adds the rows of `other` and leaves it empty. Frees its memory while its rows are copied, and keeps
    /// the window painted.
    void take(RowStore&& other);

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    /// Valid until rows are removed or the store is destroyed. `row` must be below size().
    std::string_view operator[](std::size_t row) const
    {
        return m_chunks[row / rowsPerChunk]->rows(row % rowsPerChunk, row % rowsPerChunk + 1);
    }

    /// Appends to `found` the numbers of those rows of [first, end) in which `expression` is found, the last
    /// one first. Throws what RegEx::matches() throws.
    void appendMatching(
        RegEx& expression, std::size_t first, std::size_t end, std::vector<std::size_t>& found) const;

    /// Gives the memory back to the system.
    void clear();

    /// Removes all rows but the first `count`, which is at most size().
    void truncate(std::size_t count);

    /// Of the rows from `first` on keeps row i where stays[i - first] is not 0, in the same order. `stays`
    /// has size() - first elements. Rows before `first` are not touched and cost nothing. Throws what
    /// requireMemoryToRetain() throws, before anything has changed.
    void retain(std::size_t first, std::span<const unsigned char> stays);

    /// Throws std::bad_alloc if retain() would probably run out of memory, and so lose rows. It may still do
    /// so if thousands of rows stay that are many times as long as those between them.
    void requireMemoryToRetain(std::size_t first) const;

private:
    static constexpr std::size_t rowsPerChunk = 4096;

    /// The beginning of a block of memory; the texts of the rows follow it.
    struct Chunk {
        std::uint32_t ends[rowsPerChunk + 1]; // the text of row i is at [ends[i], ends[i + 1])

        char* text() { return reinterpret_cast<char*>(this + 1); }
        const char* text() const { return reinterpret_cast<const char*>(this + 1); }
        /// The texts of rows [begin, end).
        std::string_view rows(std::size_t begin, std::size_t end) const
        {
            return { text() + ends[begin], ends[end] - ends[begin] };
        }
    };

    struct Free {
        void operator()(Chunk* chunk) const { std::free(chunk); }
    };
    using ChunkPointer = std::unique_ptr<Chunk, Free>;

    /// Makes room for `bytes` bytes: one more row, or several that fit into the last chunk.
    void makeRoom(std::size_t bytes);
    void makeRoomIfMemoryAllows(std::size_t bytes);
    /// Gives a chunk, or a null one, room for that many bytes of text.
    static void resize(ChunkPointer& chunk, std::size_t textSize);
    /// Adds copies of the rows [begin, end) of a chunk.
    void appendRows(const Chunk& chunk, std::size_t begin, std::size_t end);

    std::vector<ChunkPointer> m_chunks; // all but the last are full
    std::size_t m_size = 0;
    std::size_t m_room = 0; // bytes of text that the last chunk can still take
};

} // namespace quilvane
