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
    TypedWithDot, // a text without a dot gets a literal one in front; any other is used as typed
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

// Keep's dots are literal. Remove's are wildcards on purpose: ".net" removes planet.example as well.
constexpr std::array<Rules, domainFilterCount> filters{ {
    { fixed("\\.com"), fixed(".com") },
    { fixed("\\.edu"), fixed(".edu") },
    // Keep searches the whole row here, so an address with .gov before the '@' is kept, too.
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

const Rule& ruleOf(RowFilter::Purpose purpose, std::size_t filter)
{
    return purpose == RowFilter::Purpose::Keep ? filters[filter].keep : filters[filter].remove;
}

std::string patternOf(const Rule& rule, const DomainFilterChoice& choice, std::size_t filter)
{
    if (rule.source == Source::Fixed)
        return rule.pattern;
    const std::string& text = choice.customTexts[filter - (domainFilterCount - customFilterCount)];
    const bool dotInFront = rule.source == Source::TypedWithDot && text.find('.') == std::string::npos;
    return dotInFront ? "\\." + text : text;
}

/// What follows the first '@', up to a second one.
std::string_view domainPart(std::string_view row)
{
    const std::size_t at = row.find('@');
    if (at == std::string_view::npos)
        throw OutOfBoundsException("part of a row", 1, 1);
    return row.substr(at + 1, row.find('@', at + 1) - (at + 1));
}

} // namespace

RowFilter::RowFilter(Purpose purpose, std::size_t filter, const DomainFilterChoice& choice)
    : m_searchesWholeRow(ruleOf(purpose, filter).searched == Searched::WholeRow)
{
    m_expression.setSearchPattern(patternOf(ruleOf(purpose, filter), choice, filter));
}

bool RowFilter::matches(std::string_view row)
{
    return m_expression.matches(m_searchesWholeRow ? row : domainPart(row));
}

} // namespace quilvane
