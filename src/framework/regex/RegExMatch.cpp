// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/regex/RegExMatch.h"

#include "framework/exceptions.h"

#include <utility>

namespace quilvane {

RegExMatch::RegExMatch(std::vector<std::string> subExpressions)
    : m_subExpressions(std::move(subExpressions))
{
}

const std::string& RegExMatch::SubExpressionString(int index) const
{
    const auto position = static_cast<std::size_t>(index);
    if (index < 0 || position >= m_subExpressions.size())
        throw OutOfBoundsException("sub-expression", position, m_subExpressions.size());
    return m_subExpressions[position];
}

} // namespace quilvane
