// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "readers/MyDynaPDFMBS.h"

namespace quilvane {

namespace {

const std::string samples = QUILVANE_SAMPLES;

/// The engine with a public event.
class LoudEngine : public MyDynaPDFMBS {
public:
    using MyDynaPDFMBS::Event_Error;
};

} // namespace

using DocumentsTest = ProgramTest;

TEST_F(DocumentsTest, onlyTheLastPageOfAPdfCounts)
{
    searchFile(samples + "/flyer.pdf");
    const Rows first = rows();
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(window().pdf->GetPageCount(), 3);
    EXPECT_EQ(window().Slider1.Value(), 2);
    EXPECT_EQ(window().results.Text(), "Total: " + std::to_string(first.size()) + " entries.");

    // Again, with the slider where the first document left it.
    window().clearBtn.Push();
    searchFile(samples + "/flyer.pdf");
    EXPECT_EQ(rows(), first);

    window().Load(1);
    EXPECT_EQ(window().searchText, "") << "a page that is loaded drops what was there";
    EXPECT_NE(window().searchText2.find('@'), std::string::npos) << "the first page has addresses, too";
}

TEST_F(DocumentsTest, aPdfThatCannotBeReadShowsAllItsMessages)
{
    const std::string path = folder.write("bad.pdf", "no PDF at all");
    addRows({ "a@b.co" });
    desktop.willOpen(path);
    desktop.willAsk("An error occurred while processing your PDF code.", MessageDialog::Button::Action);
    desktop.willShow("bad.pdf could not be opened. There was an error loading pdf");
    desktop.willShow("Failed to edit page 1");
    window().importBtn1.Push();
    EXPECT_EQ(window().ProgressText.Text(), nothingFound);
    EXPECT_EQ(window().Slider1.Value(), 0);
    EXPECT_EQ(rows(), Rows{ "a@b.co" });
}

TEST_F(DocumentsTest, warningsCanBeIgnoredButErrorsCannot)
{
    using Button = MessageDialog::Button;
    const std::string warning = "A warning occurred while processing your PDF code.";
    const std::string error = "An error occurred while processing your PDF code.";
    LoudEngine engine;
    desktop.willAsk(warning, Button::Cancel);
    EXPECT_EQ(engine.Event_Error(1, "odd", 0x2000001), -1);
    desktop.willAsk(warning, Button::AlternateAction);
    EXPECT_EQ(engine.Event_Error(1, "odd", 0x2000000), 0);
    EXPECT_EQ(engine.Event_Error(1, "odd", 0x2000000), 0) << "not asked again";
    desktop.willAsk(error, Button::Action);
    EXPECT_EQ(engine.Event_Error(2, "bad", 0), 0);
}

TEST_F(DocumentsTest, wordDocuments)
{
    searchFile(samples + "/letter.doc");
    EXPECT_FALSE(rows().empty());
    EXPECT_EQ(window().TextField1.Text(), "");

    const std::string path = folder.write("notes.doc.txt", "x@y.org in a text that is no document");
    desktop.willOpen(path);
    desktop.willReport({ "notes.doc.txt", "no Word document", "The search of this file has ended here." });
    const std::size_t before = rows().size();
    window().importBtn1.Push();
    EXPECT_EQ(rows().size(), before);
}

TEST_F(DocumentsTest, aPdfInADroppedFolderFindsThePageThatWasLoadedLast)
{
    Window1& w = window();
    const Rows twice(2, folder.write("where.pdf", "other@y.org"));
    w.itemArrayZ = twice;
    w.searchText = "left@y.org";
    w.Thread1.Run();
    EXPECT_EQ(w.rCounter, 2);
    ASSERT_EQ(w.resultArray.size(), 2U);
    EXPECT_EQ(w.resultArray[1], "left@y.org");
    w.Canvas1.Drop(DragItem({}));
    w.itemArrayZ = twice;
    w.Thread1.Run();
    EXPECT_EQ(w.rCounter, 0) << "a drop begins anew";
}

} // namespace quilvane
