// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/DuplicateIndex.h"
#include "scan/pictureName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <strings.h>

namespace quilvane {

namespace {

using Rows = std::vector<std::string>;

/// Removes names of pictures, then compares every pair from the bottom up and removes the lower one of two
/// equal rows.
Rows pairwiseSurvivors(Rows rows)
{
    rows.erase(std::remove_if(rows.begin(), rows.end(), looksLikePictureName), rows.end());
    for (std::size_t i = rows.size(); i-- > 0;) {
        for (std::size_t j = rows.size() - 1; j > i; --j) {
            if (::strcasecmp(rows[i].c_str(), rows[j].c_str()) == 0)
                rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(j));
        }
    }
    return rows;
}

/// Removes from `rows` the rows that do not stay. Returns the number of steps.
int check(DuplicateIndex& index, Rows& rows)
{
    const std::size_t known = index.knownRows();
    DuplicateIndex::Pass pass(
        index, rows.size(), [&rows](std::size_t row) -> std::string_view { return rows[row]; });
    int steps = 1;
    while (pass.step())
        ++steps;
    EXPECT_EQ(pass.firstRow(), known);
    EXPECT_EQ(pass.stays().size(), rows.size() - known);
    std::size_t kept = pass.firstRow();
    for (std::size_t row = pass.firstRow(); row < rows.size(); ++row) {
        if (pass.stays()[row - pass.firstRow()] != 0)
            std::swap(rows[kept++], rows[row]);
    }
    rows.resize(kept);
    EXPECT_EQ(index.knownRows(), rows.size());
    return steps;
}

} // namespace

TEST(DuplicateIndex, keepsTheRowsThatPairwiseComparisonKeeps)
{
    std::mt19937_64 random(4711);
    const auto below = [&random](std::size_t bound) { return random() % bound; };
    // Bytes that are no letters but differ only in the case bit are different: @ and `, [ and {, 0xc1 and
    // 0xe1.
    const std::string_view alphabet = "aAzZ@`[{\xc1\xe1";
    for (int list = 0; list < 200; ++list) {
        DuplicateIndex index({ random(), random() });
        Rows rows;
        const auto longest = 1 + below(20);
        const auto letters = 2 + below(alphabet.size() - 1);
        for (int step = 0; step < 20; ++step) {
            // Often a few rows after many: few rows are handled differently.
            for (auto count = below(4) == 0 ? below(80) : below(6); count > 0; --count) {
                std::string row(below(2) == 0 ? 0 : 8 * below(3), 'x');
                for (auto length = below(longest); length > 0; --length)
                    row += alphabet[below(letters)];
                if (below(20) == 0)
                    row += ".Png";
                rows.push_back(row);
            }
            switch (below(12)) {
            case 0: // the rows are reordered
                std::reverse(rows.begin(), rows.end());
                index.forget();
                break;
            case 1: // rows are removed
                rows.resize(below(rows.size() + 1));
                index.forget();
                break;
            case 2: { // a pass that is not completed
                DuplicateIndex::Pass pass(
                    index, rows.size(), [&rows](std::size_t row) -> std::string_view { return rows[row]; });
                pass.step();
                break;
            }
            case 3: // only added to
                continue;
            default:
                break;
            }
            const Rows expected = pairwiseSurvivors(rows);
            check(index, rows);
            ASSERT_EQ(rows, expected) << list << ' ' << step;
        }
    }
}

// Among so many rows about ten pairs of different rows have the same 32-bit hash, and in each later pass one
// row has the hash of a known one. Only their texts tell them apart, and tell which of a pair another row
// equals.
TEST(DuplicateIndex, tellsRowsOfEqualHashApart)
{
    const auto address = [](const char* user, int i) { return user + std::to_string(i) + "@example.org"; };
    DuplicateIndex index({ 1, 2 });
    Rows rows, expected;
    const auto add = [&](int first, int end) {
        for (int i = first; i < end; ++i) {
            rows.push_back(address("user", i));
            expected.push_back(rows.back());
        }
        for (int i = std::max(0, first - 10'000); i < end; ++i)
            rows.push_back(address("USER", i));
    };
    add(0, 300'000);
    EXPECT_GE(check(index, rows), 10) << "in blocks, as it takes some time";
    EXPECT_TRUE(rows == expected);
    for (int i = 300'000; i < 400'000; i += 4'000) {
        add(i, i + 4'000);
        check(index, rows);
    }
    EXPECT_TRUE(rows == expected);
    index.forget();
    check(index, rows);
    EXPECT_TRUE(rows == expected);
}

TEST(DuplicateIndex, refusesMoreRowsThanItCanNumber)
{
    DuplicateIndex index;
    EXPECT_THROW(DuplicateIndex::Pass(index, 5'000'000'000, nullptr), std::length_error);
}

} // namespace quilvane
