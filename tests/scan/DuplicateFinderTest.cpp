// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/DuplicateFinder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <cstddef>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

namespace {

bool equalAsTextIs(std::string_view a, std::string_view b)
{
    const auto lower = [](char byte) { return byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte; };
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
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

/// What stays of the rows when they are marked in blocks of blockSize rows.
std::vector<std::string> survivors(
    const std::vector<std::string>& rows, std::size_t blockSize, DuplicateFinder::Seed seed)
{
    DuplicateFinder finder(
        rows.size(), [&](std::size_t row) { return std::string_view(rows[row]); }, seed);
    std::vector<std::string> result;
    std::vector<unsigned char> isFirst;
    for (std::size_t begin = 0; begin < rows.size(); begin += blockSize) {
        isFirst.assign(std::min(blockSize, rows.size() - begin), 2);
        finder.mark(isFirst);
        for (std::size_t i = 0; i < isFirst.size(); ++i) {
            EXPECT_LE(isFirst[i], 1);
            if (isFirst[i] == 1)
                result.push_back(rows[begin + i]);
        }
    }
    return result;
}

} // namespace

TEST(DuplicateFinder, keepsWhatThePairwiseWalkKeeps)
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
        const std::size_t blockSize = 1 + random() % 150;
        ASSERT_EQ(survivors(rows, blockSize, { random(), random() }), pairwiseSurvivors(rows)) << round;
    }
}

// Among so many rows about ten pairs have the same 32-bit hash, so it takes the texts to tell them apart.
TEST(DuplicateFinder, keepsDifferentRowsOfEqualHash)
{
    std::vector<std::string> rows;
    for (int i = 0; i < 300'000; ++i)
        rows.push_back("user" + std::to_string(i) + "@example.org");
    EXPECT_EQ(survivors(rows, 256, { 1, 2 }).size(), rows.size());
}

TEST(DuplicateFinder, refusesMoreRowsThanThereAre)
{
    DuplicateFinder finder(2, [](std::size_t) { return std::string_view("a@b.com"); });
    std::vector<unsigned char> isFirst(2);
    finder.mark(isFirst);
    EXPECT_EQ(isFirst, (std::vector<unsigned char>{ 1, 0 }));
    EXPECT_THROW(finder.mark(std::span(isFirst).first(1)), std::length_error);
    EXPECT_THROW(DuplicateFinder(3'000'000'000, nullptr), std::length_error);
}

} // namespace quilvane
