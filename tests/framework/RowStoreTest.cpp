// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/RowStore.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

using Texts = std::vector<std::string>;

Texts textsOf(const RowStore& rows)
{
    Texts texts;
    for (std::size_t row = 0; row < rows.size(); ++row)
        texts.emplace_back(rows[row]);
    return texts;
}

} // namespace

TEST(RowStore, behavesLikeAPlainList)
{
    std::minstd_rand random(1);
    const auto below = [&random](std::size_t bound) { return random() % bound; };
    // Up to two and a half chunks of rows, of all lengths from 0 on.
    const auto add = [&below](RowStore& rows, Texts& texts) {
        const std::size_t longest = below(8) == 0 ? 300 : 30;
        for (std::size_t left = below(8) == 0 ? below(10'000) : below(300); left > 0; --left) {
            texts.push_back(below(50) == 0 ? "" : std::string(below(longest), 'x') + std::to_string(left));
            rows.append(texts.back());
        }
    };
    RowStore rows;
    Texts texts;
    for (int round = 0; round < 300; ++round) {
        add(rows, texts);
        RowStore others;
        Texts otherTexts;
        switch (below(6)) {
        case 0:
            add(others, otherTexts);
            rows.take(std::move(others));
            EXPECT_TRUE(others.empty()); // NOLINT(bugprone-use-after-move): it is promised to be empty
            texts.insert(texts.end(), otherTexts.begin(), otherTexts.end());
            break;
        case 1: {
            add(others, otherTexts);
            const std::size_t first = below(others.size() + 1);
            rows.append(others, first);
            texts.insert(texts.end(), otherTexts.begin() + std::ptrdiff_t(first), otherTexts.end());
            break;
        }
        case 2:
            texts.resize(texts.size() - below(texts.size() / (1 + below(8)) + 1));
            rows.truncate(texts.size());
            break;
        case 3: {
            const std::size_t first = below(texts.size() + 1);
            const std::size_t percent = below(101);
            std::vector<unsigned char> stays(texts.size() - first);
            Texts kept(texts.begin(), texts.begin() + std::ptrdiff_t(first));
            for (std::size_t i = 0; i < stays.size(); ++i) {
                stays[i] = below(100) < percent ? 1 : 0;
                if (stays[i] != 0)
                    kept.push_back(texts[first + i]);
            }
            rows.retain(first, stays);
            texts = std::move(kept);
            break;
        }
        default:
            break;
        }
        if (texts.size() > 50'000) {
            rows.clear();
            texts.clear();
        }
        ASSERT_TRUE(textsOf(rows) == texts) << round;
    }
}

} // namespace quilvane
