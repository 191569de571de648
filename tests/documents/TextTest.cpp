// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/ascii.h"

#include <gtest/gtest.h>

namespace quilvane {

TEST(Ascii, OnlyItsLettersHaveACase)
{
    EXPECT_TRUE(equalsIgnoringCase("Ab@Z.", "aB@z."));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
    EXPECT_FALSE(equalsIgnoringCase("@[", "`{")) << "only letters have a case";
    EXPECT_FALSE(equalsIgnoringCase("\xC4", "\xE4"));
}

} // namespace quilvane
