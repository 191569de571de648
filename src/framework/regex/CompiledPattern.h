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

/// Limits the cost of running one pattern over all texts of a pass. It counts matching steps and not time, so
/// that the same pattern over the same list always has the same result.
struct MatchingBudget {
    // At most a second's work, or two where PCRE2 interprets the pattern. Grows with the length of each text.
    std::uint64_t stepsLeft = 100'000'000;
    std::size_t runsUncounted = 0; // for so many of the next runs the steps are paid already
};

/// A pattern ready to run, shared by the RegEx objects with this pattern. For one thread only.
class CompiledPattern {
public:
    enum class EmptyAtStart { Allowed, Skipped };

    /// Returns one of the patterns used last, or compiles a new one. Throws RegExSearchPatternException.
    static std::shared_ptr<const CompiledPattern> get(const std::string& pattern);

    /// Throws RegExSearchPatternException.
    explicit CompiledPattern(std::string pattern);
    ~CompiledPattern();
    CompiledPattern(const CompiledPattern&) = delete;
    CompiledPattern& operator=(const CompiledPattern&) = delete;

    const std::string& pattern() const { return m_pattern; }

    /// The text to be found, if the pattern is only that; else null.
    const LiteralText* literal() const;

    /// Looks for the first match that begins at `start` or after it; `start` is at most the size of the text.
    /// Returns the begin and end offsets of the whole match, then of each group (`unset` for one that took no
    /// part); empty if there is no match. Valid until the pattern is run again. Throws RegExException, also
    /// if the budget is used up.
    std::span<const std::size_t> run(std::string_view text, MatchingBudget& budget, std::size_t start = 0,
        EmptyAtStart empty = EmptyAtStart::Allowed) const;

    static constexpr std::size_t unset = ~std::size_t(0);

private:
    struct Native;

    std::string m_pattern;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane
