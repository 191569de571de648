// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace quilvane {

/// What one search found. It holds copies, so it outlives both the RegEx and the text.
class RegExMatch {
public:
    /// `subExpressions`: the whole match, then one text for each bracket of the pattern.
    explicit RegExMatch(std::vector<std::string> subExpressions);

    /// 0 is the whole match, 1 the first bracket; empty for a bracket that took no part in the match.
    /// OutOfBoundsException for an index that the pattern has no bracket for.
    const std::string& SubExpressionString(int index) const;

private:
    std::vector<std::string> m_subExpressions;
};

} // namespace quilvane
