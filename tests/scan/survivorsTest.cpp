// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/survivors.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace quilvane {

TEST(Survivors, areNeitherPicturesNorDuplicates)
{
    const std::vector<std::string_view> rows{ "a@b.com", "icon@2x.png", "A@b.com", "c@d.de", "ICON@2x.PNG",
        "a@b.com" };
    const auto survives = findSurvivors(
        rows.size(), [&](std::size_t row) { return rows[row]; }, [] {});
    EXPECT_EQ(survives, (std::vector<unsigned char>{ 1, 0, 0, 1, 0, 0 }));
}

} // namespace quilvane
