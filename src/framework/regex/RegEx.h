// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/regex/CompiledPattern.h"
#include "framework/regex/RegExMatch.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace quilvane {

class LiteralText;

/// A regular expression in Perl's syntax, run over bytes. Case is ignored, `\b` and `\w` know ASCII only, and
/// `.` does not match CR and LF.
///
/// To make one costs almost nothing: a pattern is compiled at its first search, and the compiled forms of the
/// last patterns are kept and shared. Set the pattern, call Search(text), then Search() until it returns nil.
///
/// Every function that runs the pattern throws RegExSearchPatternException if it is invalid, and
/// RegExException if it needs too much memory for that text, or too many steps for all texts since the
/// pattern was set. The limit of steps grows with the texts. A run that takes long keeps the windows painted.
class RegEx {
public:
    RegEx() = default;
    RegEx(const RegEx&) = delete;
    RegEx& operator=(const RegEx&) = delete;

    void setSearchPattern(std::string pattern);
    void setReplacementPattern(std::string replacement) { m_replacementPattern = std::move(replacement); }

    /// The first match in `text`, or nil. `text` is not copied: it must stay valid and unchanged as long as
    /// Search() continues in it.
    Ref<RegExMatch> Search(std::string_view text);

    /// The next match after the previous one, or nil if there is no more or no text was given. After an empty
    /// match it looks for another one, so that a loop ends.
    Ref<RegExMatch> Search();

    /// `text` with its first match replaced by the replacement pattern, which is used literally, without
    /// back-references. Does not affect where Search() continues.
    std::string Replace(std::string_view text);

    /// Whether the pattern is found in `text`; allocates nothing after the pattern is compiled. Does not
    /// affect where Search() continues.
    bool matches(std::string_view text);

    /// Null if the pattern is more than a text to be found. Valid until the pattern is set.
    const LiteralText* literal();

private:
    const CompiledPattern& compiled();

    std::string m_searchPattern;
    std::string m_replacementPattern;
    std::shared_ptr<const CompiledPattern> m_compiled; // null until the pattern is first used
    MatchingBudget m_budget;
    std::string_view m_text;
    std::size_t m_next = std::string_view::npos; // where Search() continues in m_text; npos at the end
    bool m_lastWasEmpty = false;
};

} // namespace quilvane
