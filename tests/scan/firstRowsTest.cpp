// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/firstRows.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <strings.h>

namespace quilvane {

namespace {

bool equalAsTextIs(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && ::strncasecmp(a.data(), b.data(), a.size()) == 0;
}

/// Every pair is compared from the bottom up and the lower of two equal rows is taken out.
std::vector<std::string> pairwiseSurvivors(std::vector<std::string> rows)
{
    for (auto i = std::ssize(rows) - 1; i >= 0; --i) {
        for (auto j = std::ssize(rows) - 1; j > i; --j) {
            if (equalAsTextIs(rows[static_cast<std::size_t>(i)], rows[static_cast<std::size_t>(j)]))
                rows.erase(rows.begin() + j);
        }
    }
    return rows;
}

std::vector<std::string> firstRows(const std::vector<std::string>& rows, HashSeed seed)
{
    const auto isFirst = findFirstRows(
        rows.size(), [&](std::size_t row) { return std::string_view(rows[row]); }, [] {}, seed);
    std::vector<std::string> result;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        EXPECT_LE(isFirst[row], 1);
        if (isFirst[row] == 1)
            result.push_back(rows[row]);
    }
    return result;
}

} // namespace

TEST(FirstRows, areWhatThePairwiseWalkKeeps)
{
    std::mt19937_64 random(4711);
    // Bytes that differ in the case bit alone and are no letters must stay apart: @ and `, [ and {, 0xc1 and
    // 0xe1.
    const std::string_view alphabet = "aAzZ@`[{\xc1\xe1";
    for (int round = 0; round < 2'000; ++round) {
        std::vector<std::string> rows(random() % 200);
        const auto longest = 1 + random() % 20;
        const auto letters = 2 + random() % (alphabet.size() - 1);
        for (std::string& row : rows) {
            row.assign(random() % 2 == 0 ? 0 : 8 * (random() % 3), 'x');
            for (auto length = random() % longest; length > 0; --length)
                row += alphabet[random() % letters];
        }
        ASSERT_EQ(firstRows(rows, { random(), random() }), pairwiseSurvivors(rows)) << round;
    }
}

// So many rows are worked on in several parts, and about ten pairs of different ones have the same 32-bit
// hash: it takes their texts to tell them apart, and to tell the later rows that equal one of such a pair.
TEST(FirstRows, areToldApartWhenTheirHashesAreEqual)
{
    std::vector<std::string> rows;
    for (int i = 0; i < 300'000; ++i)
        rows.push_back("user" + std::to_string(i) + "@example.org");
    const std::vector<std::string> differentRows = rows;
    for (std::size_t i = 0; i < differentRows.size(); ++i)
        rows.push_back("USER" + differentRows[i].substr(4));
    EXPECT_TRUE(firstRows(rows, { 1, 2 }) == differentRows);
}

TEST(FirstRows, areFoundInBlocks)
{
    int blocks = 0;
    findFirstRows(
        1'000, [](std::size_t) { return std::string_view("a@b.com"); }, [&] { ++blocks; });
    EXPECT_GE(blocks, 3);
    EXPECT_THROW(findFirstRows(5'000'000'000, nullptr, nullptr), std::length_error);
}

} // namespace quilvane
