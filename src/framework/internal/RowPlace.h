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

/// What the user has before them in a list: which rows are selected, which one has the keyboard, and which
/// one stands at the top. It moves with the rows when others are removed.
struct RowPlace {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::vector<RowRange> selected; // in order, with rows between each two
    std::size_t current = none;
    std::size_t top = 0;

    /// As RowStore::retain(). Of the row with the keyboard and of the one at the top the next that stays
    /// takes the place, which may be one after the last.
    void retain(std::size_t first, std::span<const unsigned char> stays);
    /// As RowStore::truncate().
    void truncate(std::size_t count);

    std::size_t selectedCount() const;

private:
    /// Drops empty ranges and joins neighbours.
    void tidy();
};

} // namespace quilvane
