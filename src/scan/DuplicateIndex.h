// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace quilvane {

/// The text of a row, numbered from 0. The texts must stay as they are while rows are compared.
using RowText = std::function<std::string_view(std::size_t row)>;

/// The key of the hash. Rows come from pages that may be hostile: who writes one must not know the key.
struct HashSeed {
    std::uint64_t first;
    std::uint64_t second;
};

/// Drawn once per process.
HashSeed processHashSeed();

/// Which rows of one list stay when a run has ended. A row goes if it looks like the name of a picture, or if
/// an earlier row that stays equals it, ignoring ASCII case: what is left is the same as when every row is
/// compared with all after it and those that equal it are removed.
///
/// The index lives as long as the rows: it knows rows [0, knownRows()), and a Pass looks at those after them
/// only. Who moves or removes known rows calls forget(). Takes 11 to 15 bytes a row of a long list.
class DuplicateIndex {
public:
    explicit DuplicateIndex(HashSeed seed = processHashSeed())
        : m_seed(seed)
    {
    }

    std::size_t knownRows() const { return m_knownRows; }

    /// Begins anew and gives the memory back.
    void forget();

    class Pass;

private:
    /// Of an open addressing with linear probing. Slots are addressed by the first bits of the hash, so they
    /// stand in the order of their hashes: rows that come in that order, too, are worked on in the
    /// processor's cache, and a larger table is filled in one sweep over both.
    struct Slot {
        std::uint32_t hash;
        std::uint32_t rowPlusOne; // 0 if the slot is empty
    };
    struct Free {
        void operator()(Slot* slots) const { std::free(slots); }
    };

    std::size_t placeOf(std::uint32_t hash) const { return std::uint64_t{ hash } * m_slotCount >> 32; }
    /// The first place from that of the hash on whose slot is empty or is one that `isWanted`.
    template <typename IsWanted>
    std::size_t find(std::uint32_t hash, IsWanted isWanted) const;
    void reserve(std::size_t rows);
    void resizeFor(std::size_t rows);

    HashSeed m_seed;
    std::unique_ptr<Slot[], Free> m_slots;
    std::size_t m_slotCount = 0;
    std::size_t m_usedSlots = 0;
    std::size_t m_knownRows = 0; // as many as slots are used, but while a pass goes on
};

/// One look at the rows that have been added since the last one, in blocks that the caller drives:
///
///     DuplicateIndex::Pass pass(index, list.size(), rowText);
///     while (pass.step())
///         ...
///     list.retain(pass.firstRow(), pass.stays());
///
/// Once it is done the index takes for granted that the rows that go are removed at once, and knows the
/// others by the numbers that they then have. A pass that is left before makes the index forget.
class DuplicateIndex::Pass {
public:
    /// `rowCount` is at least index.knownRows(). Throws std::length_error for more than four thousand
    /// million rows.
    Pass(DuplicateIndex& index, std::size_t rowCount, RowText rowText);
    ~Pass();
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

    /// Works for about a millisecond, and some hundred where the table of many million rows has to grow.
    /// False when the pass is done.
    bool step();

    /// The first row that is looked at: knownRows() before the pass.
    std::size_t firstRow() const { return m_firstRow; }

    /// One element for each row from firstRow() on, once the pass is done: 1 for a row that stays, else 0.
    std::span<const unsigned char> stays() const { return m_stays; }

private:
    /// What is done to all rows before the next begins.
    enum class Phase { Hash, Sort, Link, Settle, Renumber, Done };

    struct Entry {
        std::uint32_t hash;
        std::uint32_t row;
    };

    void startNextPhase();
    // Each works on the part [begin, end) of what m_phaseSize counts: rows from m_firstRow on, but where
    // another thing is named.
    void hash(std::size_t begin, std::size_t end);
    void sort(std::size_t begin, std::size_t end);
    std::size_t expectedNewRows() const;
    void link(std::size_t begin, std::size_t end); // of m_entries
    void settle(std::size_t begin, std::size_t end);
    void renumber(std::size_t begin, std::size_t end); // of the slots, unless m_isSmall
    bool equalsKnownRow(std::size_t row, std::size_t candidate);

    std::uint32_t hashOf(std::string_view text) const;
    std::size_t partOf(std::uint32_t hash) const { return std::uint64_t{ hash } << m_partBits >> 32; }

    DuplicateIndex& m_index;
    RowText m_rowText;
    std::size_t m_firstRow;
    /// Few rows against what is known: only what belongs to them is touched.
    bool m_isSmall;
    Phase m_phase = Phase::Hash;
    std::size_t m_phaseSize;
    std::size_t m_next = 0;
    std::vector<unsigned char> m_stays;
    /// Of each row first its hash, then the number plus 1 of the first row with that hash if it stands before
    /// the row, else 0, and last the number that the row will have.
    std::unique_ptr<std::uint32_t[]> m_rows;
    /// The rows that are no pictures, sorted into parts by the first bits of their hashes, in each part in
    /// the order of the list.
    std::unique_ptr<Entry[]> m_entries;
    std::size_t m_partBits;
    std::vector<std::size_t> m_partEnds; // while they are filled; first their sizes
};

} // namespace quilvane
