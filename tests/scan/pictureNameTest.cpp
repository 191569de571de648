// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/pictureName.h"
#include "support/PatternOracle.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

namespace quilvane {

TEST(PictureName, isWhatThePatternFinds)
{
    const PatternOracle oracle(PatternOracle::picturePattern);
    std::mt19937_64 random(20240229);
    // 0 differs from P, and 0xf0 from p, in one bit only. The zero byte at the end belongs to the alphabet.
    constexpr char alphabet[] = "pngPNGx.\n\r0\x80\xf0";
    std::string text;
    int found = 0;
    for (int round = 0; round < 300'000; ++round) {
        text.clear();
        for (auto length = random() % 12; length > 0; --length)
            text += alphabet[random() % std::size(alphabet)];
        const bool expected = oracle.find(text).data() != nullptr;
        ASSERT_EQ(looksLikePictureName(text), expected) << testing::PrintToString(text);
        found += expected ? 1 : 0;
    }
    EXPECT_GT(found, 1'000);
}

} // namespace quilvane
