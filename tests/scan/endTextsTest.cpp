// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/endTexts.h"

#include <gtest/gtest.h>

namespace quilvane {

TEST(EndTexts, tellOneFromMany)
{
    EXPECT_EQ(finishMessage(0), "Finished searching. No email addresses detected.");
    EXPECT_EQ(finishMessage(1), "Finished searching. 1 email detected. Duplicates removed.");
    EXPECT_EQ(finishMessage(2), "Finished searching. 2 emails detected. Duplicates removed.");
    EXPECT_EQ(
        finishMessage(5'000'000'000), "Finished searching. 5000000000 emails detected. Duplicates removed.");
    EXPECT_EQ(totalLabel(1), "Total: 1 entry.");
    EXPECT_EQ(totalLabel(2), "Total: 2 entries.");
}

} // namespace quilvane
