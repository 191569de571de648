// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filter/domainFilter.h"

#include "framework/exceptions.h"
#include "framework/regex/RegEx.h"

namespace quilvane {

namespace {

enum class Searched { DomainPart, WholeRow };

enum class Source {
    Fixed,
    Typed,
    TypedWithDot, // a text without a dot gets a literal one in front; with one it is taken as typed
};

struct Rule {
    Source source;
    const char* pattern;
    Searched searched;
};

constexpr Rule fixed(const char* pattern, Searched searched = Searched::DomainPart)
{
    return { Source::Fixed, pattern, searched };
}

constexpr Rule typed()
{
    return { Source::Typed, nullptr, Searched::DomainPart };
}

constexpr Rule typedWithDot()
{
    return { Source::TypedWithDot, nullptr, Searched::DomainPart };
}

struct Rules {
    Rule keep;
    Rule remove;
};

// Keep's dots are literal. Remove's are wildcards on purpose: ".net" takes planet.example away as well.
constexpr std::array<Rules, domainFilterCount> filters{ {
    { fixed("\\.com"), fixed(".com") },
    { fixed("\\.edu"), fixed(".edu") },
    // Keep looks at the whole row here, so a local part with .gov in it is kept, too.
    { fixed("\\.gov", Searched::WholeRow), fixed(".gov") },
    { fixed("\\.biz"), fixed(".biz") },
    { fixed("\\.tv"), fixed(".tv") },
    { fixed("\\.org"), fixed(".org") },
    { fixed("\\.net"), fixed(".net") },
    { fixed("\\.mil"), fixed(".mil") },
    { fixed("\\.int"), fixed(".int") },
    { fixed("\\.dev"), fixed(".dev") },
    { typedWithDot(), typed() },
    { typedWithDot(), typed() },
    { typedWithDot(), typed() },
    { typedWithDot(), typed() },
    { typedWithDot(), typedWithDot() },
} };

std::string patternOf(const Rule& rule, const DomainFilterChoice& choice, std::size_t filter)
{
    if (rule.source == Source::Fixed)
        return rule.pattern;
    const std::string& text = choice.customTexts[filter - (domainFilterCount - customFilterCount)];
    const bool dotInFront = rule.source == Source::TypedWithDot && text.find('.') == std::string::npos;
    return dotInFront ? "\\." + text : text;
}

/// What stands behind the first '@', up to a second one.
std::string_view domainPart(std::string_view row)
{
    const std::size_t at = row.find('@');
    if (at == std::string_view::npos)
        throw OutOfBoundsException("part of a row", 1, 1);
    return row.substr(at + 1, row.find('@', at + 1) - (at + 1));
}

/// Calls take(row) for each row that a ticked filter matches, filter by filter, from the last row to the
/// first.
template <typename Skip, typename Take>
void forEachMatch(Rule Rules::*side, const DomainFilterChoice& choice, std::size_t rowCount,
    const FilterRowText& rowText, const std::function<void()>& betweenRows, Skip skip, Take take)
{
    for (std::size_t filter = 0; filter < domainFilterCount; ++filter) {
        if (!choice.ticked[filter])
            continue;
        const Rule& rule = filters[filter].*side;
        RegEx expression;
        expression.setSearchPattern(patternOf(rule, choice, filter));
        for (std::size_t row = rowCount; row-- > 0;) {
            if (skip(row))
                continue;
            const std::string_view text = rowText(row);
            if (expression.matches(rule.searched == Searched::WholeRow ? text : domainPart(text)))
                take(row);
            betweenRows();
        }
    }
}

} // namespace

std::vector<std::size_t> rowsToKeep(const DomainFilterChoice& choice, std::size_t rowCount,
    const FilterRowText& rowText, const std::function<void()>& betweenRows)
{
    std::vector<std::size_t> kept;
    forEachMatch(
        &Rules::keep, choice, rowCount, rowText, betweenRows, [](std::size_t) { return false; },
        [&kept](std::size_t row) { kept.push_back(row); });
    return kept;
}

void markRowsToRemove(const DomainFilterChoice& choice, const FilterRowText& rowText,
    std::span<unsigned char> stays, const std::function<void()>& betweenRows)
{
    forEachMatch(
        &Rules::remove, choice, stays.size(), rowText, betweenRows,
        [stays](std::size_t row) { return stays[row] == 0; }, [stays](std::size_t row) { stays[row] = 0; });
}

} // namespace quilvane
