// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/windowScale.h"

#include <gtest/gtest.h>

namespace quilvane {

TEST(WindowScaleTest, followsTheTextSizeWithinTheScreen)
{
    constexpr QSize window(600, 650);
    constexpr QSize large(1900, 1000);
    struct Case {
        const char* name;
        int textSize;
        QSize room;
        double unit;
        bool scrolls;
    };
    const Case cases[] = {
        { "a pixel less is as designed", 12, large, 1, false },
        { "a pixel more is as designed", 14, large, 1, false },
        { "larger text", 19, large, 19 / 13.0, false },
        { "smaller text", 10, large, 10 / 13.0, false },
        { "larger text on a small screen", 19, { 1350, 702 }, 1.08, false },
        { "a screen that is a little too low", 13, { 1350, 585 }, 0.9, false },
        { "a screen that is a little too narrow", 13, { 540, 1000 }, 0.9, false },
        { "a screen that would make the text unreadable", 13, { 670, 310 }, 1, true },
        { "the same with a larger text", 19, { 670, 310 }, 1, true },
        { "the same with a smaller text", 8, { 670, 310 }, 8 / 13.0, true },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const WindowScale scale = windowScale(c.textSize, window, c.room);
        EXPECT_DOUBLE_EQ(scale.unit, c.unit);
        EXPECT_EQ(scale.scrolls, c.scrolls);
    }
}

} // namespace quilvane
