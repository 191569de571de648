// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

class RegEx;

/// The rows of a list: texts in chunks of one arena each, so that millions cost little more than their bytes
/// and adding a row never moves the earlier ones. Rows are numbered from 0.
class RowStore {
public:
    /// Throws OutOfMemoryException when memory gets short, and std::length_error for a row of 4 GB.
    void append(std::string_view text);

    std::size_t size() const { return m_size; }

    /// Valid until rows are removed or the store goes. `row` must be below size().
    std::string_view operator[](std::size_t row) const;

    /// The rows in which `expression` is found, the last one first. Calls `meanwhile` now and then, which may
    /// append rows; they are not searched. Throws what RegEx::matches() throws.
    std::vector<std::size_t> matching(RegEx& expression, const std::function<void()>& meanwhile) const;

    void clear();

    /// Keeps row i where keep[i] is not 0, in one pass and in the same order. `keep` has size() elements.
    void retain(std::span<const unsigned char> keep);

    /// Makes row i what was row rows[i] before; rows that stand there several times are repeated, others go.
    void arrange(std::span<const std::size_t> rows);

private:
    static constexpr std::size_t rowsPerChunk = 4096;

    /// append() without a look at the memory: what is moved from one store to another needs no more than it
    /// had.
    void appendUnchecked(std::string_view text);

    struct Chunk {
        std::string text;
        std::vector<std::uint32_t> ends; // byte behind each row's text
    };

    std::vector<Chunk> m_chunks; // all but the last are full
    std::size_t m_size = 0;
};

} // namespace quilvane
