// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/binaryWord.h"
#include "documents/documentText.h"
#include "documents/expectTexts.h"
#include "documents/word/rtf.h"
#include "documents/word/textRuns.h"
#include "support/TempFolder.h"
#include "support/WordFileBuilder.h"

#include <gtest/gtest.h>

#include <random>

namespace quilvane {

namespace {

using Document = WordFileBuilder;

std::string sample(const std::string& name)
{
    return TempFolder::contentOf(QUILVANE_SAMPLES "/" + name);
}

/// Whether the text holds the address, with no letter or digit next to it.
bool holdsAddress(const std::string& text, const std::string& address)
{
    const std::size_t at = text.find(address);
    const auto isEdge = [&text](std::size_t i) { return i >= text.size() || !std::isalnum(text[i]); };
    return at != std::string::npos && isEdge(at - 1) && isEdge(at + address.size());
}

TEST(BinaryWord, RealDocumentsGiveEveryAddressWhole)
{
    for (const char* name : { "letter.doc", "letter.rtf", "letter.docx" }) {
        const std::string text = documentText(sample(name)).value_or("");
        for (const char* address :
            { "body@example.com", "link@example.net", "header@example.org", "footer@example.org",
                "footnote@example.org", "endnote@example.org", "comment@example.org", "non-break@example.org",
                "split@example.com", "cell1@example.com", "cell2@example.com", "box@example.com" })
            EXPECT_TRUE(holdsAddress(text, address)) << name << ": " << address << " in\n" << text;
        EXPECT_EQ(text.find("deleted@"), std::string::npos) << name;
        EXPECT_NE(text.find("— grüße aus Köln —"), std::string::npos) << name;
    }
}

TEST(BinaryWord, ReadsTheTextOfThePieces)
{
    const std::string mailField = "a\x13 HYPERLINK \"mailto:m%40x.org?s\" \x14link\x15 b\rc";
    const std::string nested = "\x13 HYPERLINK \"\x13 REF x \x14http://x.org\x15\" \x14n@x.org\x15.";
    constexpr unsigned deletionValue = 0x0100 | 0x41 << 1;
    const std::string deletion("\0\x08\1", 3);
    struct Row {
        const char* name;
        Document document;
        std::string text;
    };
    for (const Row& row :
        {
            Row{ "8-bit, always Western", { { { "\x80 \xE9\x96", false } }, 193, 0, 0x0419 }, "€ é–" },
            Row{ "16-bit", { { { wide("a@") + "\x20\x04\x3D\xD8\x01\xDE", true } } }, "a@Р😁" },
            Row{ "an address over three pieces", { { { "a@" }, { wide("b."), true }, { "org" } } },
                "a@b.org" },
            Row{ "special characters", { { { "a\001b\002c\005\010d\007e\013f\036g\037h\240i\255j\014k" } } },
                "a b cd\te\nf-gh ij\nk" },
            Row{ "the mail link", { { { mailField } } }, "alink b\nm@x.org?s\nc" },
            Row{ "another link, a field in its code", { { { nested } } }, "n@x.org." },
            Row{ "a code that holds an address", { { { "\x13QUOTE q@x.org\x15.\r" } } }, ".\nQUOTE q@x.org" },
            Row{ "a field without an end", { { { "a\023 b@c.org\rd" } } }, "a\n b@c.org\nd" },
            Row{ "marks without a field", { { { "a\024b\025c" } } }, "abc" },
            Row{
                "deep fields", { { { std::string(5000, '\x13') + std::string(5000, '\x15') + "a" } } }, "a" },
            Row{ "deleted characters", { { { "a" }, { wide("x@"), true, 0, true }, { "b" } } }, "ab" },
            Row{ "a deleted piece", { { { "a" }, { "x", false, deletionValue }, { "b" } } }, "ab" },
            Row{ "a piece deleted by a list",
                { { { "a" }, { "x", false, 1 }, { "b", false, 3 } }, 193, 0, 0, "\x2A\x48\1\1" + deletion },
                "ab" },
            Row{ "a list that takes the mark back",
                { { { "a", false, 1 } }, 193, 0, 0, deletion + std::string("\0\x08\0", 3) }, "a" },
            Row{ "names in other cases", { { { "a" } }, 193, 0x0200, 0, {}, true, "WORDDOCUMENT", "1tABLE" },
                "a" },
            Row{ "Word 95, Russian", { { { "\xCF@x.org\x07" } }, 104, 0, 0x0419 }, "П@x.org" },
            Row{ "Word 95, deleted", { { { "a" }, { "x", false, 0, true }, { "b" } }, 104 }, "ab" },
            Row{ "Word 6 without a piece table", { { { "a@b.org\r" } }, 101, 0, 0, {}, false }, "a@b.org" },
            Row{ "Word 95, Japanese, 16-bit", { { { wide("a@x.org"), true } }, 104, 0x5000, 0x0411 },
                "a@x.org" },
            Row{ "Word 6, Japanese, 8-bit", { { { "\x83@ a" } }, 101, 0, 0x0411 }, "ァ a" },
            Row{ "encrypted", { { { "a@b.org" } }, 193, 0x0100 }, "(nil)" },
            Row{ "encrypted, Word 95", { { { "a@b.org" } }, 104, 0x0100 }, "(nil)" },
        })
        expectTexts(textOfBinaryWord, { { row.name, row.document.bytes(), row.text } });
}

TEST(BinaryWord, ReadsWord2)
{
    expectTexts(documentText,
        {
            { "in one piece", word2File({ "a@x.org\r\x13 HYPERLINK mailto:b@x.org \x14", "c\x15" }),
                "a@x.org\nc\nb@x.org" },
            { "fast-saved", word2File({ "a@", "x.", "org" }, 4), "a@x.org" },
            { "Russian", word2File({ "\xCF" }, 0, 0x419), "П" },
            { "encrypted", word2File({ "a@x.org" }, 0x100), "(nil)" },
            { "cut off", word2File({ "a@x.org", std::string(600, '\r') }).substr(0, 400), "a@x.org" },
            { "without its table", word2File({ "kept@", "x.org" }, 4).substr(0, 394), "x.orgkept@" },
        });
}

TEST(BinaryWord, OtherFilesGiveNothing)
{
    const std::string document(4096, 'x');
    EXPECT_FALSE(textOfBinaryWord("plain text"));
    EXPECT_FALSE(textOfBinaryWord(compoundFile({ { "Workbook", document } })));
    EXPECT_FALSE(textOfBinaryWord(compoundFile({ { "WordDocument", document } })));
    EXPECT_FALSE(textOfRtf("{\\rt"));
}

TEST(BinaryWord, DamagedFilesGiveOnlyTheirRuns)
{
    const std::string whole = sample("letter.doc");
    const std::size_t boxAt = whole.find(wide("box@example.com"));
    ASSERT_NE(boxAt, std::string::npos);
    for (std::size_t tenth = 0; tenth < 10; ++tenth) {
        const std::string_view cut = std::string_view(whole).substr(0, whole.size() * tenth / 10);
        EXPECT_FALSE(textOfBinaryWord(cut)) << tenth;
        EXPECT_EQ(holdsAddress(textRuns(cut), "box@example.com"), cut.size() > boxAt + 30) << tenth;
    }
    Document document{ { { "kept@example.org" } } };
    document.hasPieceTable = false;
    EXPECT_FALSE(textOfBinaryWord(document.bytes())) << "no piece table";
    document.tableName = "2Table";
    EXPECT_FALSE(textOfBinaryWord(document.bytes())) << "no table stream";
}

/// Each must only end without harm; the result does not matter.
TEST(BinaryWord, ForgedFilesEnd)
{
    const std::string whole = Document{ { { std::string(3000, 'a') } } }.bytes();
    const std::size_t tableSector = whole.size() - 512;
    std::string circle = whole;
    for (std::size_t at = tableSector; at < whole.size(); at += 4)
        patch(circle, at, littleEndian((at - tableSector) / 4, 4)); // each sector is followed by itself
    textOfBinaryWord(circle);
    std::string listCircle = whole;
    patch(listCircle, 68, littleEndian(0, 4)); // the table's list continues in the first sector
    patch(listCircle, 76, std::string(436, '\xFF'));
    textOfBinaryWord(listCircle);
    const auto branchedTo = [&whole](std::uint32_t left) {
        constexpr std::size_t firstEntry = 512 + 128;
        constexpr std::size_t spareEntry = 512 + 3 * 128;
        constexpr std::size_t leftAt = 68;
        std::string branched = whole;
        patch(branched, firstEntry + leftAt, littleEndian(3, 4));
        patch(branched, spareEntry + leftAt, littleEndian(left, 4) + littleEndian(0xFFFFFFFF, 4));
        return branched;
    };
    EXPECT_TRUE(textOfBinaryWord(branchedTo(0xFFFFFFFF)));
    EXPECT_FALSE(textOfBinaryWord(branchedTo(3))) << "a name that hangs below itself";
    textOfBinaryWord(compoundFile(std::vector<std::pair<std::string, std::string>>(50'000, { "s", "" })));

    // Pieces that give the same text again and again, or only field marks.
    for (const char content : { 'a', '\x13' }) {
        Document document;
        document.pieces.assign(60, { std::string(2, content) });
        document.pieces.front().bytes.assign(4'000'000, content); // in the stream it is the last
        std::string bytes = document.bytes();
        const std::size_t table = bytes.find(std::string("\2\xD4\2\0\0", 5));
        for (std::size_t i = 0; i <= 60; ++i)
            patch(bytes, table + 5 + i * 4, littleEndian(i * 4'000'000, 4));
        const auto text = textOfBinaryWord(bytes);
        ASSERT_TRUE(text);
        EXPECT_LE(text->size(), std::size_t(129) << 20);
    }

    std::mt19937 random(1); // NOLINT: the same bytes in every run
    const std::string documents[] = { whole, sample("letter.doc"), sample("letter.docx") };
    for (int round = 0; round < 450; ++round) {
        std::string bytes = documents[round % 3];
        for (int i = 0; i < 20; ++i)
            bytes[random() % (i < 10 ? bytes.size() : 1536)] = static_cast<char>(random());
        documentText("PK\3\4" + bytes.substr(4));
        textOfBinaryWord("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes.substr(8));
        textOfRtf("{\\rtf1" + bytes);
    }
}

TEST(Rtf, TextOfSnippets)
{
    const auto field = [](const std::string& code, const std::string& result) {
        return R"({\field{\*\fldinst )" + code + R"(}{\fldrslt )" + result + "}}";
    };
    expectTexts(
        [](std::string_view body) {
            return textOfRtf("\xEF\xBB\xBF {\\rtf1\\ansi " + std::string(body) + "}");
        },
        {
            { "runs", R"(a{\b @b}.\i o\i0 rg)", "a@b.org" },
            { "raw line ends", "a\r\n@b\n.org", "a@b.org" },
            { "escapes", R"(\{\\\}\~x\_y\-z)", R"({\} x-yz)" },
            { "breaks", "a\\par b\\line c\\tab d\\\ne\\cell f\\row g", "a\nb\nc\td\ne\tf\ng" },
            { "code page", R"(\ansicpg1251 \'cf\'f0)", "Пр" },
            { "font's character set",
                R"({\fonttbl{\f1\fcharset204 Cyr;}{\f2\fcharset128 J;}}{\f1 \'cf}{\f2 \'83@}\'e9)", "Пァé" },
            { "default font", R"(\deff1{\fonttbl{\f1\fcharset238 x;}}\'b3{\f0 \plain\'b3})", "łł" },
            { "Unicode and what stands in for it",
                R"(\u8364 ?\uc2\u233\'c3\'a9{\uc0\u233}x\u-10179ab\u-8704ab)", "€ééx😀" },
            { "the fallback ends with its group", R"({\u8364}@)", "€@" },
            { "mail link", R"(a)" + field(R"({HYPERLINK "mailto:m@x.org" \\t})", "link") + R"( b\par c)",
                "alink b\nm@x.org\nc" },
            { "the tail of an address as a link",
                R"(john.)" + field(R"(HYPERLINK "mailto:doe@x.org")", "doe@x.org") + R"( b\par c)",
                "john.doe@x.org b\n\n\n\n\n\n\n\n\n\n\nc" },
            { "web link", field(R"(HYPERLINK "http://x.org/?a@b.org")", "link"), "link" },
            { "note within a word", R"(a@b{\footnote n@x.org\par two}.org\par c)",
                "a@b.org\nn@x.org\ntwo\nc" },
            { "note within a note", R"(a{\footnote b{\*\annotation c}d})", "a\nc\nbd" },
            { "comment", R"(a{\*\atnid B}{\*\annotation{\*\atnref 1}c})", "a\nc" },
            { "text box", R"(a{\shp{\*\shpinst{\sp{\sn n}{\sv v}}{\shptxt b\par}}{\shprslt b}})", "a\nb" },
            { "header", R"({\header h@x.org\par}a)", "a\nh@x.org" },
            { "what nobody sees",
                R"({\info{\author a}}{\colortbl;\red1;}{\*\unknown x{\b y}}{\pict 0102}{\stylesheet{N;}}b{\deleted c}d)",
                "bd" },
            { "deleted, and no longer", R"(a\deleted b\u8364 ?\deleted0 c\deleted d\plain e)", "ace" },
            { "binary data", "a{\\pict\\bin5 }}{\\{}b", "ab" },
            { "binary data that is not there", "a\\bin99999999999 b\\bin99 c", "ab" },
            { "after the end", "a}b", "a" },
            { "no end", R"(a{\b b{\footnote c)", "ab\nc" },
            { "broken", R"(\'\'zq\u)", "zq" },
            { "deep", std::string(200'000, '{') + "a" + std::string(200'000, '}') + "b", "ab" },
        });
}

TEST(TextRuns, AreOfBothWidths)
{
    EXPECT_EQ(textRuns(std::string("abc\0abcd\1\xC4pfel", 14)), "abcd\nÄpfel\n");
    EXPECT_EQ(textRuns(wide("a@b.org")), "a@b.org\n");
    EXPECT_EQ(textRuns('\1' + wide("a@b.org") + "\x10\x04"), "a@b.orgА\n");
}

} // namespace

} // namespace quilvane
