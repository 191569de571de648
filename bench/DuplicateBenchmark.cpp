// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Duplicate removal against a hash set of the standard library over folded text, over the same rows.
#include "scan/DuplicateFinder.h"
#include "support/race.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace {

using namespace quilvane;

/// Rows as a list keeps them: texts one behind the other, with the place of each.
class Rows {
public:
    Rows(std::size_t count, unsigned percentDuplicates)
    {
        std::mt19937_64 random(count + percentDuplicates);
        std::vector<std::size_t> ends;
        ends.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const bool isDuplicate = i > 0 && random() % 100 < percentDuplicates;
            m_text += addressOf(isDuplicate ? random() % i : i);
            ends.push_back(m_text.size());
        }
        std::size_t begin = 0;
        for (const std::size_t end : ends) {
            m_rows.push_back(std::string_view(m_text).substr(begin, end - begin));
            begin = end;
        }
    }

    std::size_t size() const { return m_rows.size(); }
    std::string_view operator[](std::size_t row) const { return m_rows[row]; }

private:
    static std::string addressOf(std::uint64_t person)
    {
        return "Person." + std::to_string(person * 2'654'435'761 % 10'000'000'019) + "@mail.example.org";
    }

    std::string m_text;
    std::vector<std::string_view> m_rows;
};

std::size_t countWithFinder(const Rows& rows)
{
    DuplicateFinder finder(rows.size(), [&](std::size_t row) { return rows[row]; });
    std::array<unsigned char, 256> isFirst;
    std::size_t count = 0;
    for (std::size_t begin = 0; begin < rows.size(); begin += isFirst.size()) {
        const auto block = std::span(isFirst).first(std::min(isFirst.size(), rows.size() - begin));
        finder.mark(block);
        count += static_cast<std::size_t>(std::count(block.begin(), block.end(), 1));
    }
    return count;
}

std::size_t countWithStandardSet(const Rows& rows)
{
    std::unordered_set<std::string> seen;
    seen.reserve(rows.size());
    std::size_t count = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        std::string folded(rows[row]);
        for (char& byte : folded) {
            if (byte >= 'A' && byte <= 'Z')
                byte = static_cast<char>(byte - 'A' + 'a');
        }
        count += seen.insert(std::move(folded)).second ? 1U : 0U;
    }
    return count;
}

/// Gives the finder's time in seconds.
double compareOn(std::size_t count, unsigned percentDuplicates, double goalNanoseconds)
{
    const Rows rows(count, percentDuplicates);
    std::array contenders{
        Contender{ "finder", [&] { return countWithFinder(rows); } },
        Contender{ "std::unordered_set", [&] { return countWithStandardSet(rows); } },
    };
    race(contenders, count > 1'000'000 ? 3 : 7);

    const double finder = contenders[0].fastestSeconds;
    const double standard = contenders[1].fastestSeconds;
    const double perRow = 1e9 / static_cast<double>(count);
    std::printf(
        "%8zu rows, %2u %% duplicates: %6.1f ns a row, std::unordered_set %6.1f; ratio %5.2f goal 2 %s",
        count, percentDuplicates, finder * perRow, standard * perRow, standard / finder,
        verdict(standard >= 2 * finder));
    if (goalNanoseconds != 0)
        std::printf("; goal %.0f ns %s", goalNanoseconds, verdict(finder * perRow <= goalNanoseconds));
    std::puts(contenders[0].result == contenders[1].result ? "" : "; DIFFERENT RESULTS");
    return finder;
}

} // namespace

int main()
{
    for (const unsigned percentDuplicates : { 0U, 50U }) {
        compareOn(10'000, percentDuplicates, 0);
        compareOn(100'000, percentDuplicates, 0);
        const double half = compareOn(500'000, percentDuplicates, 0);
        compareOn(1'000'000, percentDuplicates, 150);
        const double full = compareOn(5'000'000, percentDuplicates, 0);
        std::printf(
            "5 M rows by 500 k: %.2f times the time, goal 12 %s\n", full / half, verdict(full <= 12 * half));
    }
}
