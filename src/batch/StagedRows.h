// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RowStore.h"
#include "scan/DuplicateIndex.h"

#include <cstddef>
#include <string_view>

namespace quilvane {

/// Addresses that a run has found and that are not yet rows of the list.
///
/// A run appends to them. Its handler flushes them into the list: once at its end, or after each dropped
/// item, and then only the rows that were not flushed yet.
class StagedRows {
public:
    void append(std::string_view address) { m_rows.append(address); }

    std::size_t size() const { return m_rows.size(); }
    bool empty() const { return m_rows.empty(); }
    std::string_view operator[](std::size_t i) const { return m_rows[i]; }
    const RowStore& rows() const { return m_rows; }

    /// Removes the rows that were appended last, so that `count` are left. Flushed rows must stay.
    void truncate(std::size_t count) { m_rows.truncate(count); }

    /// Removes duplicates when millions of rows are new and outnumber the known ones. So addresses that are
    /// found again and again don't fill the memory, and a usual run looks at each address only once.
    void limitDuplicates();

    /// Returns the first row that was not flushed yet; from now on all rows count as flushed. Before that,
    /// removes what the list would not keep: pictures' names, and all but the first of addresses that differ
    /// only in case.
    std::size_t beginFlush();
    /// The list has lost rows, so all staged rows must be flushed again.
    void unmark() { m_flushed = 0; }

    /// Returns all rows and is empty afterwards. `index` becomes their index, which may know none of them.
    RowStore release(DuplicateIndex& index);
    void clear();

private:
    void removeDuplicates();

    RowStore m_rows;
    DuplicateIndex m_index; // knows the rows up to the last removal of duplicates
    std::size_t m_flushed = 0;
};

} // namespace quilvane
