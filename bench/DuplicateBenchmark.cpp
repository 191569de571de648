// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Duplicate removal compared with a hash set of the standard library over case-folded text, on the same rows.
#include "scan/DuplicateIndex.h"
#include "support/race.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <malloc.h>

namespace {

using namespace quilvane;

/// Rows as a list keeps them: texts one after the other, with the place of each.
class Rows {
public:
    Rows(std::size_t count, unsigned percentDuplicates)
    {
        std::mt19937_64 random(count + percentDuplicates);
        std::vector<std::uint64_t> persons;
        std::vector<std::size_t> ends;
        for (std::size_t i = 0; i < count; ++i) {
            const bool isDuplicate = i > 0 && random() % 100 < percentDuplicates;
            persons.push_back(isDuplicate ? persons[random() % i] : i);
            m_text += addressOf(persons.back());
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

void passOver(const Rows& rows, DuplicateIndex& index)
{
    DuplicateIndex::Pass pass(index, rows.size(), [&](std::size_t row) { return rows[row]; });
    while (pass.step()) { }
}

std::size_t countDistinctRows(const Rows& rows)
{
    DuplicateIndex index;
    passOver(rows, index);
    return index.knownRows();
}

/// In bytes; what malloc() has given out.
std::size_t usedMemory()
{
    const struct mallinfo2 heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

void printMemory()
{
    constexpr std::size_t megabyte = std::size_t(1) << 20;
    constexpr std::size_t most = 80;
    const Rows rows(5'000'000, 0);
    DuplicateIndex index;
    const std::size_t before = usedMemory();
    passOver(rows, index);
    const std::size_t megabytes = (usedMemory() - before) / megabyte;
    std::printf(
        "the index of 5 M rows stays in %zu MB, goal %zu %s\n", megabytes, most, verdict(megabytes <= most));
}

/// A list that grows by the rows of one file after another, with a duplicate check after each.
class GrowingList {
public:
    /// Starts with the first `count` of the rows.
    GrowingList(const Rows& rows, std::size_t count)
        : m_rows(rows)
    {
        add(count, 0);
    }

    /// Adds rows that are not in the list, then some that are. Returns the number of those that stay.
    std::size_t add(std::size_t newRows, std::size_t oldRows)
    {
        const std::size_t before = m_list.size();
        for (; newRows > 0; --newRows)
            m_list.push_back(m_rows[m_next++]);
        for (; oldRows > 0; --oldRows)
            m_list.push_back(m_rows[oldRows * 7919 % m_next]);
        DuplicateIndex::Pass pass(m_index, m_list.size(), [this](std::size_t row) { return m_list[row]; });
        while (pass.step()) { }
        std::size_t end = before;
        for (std::size_t row = before; row < m_list.size(); ++row) {
            if (pass.stays()[row - before] != 0)
                m_list[end++] = m_list[row];
        }
        m_list.resize(end);
        return end - before;
    }

private:
    const Rows& m_rows;
    std::size_t m_next = 0;
    std::vector<std::string_view> m_list;
    DuplicateIndex m_index;
};

/// One file of 100 rows, half of them known, on a long list and on an empty one.
void compareOneFile()
{
    const Rows rows(5'100'000, 0);
    GrowingList longList(rows, 5'000'000);
    std::array contenders{
        Contender{ "5 M", [&] { return longList.add(50, 50); } },
        Contender{ "empty", [&] { return GrowingList(rows, 0).add(50, 50); } },
    };
    race(contenders, 1'000);
    const double ours = contenders[0].fastestSeconds;
    const double onEmpty = contenders[1].fastestSeconds;
    std::printf("100 rows on 5 M take %.3f ms, on none %.3f ms; ratio %.2f, goal 2 or under 5 ms %s%s\n",
        ours * 1e3, onEmpty * 1e3, ours / onEmpty, verdict(ours <= 2 * onEmpty || ours < 5e-3),
        contenders[0].result == 50 && contenders[1].result == 50 ? "" : "; DIFFERENT RESULTS");
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

/// `goal` is in nanoseconds a row; 0: none.
void compareOn(const Rows& rows, double goal)
{
    std::array contenders{
        Contender{ "first pass", [&] { return countDistinctRows(rows); } },
        Contender{ "std::unordered_set", [&] { return countWithStandardSet(rows); } },
    };
    race(contenders, rows.size() > 1'000'000 ? 3 : 7);

    const auto& [ours, standard] = contenders;
    const double perRow = ours.fastestSeconds * 1e9 / static_cast<double>(rows.size());
    const double ratio = standard.fastestSeconds / ours.fastestSeconds;
    std::printf(
        "%8zu rows, %8zu of them duplicates: %5.1f ns a row", rows.size(), rows.size() - ours.result, perRow);
    if (goal != 0)
        std::printf(", goal %.0f %s", goal, verdict(perRow <= goal));
    std::printf("; std::unordered_set %5.2f times as long, goal 2 %s", ratio, verdict(ratio >= 2));
    std::puts(ours.result == standard.result ? "" : "; DIFFERENT RESULTS");
}

void compareGrowth(const Rows& half, const Rows& five)
{
    std::array contenders{
        Contender{ "500 k", [&] { return countDistinctRows(half); } },
        Contender{ "5 M", [&] { return countDistinctRows(five); } },
    };
    race(contenders, 15);
    const double growth = contenders[1].fastestSeconds / contenders[0].fastestSeconds;
    std::printf("5 M rows, %zu of them duplicates, take %.2f times as long as 500 k, goal 12 %s\n",
        five.size() - contenders[1].result, growth, verdict(growth <= 12));
}

} // namespace

int main()
{
    // From small to large: the standard set leaves a fragmented heap, which would slow down the next run.
    for (const std::size_t count : { 10'000U, 100'000U, 1'000'000U, 5'000'000U }) {
        for (const unsigned percentDuplicates : { 0U, 50U })
            compareOn(Rows(count, percentDuplicates), count == 1'000'000 ? 150 : 0);
    }
    for (const unsigned percentDuplicates : { 0U, 50U })
        compareGrowth(Rows(500'000, percentDuplicates), Rows(5'000'000, percentDuplicates));
    compareOneFile();
    printMemory();
}
