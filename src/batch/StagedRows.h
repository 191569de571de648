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
/// A run appends to them. Its handler flushes them into the list: once at its end, or after each item where
/// several are dropped, and then only what that drop has not flushed yet.
class StagedRows {
public:
    void append(std::string_view address) { m_rows.append(address); }

    std::size_t size() const { return m_rows.size(); }
    bool empty() const { return m_rows.empty(); }
    std::string_view operator[](std::size_t i) const { return m_rows[i]; }
    const RowStore& rows() const { return m_rows; }

    /// Takes back what was appended last: `count` are left. Nothing that was flushed may go.
    void truncate(std::size_t count) { m_rows.truncate(count); }

    /// Removes duplicates if what is new may be many times what would stay. So addresses that are found again
    /// and again need no memory, and those of a usual run are not looked at twice.
    void limitDuplicates();

    /// The first element that has not been flushed yet; from now on all count as flushed. What the list would
    /// not keep is removed before: pictures' names, and of addresses that differ only in case all but the
    /// first.
    std::size_t beginFlush();
    /// The list has lost rows, so all that is staged is to be flushed again.
    void unmark() { m_flushed = 0; }

    /// Returns all rows and is empty then. `index` becomes their index, which may know none of them.
    RowStore release(DuplicateIndex& index);
    void clear();

private:
    void removeDuplicates();

    RowStore m_rows;
    DuplicateIndex m_index; // knows the rows up to the last removal of duplicates
    std::size_t m_flushed = 0;
};

} // namespace quilvane
