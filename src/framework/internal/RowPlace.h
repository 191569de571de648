// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace quilvane {

/// The rows [first, end).
struct RowRange {
    std::size_t first;
    std::size_t end;

    bool operator==(const RowRange&) const = default;
};

/// What the user sees in a list: which rows are selected, which one has the focus, and which one is at the
/// top. When rows are removed, it follows the others.
struct RowPlace {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::vector<RowRange> selected; // in order, with rows between each two
    std::size_t current = none;
    std::size_t top = 0;

    /// Follows RowStore::retain(). If the row with the focus or the one at the top goes, the next row that
    /// stays replaces it; this may be the one after the last.
    void retain(std::size_t first, std::span<const unsigned char> stays);
    /// Follows RowStore::truncate().
    void truncate(std::size_t count);

    std::size_t selectedCount() const;

private:
    /// Drops empty ranges and joins neighbours.
    void tidy();
};

} // namespace quilvane
