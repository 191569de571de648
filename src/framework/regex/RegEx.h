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

/// A regular expression of Perl's kind, run over bytes: case is ignored and `\b` and `\w` are told for ASCII
/// only,
/// `.` stops at CR and LF.
///
/// Making one costs next to nothing: a pattern is compiled when it is first searched with, and the compiled
/// forms of the last patterns are kept and shared. Set SearchPattern, call Search(text), then Search() until
/// it gives nil.
///
/// Whatever runs a pattern throws RegExSearchPatternException if it is invalid, and RegExException if it
/// needs too much memory on that text, or too many steps on all texts since the pattern was set. How many it
/// may take grows with the texts.
class RegEx {
public:
    RegEx() = default;
    RegEx(const RegEx&) = delete;
    RegEx& operator=(const RegEx&) = delete;

    void setSearchPattern(std::string pattern);
    void setReplacementPattern(std::string replacement) { m_replacementPattern = std::move(replacement); }

    /// The first match in `text`, or nil. `text` is not copied: it must live and stay as it is for as long as
    /// Search() goes on in it.
    Ref<RegExMatch> Search(std::string_view text);

    /// The next match after the previous one, or nil if there is no more or no text was given. After an
    /// empty match the search goes on so that it comes to an end.
    Ref<RegExMatch> Search();

    /// `text` with its first match replaced by ReplacementPattern, which is taken literally: it knows no
    /// back-references. Does not touch the text that Search() goes on in.
    std::string Replace(std::string_view text);

    /// Whether the pattern is found in `text`; allocates nothing once the pattern is compiled. Does not touch
    /// the text that Search() goes on in.
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
    std::size_t m_next = std::string_view::npos; // where Search() goes on in m_text; npos if nothing is left
    bool m_lastWasEmpty = false;
};

} // namespace quilvane
