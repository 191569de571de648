// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// The fifteen filters in the order in which they are applied, which is not that of their boxes in the
/// dialog: ten popular top-level domains, then five of the user's own.
enum class DomainFilter {
    Com,
    Edu,
    Gov,
    Biz,
    TV,
    Org,
    Net,
    Mil,
    Int,
    Dev,
    Custom1,
    Custom2,
    Custom3,
    Custom4,
    Custom5
};

inline constexpr std::size_t domainFilterCount = 15;
inline constexpr std::size_t customFilterCount = 5;

/// What the user has ticked and typed.
struct DomainFilterChoice {
    std::array<bool, domainFilterCount> ticked{};
    /// Regular expressions as typed. That of a ticked row must not be empty.
    std::array<std::string, customFilterCount> customTexts{};
};

/// Texts of rows, numbered from 0. What it gives must stay valid while a filter runs.
using FilterRowText = std::function<std::string_view(std::size_t row)>;

// Both take time linear in rows times ticked filters, call `betweenRows` behind every row, and throw
// RegExSearchPatternException for a text that is no pattern, RegExException for one that runs away, and
// OutOfBoundsException at a row without an '@' where the domain is asked for.

/// The numbers of the rows that Keep leaves, in the order in which they then stand: filter by filter, and for
/// each from the last row to the first, so a row that several filters match stands there several times.
std::vector<std::size_t> rowsToKeep(const DomainFilterChoice& choice, std::size_t rowCount,
    const FilterRowText& rowText, const std::function<void()>& betweenRows);

/// Sets stays[i] to 0 for each row that Remove takes away. `stays` has one element a row, not 0 where the row
/// is there; when this throws, it tells what was removed up to then.
void markRowsToRemove(const DomainFilterChoice& choice, const FilterRowText& rowText,
    std::span<unsigned char> stays, const std::function<void()>& betweenRows);

} // namespace quilvane
