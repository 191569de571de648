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

class RandomRows {
public:
    explicit RandomRows(unsigned seed)
        : m_random(seed)
    {
    }

    std::size_t below(std::size_t bound) { return m_random() % bound; }

    /// Adds up to two and a half chunks of rows, of all lengths from 0 on.
    void add(RowStore& rows, Texts& texts)
    {
        const std::size_t longest = below(8) == 0 ? 300 : 30;
        for (std::size_t left = below(8) == 0 ? below(10'000) : below(300); left > 0; --left) {
            texts.push_back(std::string(below(longest), 'x') + std::to_string(texts.size()));
            if (below(50) == 0)
                texts.back().clear();
            rows.append(texts.back());
        }
    }

private:
    std::minstd_rand m_random;
};

} // namespace

TEST(RowStore, behavesLikeAPlainList)
{
    RandomRows random(1);
    RowStore rows;
    Texts texts;
    for (int round = 0; round < 300; ++round) {
        random.add(rows, texts);
        RowStore others;
        Texts otherTexts;
        switch (random.below(6)) {
        case 0:
            random.add(others, otherTexts);
            rows.take(std::move(others));
            EXPECT_TRUE(others.empty()); // NOLINT(bugprone-use-after-move): it is promised to be empty
            texts.insert(texts.end(), otherTexts.begin(), otherTexts.end());
            break;
        case 1: {
            random.add(others, otherTexts);
            const std::size_t first = random.below(others.size() + 1);
            rows.append(others, first);
            texts.insert(texts.end(), otherTexts.begin() + std::ptrdiff_t(first), otherTexts.end());
            break;
        }
        case 2:
            texts.resize(
                random.below(4) == 0 ? random.below(texts.size() + 1) : texts.size() - texts.size() / 9);
            rows.truncate(texts.size());
            break;
        case 3: {
            const std::size_t first = random.below(texts.size() + 1);
            const std::size_t percent = random.below(101);
            std::vector<unsigned char> stays(texts.size() - first);
            Texts kept(texts.begin(), texts.begin() + std::ptrdiff_t(first));
            for (std::size_t i = 0; i < stays.size(); ++i) {
                stays[i] = random.below(100) < percent ? 1 : 0;
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
