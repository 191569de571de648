// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/expectTexts.h"
#include "documents/pdf/MessageFilter.h"
#include "documents/pdf/pageText.h"
#include "documents/reader/messages.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quilvane {

namespace {

TEST(PageText, IsTidiedForAddresses)
{
    const std::string longWord(100'000, 'a');
    expectTexts([](std::string_view text) { return std::optional(tidyPageText(text)); },
        {
            { "lines stay", "one\ntwo\n", "one\ntwo" },
            { "form feed at the end", "a\n\f", "a" },
            { "ligatures", "\uFB00 \uFB01 \uFB02 \uFB03 \uFB04 \uFB05 \uFB06", "ff fi fl ffi ffl st st" },
            { "full-width", "ａ．Ｚ＠ｂ～！", "a.Z@b~!" },
            { "hyphens", "a\u2010b\u2011c\u2013", "a-b-c\u2013" },
            { "invisible", "\uFEFFa\u00AD@\u200Bb\u200D.\u2060c\u200E", "a@b.c" },
            { "others", "é\U0001F600\xFF\xE2\x80z\xC2", "é\U0001F600\xFF\xE2\x80z\xC2" },
            { "after @", "me@\nexample.com", "me@example.com" },
            { "after a dot", "me@example.\ncom", "me@example.com" },
            { "after a hyphen", "me@print-\nShop.example.com", "me@print-Shop.example.com" },
            { "thrice", "me@\na-\nb.\nde", "me@a-b.de" },
            { "whole, then a sentence", "me@example.com.\nand", "me@example.com.\nand" },
            { "whole, then a hyphen", "me@example.com-\nand", "me@example.com-\nand" },
            { "top level of one letter", "me@example.c.\nom", "me@example.c.om" },
            { "top level with a digit", "me@example.co1.\nuk", "me@example.co1.uk" },
            { "a new sentence", "me@example.\nThe end", "me@example.\nThe end" },
            { "an empty line", "me@\n\nexample.com", "me@\n\nexample.com" },
            { "no address", "well-\nknown. yes.\nno", "well-\nknown. yes.\nno" },
            { "hyphen before the @", "first-\nlast@example.com", "first-\nlast@example.com" },
            { "a word too long for an address", "me@" + longWord + "-\nb.com",
                "me@" + longWord + "-\nb.com" },
        });
}

TEST(MessageFilter, GivesEachMessageOnceAndNotTooMany)
{
    MessageFilter filter;
    filter.add("Bad object 12 at 7");
    filter.add("Bad object 3456 at 89");
    filter.add(std::string(1000, 'x'));
    EXPECT_EQ(filter.take(),
        (std::vector<std::string>{ "Bad object 12 at 7", std::string(longestPdfMessage, 'x') }));
    filter.add("Bad object 1 at 2");
    for (char c = 'a'; c <= 'z'; ++c)
        filter.add(std::string(1, c));
    EXPECT_EQ(filter.take().size(), mostPdfMessages - 2);
}

} // namespace

} // namespace quilvane
