// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/PdfTest.h"

#include "documents/reader/messages.h"
#include "framework/processes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

namespace {

/// The frames that a reader could send, as a file for lyingReader.
class Frames {
public:
    template <typename Message>
    Frames& add(const Message& message)
    {
        return addRaw(encode(message));
    }

    Frames& addRaw(const std::string& frame, std::size_t announced)
    {
        for (unsigned shift = 0; shift < 32; shift += 8)
            m_bytes += static_cast<char>(announced >> shift & 0xFFu);
        m_bytes += frame;
        return *this;
    }
    Frames& addRaw(const std::string& frame) { return addRaw(frame, frame.size()); }

    const std::string& bytes() const { return m_bytes; }

private:
    std::string m_bytes;
};

class PdfFromLyingReader : public Pdf {
    Scoped m_liar = otherReader(QUILVANE_LYING_READER);
};

/// A document of these pages: 'p' for one that shows its number, '-' for one that can't be read.
std::string pages(const std::string& kinds)
{
    Frames frames;
    frames.add(PdfOpening{ .pageCount = static_cast<std::uint32_t>(kinds.size()) });
    for (std::size_t i = 0; i < kinds.size(); ++i)
        frames.add(PdfPage{ kinds[i] == 'p', std::to_string(i + 1) });
    return frames.add(PdfEnd{}).bytes();
}

TEST_F(PdfFromLyingReader, ReportsOnlyAFewBadPages)
{
    using Code = DynaPDFMBS::ErrorCode;
    const auto badPages = [](std::size_t count) { return std::vector<int>(count, Code::noSuchPage); };
    const auto thenLeftOut = [&](std::size_t count) {
        std::vector<int> codes = badPages(count);
        codes.push_back(Code::pagesLeftOut);
        return codes;
    };
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
             { "none is good", many, 3, thenLeftOut(3), "" },
             { "a good one between", "----p" + many, 5, thenLeftOut(3), "5" },
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
    engine.answer = -1;
    EXPECT_FALSE(engine.EditPage(2));
    EXPECT_EQ(engine.GetPageCount(), 0);
    EXPECT_FALSE(engine.EditPage(4));
    EXPECT_EQ(engine.errors.size(), 10u);
}

TEST_F(PdfFromLyingReader, RefusesInvalidFrames)
{
    const std::string page = encode(PdfPage{ true, "text" });
    const PdfOpening ofOne{ .pageCount = 1 };
    struct Case {
        std::string_view name;
        Frames frames;
        bool opens = true;
    };
    for (const auto& [name, frames, opens] :
        {
            Case{ "nothing", {}, false },
            { "no opening", Frames().addRaw("?"), false },
            { "a long opening", Frames().addRaw("", largestPdfHead + 1), false },
            { "too many pages", Frames().addRaw(encode(PdfOpening{ .pageCount = mostPdfPages + 1 })), false },
            { "no end", Frames().add(ofOne).addRaw(page) },
            { "a page too many", Frames().add(ofOne).addRaw(page).addRaw(page).add(PdfEnd{}) },
            { "a page of any length", Frames().add(ofOne).addRaw("", UINT32_MAX) },
            { "a cut page", Frames().add(ofOne).addRaw(page, page.size() + 1) },
            { "a long reason",
                Frames().add(ofOne).add(PdfPage{ false, std::string(longestPdfMessage + 1, 'x') }) },
            { "no frame", Frames().add(ofOne).addRaw("") },
            { "many warnings",
                Frames().add(ofOne).addRaw(page).add(
                    PdfEnd{ std::vector<std::string>(mostPdfMessages + 1) }) },
        }) {
        RecordingEngine careful;
        careful.CreateNewPDF();
        EXPECT_EQ(
            careful.OpenImportFile(*GetFolderItem(folder.write("a.pdf", frames.bytes()))), opens ? 0 : -1)
            << name;
        EXPECT_EQ(careful.ImportPDFFile(1), -1) << name;
        EXPECT_EQ(careful.GetPageCount(), 0) << name;
        EXPECT_EQ(careful.errors, std::vector<int>{ DynaPDFMBS::engineLost }) << name;
    }
    ASSERT_EQ(engine.open(folder.write("a.pdf", Frames().add(ofOne).add(PdfEnd{}).bytes())), 0);
    EXPECT_EQ(engine.errors, std::vector<int>{ DynaPDFMBS::pagesLeftOut });
}

} // namespace

} // namespace quilvane
