// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/regex/RegEx.h"

#include "framework/regex/CompiledPattern.h"

#include <span>
#include <utility>
#include <vector>

namespace quilvane {

void RegEx::setSearchPattern(std::string pattern)
{
    m_searchPattern = std::move(pattern);
    m_compiled.reset();
    m_budget = {};
}

Ref<RegExMatch> RegEx::Search(std::string_view text)
{
    m_text = text;
    m_next = 0;
    m_lastWasEmpty = false;
    return Search();
}

Ref<RegExMatch> RegEx::Search()
{
    if (m_next == std::string_view::npos)
        return Ref<RegExMatch>::nil("There is no text left to search.");

    // After an empty match the next one may begin at the same place but must not be empty.
    const auto empty
        = m_lastWasEmpty ? CompiledPattern::EmptyAtStart::Skipped : CompiledPattern::EmptyAtStart::Allowed;
    const std::span<const std::size_t> offsets = compiled().run(m_text, m_budget, m_next, empty);
    if (offsets.empty()) {
        m_next = std::string_view::npos;
        return Ref<RegExMatch>::nil("Nothing in the text matches the pattern.");
    }

    std::vector<std::string> subExpressions;
    subExpressions.reserve(offsets.size() / 2);
    for (std::size_t i = 0; i < offsets.size(); i += 2) {
        const bool set = offsets[i] != CompiledPattern::unset;
        subExpressions.emplace_back(set ? m_text.substr(offsets[i], offsets[i + 1] - offsets[i]) : "");
    }
    m_next = offsets[1];
    m_lastWasEmpty = offsets[0] == offsets[1];
    return Ref<RegExMatch>::make(std::move(subExpressions));
}

std::string RegEx::Replace(std::string_view text)
{
    std::string result(text);
    const std::span<const std::size_t> offsets = compiled().run(text, m_budget);
    if (!offsets.empty())
        result.replace(offsets[0], offsets[1] - offsets[0], m_replacementPattern);
    return result;
}

bool RegEx::matches(std::string_view text)
{
    return !compiled().run(text, m_budget).empty();
}

const LiteralText* RegEx::literal()
{
    return compiled().literal();
}

const CompiledPattern& RegEx::compiled()
{
    if (!m_compiled)
        m_compiled = CompiledPattern::get(m_searchPattern);
    return *m_compiled;
}

} // namespace quilvane
