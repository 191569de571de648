// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/documentText.h"
#include "documents/pdf/pageText.h"
#include "support/WordFileBuilder.h"
#include "text/addressCharacters.h"
#include "text/ascii.h"
#include "text/charset.h"
#include "text/mailLink.h"
#include "text/utf8.h"

#include <gtest/gtest.h>

namespace quilvane {

TEST(Ascii, OnlyItsLettersHaveACase)
{
    EXPECT_TRUE(equalsIgnoringCase("Ab@Z.", "aB@z."));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
    EXPECT_FALSE(equalsIgnoringCase("@[", "`{")) << "only letters have a case";
    EXPECT_FALSE(equalsIgnoringCase("\xC4", "\xE4"));
}

TEST(AddressCharacters, AreTheSameInAllDocuments)
{
    const std::string address = "\uFB01rst\u2011na\u00ADme\uFF20ex\u200Bam\u2010ple.\u2060org";
    const std::string plain = "first-name@exam-ple.org";
    const std::string rtf = R"({\rtf1 \u-1279?rst\_na\-me\u-224?ex\u8203?am\u8208?ple.\u8288?org})";
    const std::string doc = WordFileBuilder{
        { { std::string("\x01\xFB") + wide("rst\x1Ena\x1Fme") + "\x20\xFF" + wide("ex") + "\x0B\x20"
                + wide("am") + "\x10\x20" + wide("ple.") + "\x60\x20" + wide("org"),
            true } }
    }.bytes();
    const std::string xml
        = R"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main">)"
          "<w:p><w:r><w:t>"
        + address + "</w:t></w:r></w:p></w:document>";
    for (const std::string& document : { rtf, doc, xml, "<p>" + address })
        EXPECT_EQ(documentText(document).value_or("(nil)").substr(0, plain.size()), plain)
            << document.substr(0, 9);
    EXPECT_EQ(tidyPageText(address), plain);
    EXPECT_EQ(mailTarget("mailto:non%E2%80%91break@x.org"), "non-break@x.org") << "in a link";
}

TEST(Utf8, OnlyWellFormed)
{
    constexpr char32_t none = Utf8Character::none;
    struct Row {
        std::string_view bytes;
        char32_t code;
    };
    for (const Row& row : { Row{ "a", 'a' }, { "\u00E9", 0xE9 }, { "\u20AC", 0x20AC },
             { "\U0010FFFF", 0x10FFFF }, { "\xC1\x81", none }, { "\xE0\x80\x80", none },
             { "\xED\xA0\x80", none }, { "\xF4\x90\x80\x80", none }, { "\x80", none }, { "\xE2\x82", none },
             { "\xE2\x28\xA1", none }, { "\xFF", none } }) {
        EXPECT_EQ(firstCharacter(row.bytes).code, row.code) << row.bytes;
        EXPECT_EQ(firstCharacter(row.bytes).length, row.code == none ? 1 : row.bytes.size()) << row.bytes;
        std::string encoded;
        appendUtf8(encoded, row.code);
        EXPECT_EQ(encoded, row.code == none ? "\uFFFD" : row.bytes);
    }
}

TEST(Charset, NamesStandForCodePages)
{
    struct Row {
        const char* name;
        std::string_view bytes;
        const char* text;
    };
    openAllConverters();
    for (const Row& row : { Row{ "UTF-8", "\xC3\xA4", "ä" }, { "ISO_8859-1:1987", "\x80", "€" },
             { "latin2", "\xB1", "ą" }, { "Windows-1251", "\xCF", "П" }, { "x-cp1250", "\xB9", "ą" },
             { "iso-8859-15", "\xA4", "€" }, { "iso8859-5", "\xBF", "П" }, { "KOI8-U", "\xF0", "П" },
             { "macintosh", "\x8A", "ä" }, { "shift_jis", "\x83\x40", "ァ" }, { "euc-jp", "\xA5\xA1", "ァ" },
             { "iso-2022-jp", "\x1B$B%!\x1B(B", "ァ" }, { "gb2312", "\xA5\xA1", "ァ" },
             { "big5", "\xA4\xA4", "中" }, { "euc-kr", "\xB0\xA1", "가" }, { "tis-620", "\xA1", "ก" },
             { "utf-16be", std::string_view("\0a", 2), "a" } })
        EXPECT_EQ(toUtf8(row.bytes, codePageNamed(row.name).value_or(0)), row.text) << row.name;
    for (const char* unknown : { "martian", "", "iso-8859-0", "iso-8859-17", "iso-8859-2147483647" })
        EXPECT_FALSE(codePageNamed(unknown)) << unknown;
}

} // namespace quilvane
