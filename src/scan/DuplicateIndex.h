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

/// The key of the hash. Rows come from pages that may be hostile: their authors must not know the key.
struct HashSeed {
    std::uint64_t first;
    std::uint64_t second;
};

/// A random key, the same during the whole process.
HashSeed processHashSeed();

/// Decides which rows of a list stay at the end of a run. A row goes if it looks like the name of a picture,
/// or if it equals an earlier row that stays, ignoring ASCII case. The result is the same as if every row
/// were compared with all rows after it, and the equal ones removed.
///
/// The index exists as long as the rows: it knows rows [0, knownRows()), and a Pass looks only at the rows
/// after them. When known rows are moved or removed, forget() must be called. Needs 11 to 15 bytes for each
/// row of a long list.
class DuplicateIndex {
public:
    explicit DuplicateIndex(HashSeed seed = processHashSeed())
        : m_seed(seed)
    {
    }

    std::size_t knownRows() const { return m_knownRows; }

    /// Makes the index empty and frees its memory.
    void forget();

    class Pass;

private:
    /// A slot of a hash table with open addressing and linear probing. Its place comes from the first bits of
    /// the hash, so the slots are ordered by hash. Rows that come in this order use only a small part of the
    /// table at a time, which stays in the processor's cache, and a larger table is filled in one pass over
    /// both.
    struct Slot {
        std::uint32_t hash;
        std::uint32_t rowPlusOne; // 0 if the slot is empty
    };
    struct Free {
        void operator()(Slot* slots) const { std::free(slots); }
    };

    std::size_t placeOf(std::uint32_t hash) const { return std::uint64_t{ hash } * m_slotCount >> 32; }
    /// The first place, from that of the hash on, whose slot is empty or has this hash and `isWanted`.
    template <typename IsWanted>
    std::size_t find(std::uint32_t hash, IsWanted isWanted) const;
    void reserve(std::size_t rows);
    void resizeFor(std::size_t rows);

    HashSeed m_seed;
    std::unique_ptr<Slot[], Free> m_slots;
    std::size_t m_slotCount = 0;
    std::size_t m_usedSlots = 0;
    std::size_t m_knownRows = 0; // equals m_usedSlots, except during a pass
};

/// One pass over the rows that were added since the last one. The caller runs it step by step:
///
///     DuplicateIndex::Pass pass(index, list.size(), rowText);
///     while (pass.step())
///         ...
///     list.retain(pass.firstRow(), pass.stays());
///
/// After a complete pass the index assumes that the caller removes the rows that go, and knows the others by
/// the numbers that they have then. A pass that is destroyed before its end makes the index forget.
class DuplicateIndex::Pass {
public:
    /// `rowCount` is at least index.knownRows(). Throws std::length_error for more than four thousand
    /// million rows.
    Pass(DuplicateIndex& index, std::size_t rowCount, RowText rowText);
    ~Pass();
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

    /// Works for about a millisecond; for some hundred if the table of many million rows must grow. False
    /// when the pass is done.
    bool step();

    /// The first row of the pass: knownRows() before it.
    std::size_t firstRow() const { return m_firstRow; }

    /// One element for each row from firstRow() on, once the pass is done: 1 for a row that stays, else 0.
    std::span<const unsigned char> stays() const { return m_stays; }

private:
    /// Each phase is done for all rows before the next begins.
    enum class Phase { Hash, Sort, Link, Settle, Renumber, Done };

    struct Entry {
        std::uint32_t hash;
        std::uint32_t row;
    };

    void startNextPhase();
    // Each works on the part [begin, end) of m_phaseSize elements: rows from m_firstRow on, unless a comment
    // names others.
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
    /// Few rows compared with the known ones: only their slots are touched.
    bool m_isSmall;
    Phase m_phase = Phase::Hash;
    std::size_t m_phaseSize;
    std::size_t m_next = 0;
    std::vector<unsigned char> m_stays;
    /// For each row: first its hash; then, if an earlier row has the same hash, the number of the first such
    /// row plus 1, else 0; last, the number that the row will have.
    std::unique_ptr<std::uint32_t[]> m_rows;
    /// The rows that are no pictures' names, sorted into parts by the first bits of their hashes. Within a
    /// part they are in the order of the list.
    std::unique_ptr<Entry[]> m_entries;
    std::size_t m_partBits;
    std::vector<std::size_t> m_partEnds; // first the parts' sizes, then their ends while they are filled
};

} // namespace quilvane
