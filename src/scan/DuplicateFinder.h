// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace quilvane {

/// Tells of each row of a list whether it is the first of its kind, ignoring ASCII case: construct it on the
/// list, call mark() until all rows are through. The rows must not change meanwhile.
///
/// The first rows in their order are what is left when every row is compared with all behind it and those
/// that equal it are removed. Takes linear time and 14 bytes a row.
class DuplicateFinder {
public:
    /// The text of a row, numbered from 0. The view must stay valid for as long as the finder lives.
    using RowText = std::function<std::string_view(std::size_t row)>;

    /// The key of the hash. Rows come from pages that may be hostile, so whoever writes one must not know it.
    struct Seed {
        std::uint64_t first;
        std::uint64_t second;
    };

    /// Drawn once per process.
    static Seed processSeed();

    /// Throws std::length_error for more than 2.5 thousand million rows.
    DuplicateFinder(std::size_t rowCount, RowText rowText, Seed seed = processSeed());

    /// Takes the next isFirst.size() rows and sets 1 for each that no row before equals, 0 for the others.
    /// Throws std::length_error, having done nothing, if there are not so many rows left.
    void mark(std::span<unsigned char> isFirst);

private:
    struct Slot {
        std::uint32_t hash;
        /// The row's number plus 1; 0 in an empty slot.
        std::uint32_t rowPlusOne;
    };

    struct Candidate {
        std::string_view text;
        std::uint32_t hash;
    };

    void markBatch(std::span<unsigned char> isFirst);
    void prefetchRowLike(const Candidate& candidate) const;
    bool insert(const Candidate& candidate, std::size_t row);
    std::size_t homeOf(std::uint32_t hash) const;
    std::size_t next(std::size_t slot) const;

    RowText m_rowText;
    Seed m_seed;
    std::size_t m_rowCount;
    std::size_t m_rowsTaken = 0;
    /// Open addressing with linear probing. Never full.
    std::vector<Slot> m_slots;
};

} // namespace quilvane
