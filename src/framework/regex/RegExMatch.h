// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace quilvane {

/// The result of one search. It holds copies, so it may outlive the RegEx and the text.
class RegExMatch {
public:
    /// `subExpressions`: the whole match, then one text for each group of the pattern.
    explicit RegExMatch(std::vector<std::string> subExpressions);

    /// 0 is the whole match, 1 the first group; empty for a group that took no part in the match.
    /// OutOfBoundsException for an index without a group.
    const std::string& SubExpressionString(int index) const;

private:
    std::vector<std::string> m_subExpressions;
};

} // namespace quilvane
