// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/TextPieces.h"

#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <string>

namespace quilvane {

namespace {

std::string_view feed(TextPieces& pieces, std::string_view bytes)
{
    const std::span<char> room = pieces.room();
    EXPECT_GE(room.size(), bytes.size());
    std::memcpy(room.data(), bytes.data(), bytes.size());
    return pieces.take(bytes.size());
}

} // namespace

TEST(TextPieces, areCutAfterTheLastByteThatNoAddressHolds)
{
    TextPieces pieces(64);
    EXPECT_EQ(feed(pieces, "to: a@b.c"), "to: ");
    EXPECT_EQ(feed(pieces, "om"), "");
    EXPECT_EQ(feed(pieces, ""), "");
    EXPECT_EQ(feed(pieces, "\n\xc3\xa4 x"), "a@b.com\n\xc3\xa4 ");
    EXPECT_EQ(pieces.rest(), "x");
    EXPECT_EQ(feed(pieces, "@\n"), "x@\n");
    EXPECT_EQ(pieces.rest(), "");
}

} // namespace quilvane
