// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/regex/RegEx.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

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

/// One of the filters, ready to test rows.
class RowFilter {
public:
    enum class Purpose { Keep, Remove };

    /// `filter` is a place in `choice.ticked`.
    RowFilter(Purpose purpose, std::size_t filter, const DomainFilterChoice& choice);

    /// Whether Keep keeps the row, or Remove removes it. Throws RegExSearchPatternException for a text that
    /// is no pattern, RegExException for one that needs too many steps, and OutOfBoundsException for a row
    /// without an '@' where the domain is asked for.
    bool matches(std::string_view row);

private:
    RegEx m_expression;
    bool m_searchesWholeRow;
};

} // namespace quilvane
