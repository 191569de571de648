// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A reader that sends anything must do the program no harm.
#include "framework/PdfTest.h"

#include "documents/reader/messages.h"
#include "framework/processes.h"
#include "support/WordFileBuilder.h"

#include <cstdint>
#include <string_view>

namespace quilvane {

namespace {

/// A frame of the reader's as it is sent.
std::string frame(const std::string& content, std::size_t announcedSize)
{
    return littleEndian(announcedSize, 4) + content;
}

template <typename Message>
std::string frame(const Message& message)
{
    const std::string content = encode(message);
    return frame(content, content.size());
}

class PdfFromLyingReader : public Pdf {
    Scoped m_liar = otherReader(QUILVANE_LYING_READER);
};

/// A document of these pages: 'p' for one that shows its number, '-' for one that can't be read.
std::string pages(const std::string& kinds)
{
    std::string frames = frame(PdfOpening{ .pageCount = static_cast<std::uint32_t>(kinds.size()) });
    for (std::size_t i = 0; i < kinds.size(); ++i)
        frames += frame(PdfPage{ kinds[i] == 'p', std::to_string(i + 1) });
    return frames + frame(PdfEnd{});
}

TEST_F(PdfFromLyingReader, ReportsOnlyAFewBadPages)
{
    using Code = DynaPDFMBS::ErrorCode;
    const auto badPages = [](std::size_t count) { return std::vector<int>(count, Code::noSuchPage); };
    std::vector<int> thenLeftOut = badPages(3);
    thenLeftOut.push_back(Code::pagesLeftOut);
    const std::string many(99'000, '-');
    struct Case {
        std::string_view name;
        std::string kinds;
        int pageCount;
        std::vector<int> errors;
        std::string lastText;
    };
    for (const auto& [name, kinds, pageCount, errors, lastText] : {
             Case{ "two in a row", "p--p", 4, badPages(2), "4" },
             { "the last one is good", many + "p", 99'001, badPages(3), "99001" },
             { "none is good", many, 3, thenLeftOut, "" },
             { "a good one between", "----p" + many, 5, thenLeftOut, "5" },
             { "every other one", "-p-p-p-p-p-p-p-p-p-p-p-p", 24, badPages(8), "24" },
             { "the last three", "pp---", 5, badPages(3), "2" },
         }) {
        RecordingEngine patient;
        ASSERT_EQ(patient.open(folder.write("a.pdf", pages(kinds))), 0) << name;
        std::string last;
        for (int page = 1; page <= patient.GetPageCount(); ++page)
            if (patient.EditPage(page))
                last = patient.ExtractPageText();
        EXPECT_EQ(patient.GetPageCount(), pageCount) << name;
        EXPECT_EQ(patient.errors, errors) << name;
        EXPECT_EQ(last, lastText) << name;
    }
    ASSERT_EQ(engine.open(folder.write("a.pdf", pages("---p"))), 0);
    for (int i = 0; i < 9; ++i)
        EXPECT_FALSE(engine.EditPage(1));
    EXPECT_TRUE(engine.EditPage(4)) << "a page that is asked for often counts once";
}

TEST_F(PdfFromLyingReader, LeavesOutPagesButNotTheLastOne)
{
    const std::string cut
        = frame(PdfOpening{ .pageCount = 9 }) + frame(PdfPage{ true, "1" }) + frame(PdfEnd{});
    struct Case {
        std::string_view name;
        std::string last;
        int pageCount;
        std::string text; // of all pages
    };
    for (const auto& [name, last, pageCount, text] : {
             Case{ "the last page", frame(PdfPage{ true, "9" }), 9, "19" },
             { "a bad page", frame(PdfPage{ false, "no" }), 1, "1" },
             { "no page", "", 1, "1" },
             { "a page of any length", frame("", UINT32_MAX), 1, "1" },
         }) {
        RecordingEngine patient;
        ASSERT_EQ(patient.open(folder.write("a.pdf", cut + last)), 0) << name;
        ASSERT_EQ(patient.GetPageCount(), pageCount) << name;
        std::string all;
        for (int page = 1; page <= pageCount; ++page)
            all += patient.pageText(page);
        EXPECT_EQ(all, text) << name;
        EXPECT_EQ(patient.errors, std::vector<int>{ DynaPDFMBS::pagesLeftOut }) << name;
    }
}

TEST_F(PdfFromLyingReader, RefusesInvalidFrames)
{
    const std::string ofOne = frame(PdfOpening{ .pageCount = 1 });
    const std::string page = frame(PdfPage{ true, "text" });
    const std::string end = frame(PdfEnd{});
    struct Case {
        std::string_view name;
        std::string frames;
        bool opens = true;
    };
    for (const auto& [name, frames, opens] : {
             Case{ "nothing", "", false },
             { "no opening", frame("?", 1), false },
             { "a long opening", frame("", largestPdfHead + 1), false },
             { "too many pages", frame(PdfOpening{ .pageCount = mostPdfPages + 1 }), false },
             { "no end", ofOne + page },
             { "a page too many", ofOne + page + page + end },
             { "a page of any length", ofOne + frame("", UINT32_MAX) },
             { "a cut page", (ofOne + page).substr(0, ofOne.size() + page.size() - 1) },
             { "a long reason", ofOne + frame(PdfPage{ false, std::string(longestPdfMessage + 1, 'x') }) },
             { "no frame", ofOne + frame("", 0) },
             { "many warnings",
                 ofOne + page + frame(PdfEnd{ std::vector<std::string>(mostPdfMessages + 1) }) },
         }) {
        RecordingEngine careful;
        EXPECT_EQ(careful.open(folder.write("a.pdf", frames)), opens ? 0 : -1) << name;
        EXPECT_EQ(careful.GetPageCount(), 0) << name;
        EXPECT_EQ(careful.errors, std::vector<int>{ DynaPDFMBS::engineLost }) << name;
    }
    ASSERT_EQ(engine.open(folder.write("a.pdf", ofOne + end)), 0);
    EXPECT_EQ(engine.errors, std::vector<int>{ DynaPDFMBS::pagesLeftOut });
}

} // namespace

} // namespace quilvane
