// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace quilvane {

class LiteralText;

/// What the runs of a pattern over all texts of one pass may cost. It counts steps of matching and never
/// time, so that the same pattern over the same list always ends alike.
struct MatchingBudget {
    // A second's work at most, and two where PCRE2 interprets the pattern. Each byte searched adds to it.
    std::uint64_t stepsLeft = 100'000'000;
    std::size_t runsUncounted = 0; // so many of the next runs are paid already
};

/// A pattern ready to run; what RegEx objects of one pattern share. For one OS thread only.
class CompiledPattern {
public:
    enum class EmptyAtStart { Allowed, Skipped };

    /// From the store of the last patterns used, or compiled now. Throws RegExSearchPatternException.
    static std::shared_ptr<const CompiledPattern> get(const std::string& pattern);

    /// Throws RegExSearchPatternException.
    explicit CompiledPattern(std::string pattern);
    ~CompiledPattern();
    CompiledPattern(const CompiledPattern&) = delete;
    CompiledPattern& operator=(const CompiledPattern&) = delete;

    const std::string& pattern() const { return m_pattern; }

    /// Null if the pattern is more than a text to be found.
    const LiteralText* literal() const;

    /// Looks for the first match that begins at `start` or after it; `start` is at most the size of the text.
    /// Gives pairs of begin and end offsets, for the whole match and for each bracket (`unset` for one that
    /// took no part), or nothing if there is no match. They hold until the pattern is run again. Throws
    /// RegExException, also if the budget is used up.
    std::span<const std::size_t> run(std::string_view text, MatchingBudget& budget, std::size_t start = 0,
        EmptyAtStart empty = EmptyAtStart::Allowed) const;

    static constexpr std::size_t unset = ~std::size_t(0);

private:
    struct Native;

    std::string m_pattern;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane
