// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <limits>
#include <span>
#include <string>

namespace quilvane {

/// One of several ways to do the same work.
struct Contender {
    std::string name;
    /// Does the work once and returns a number that depends on it, so that no compiler can leave it out.
    std::function<std::size_t()> run;
    double fastestSeconds = std::numeric_limits<double>::infinity();
    std::size_t result = 0;
};

/// Lets the contenders run in turn, so that other load of the machine affects all of them; the fastest round
/// counts. `before` is called before every run and is not timed.
inline void race(
    std::span<Contender> contenders, int rounds, const std::function<void()>& before = [] {})
{
    using Clock = std::chrono::steady_clock;
    for (int round = 0; round < rounds; ++round) {
        for (Contender& contender : contenders) {
            before();
            const Clock::time_point start = Clock::now();
            contender.result = contender.run();
            const std::chrono::duration<double> elapsed = Clock::now() - start;
            contender.fastestSeconds = std::min(contender.fastestSeconds, elapsed.count());
        }
    }
}

/// "met" or "MISSED".
inline const char* verdict(bool isMet)
{
    return isMet ? "met" : "MISSED";
}

} // namespace quilvane
