// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "app/MainMenuBar.h"

namespace quilvane {

using SearchFileTest = ProgramTest;

TEST_F(SearchFileTest, endStates)
{
    struct Case {
        const char* name;
        const char* file;
        const char* content;
        Rows before;
        Rows after;
        int matches;
        std::string progress;
        std::string results;
    };
    const Case cases[] = {
        { "text with matches", "a.txt", "x@y.org, a.b@c.de.", {}, { "x@y.org", "a.b@c.de" }, 2, found(2),
            "Total: 2 entries." },
        { "one match", "a.txt", "<x@y.org>", {}, { "x@y.org" }, 1, found(1), "Total: 1 entry." },
        { "delimited, one match twice", "a.CSV", "\"Q@y.org\"\n\"q@Y.org\"\n", {}, { "Q@y.org" }, 2, found(2),
            "Total: 1 entry." },
        { "text without matches, empty list", "a.txt", "nothing", {}, {}, 0, nothingFound, "old text" },
        { "text without matches", "a.txt", "", { "a@b.co" }, { "a@b.co" }, 0, nothingFound,
            "Total: 1 entry." },
        { "no known kind is not read", "a.tsv", "x@y.org", {}, {}, 0, nothingFound, "old text" },
        { "delimited without matches, empty list: told in the total's place", "a.csv", "", {}, {}, 0, "",
            nothingFound },
        { "delimited without matches", "a.csv", "", { "a@b.co" }, { "a@b.co" }, 0, "", "Total: 1 entry." },
        { "nothing new", "a.csv", "A@b.co", { "a@b.co" }, { "a@b.co" }, 1, found(1), "Total: 1 entry." },
        { "names of pictures are counted and go", "a.txt", "logo@2x.png pngs@y.org apng@y.org", {},
            { "pngs@y.org" }, 3, found(3), "Total: 1 entry." },
        { "nothing but names of pictures", "a.txt", "logo@2x.png", {}, {}, 1, found(1), "old text" },
    };
    Window1& w = window();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        w.clearBtn_Action();
        addRows(c.before);
        w.results.setText("old text");
        searchFile(folder.write(c.file, c.content));
        EXPECT_EQ(rows(), c.after);
        EXPECT_EQ(w.rCounter, c.matches);
        EXPECT_EQ(w.ProgressText.Text(), c.progress);
        EXPECT_EQ(w.results.Text(), c.results);
        EXPECT_TRUE(w.results.Visible());
        EXPECT_EQ(w.filterBtn.Enabled(), c.matches > 0 || !c.after.empty());
        for (const PushButton* button : { &w.clearBtn, &w.exportBtn, &w.exportTabDelimited })
            EXPECT_EQ(button->Enabled(), !c.after.empty()) << button->Name();
        EXPECT_EQ(FiltersApplyFilters().Enabled(), !c.after.empty());
        EXPECT_TRUE(w.searchBtn.Enabled());
        EXPECT_FALSE(w.Timer1.Enabled());
        EXPECT_EQ(w.TextField1.Text(), "");
    }
}

TEST_F(SearchFileTest, cancelledDialogStillEndsTheRun)
{
    Window1& w = window();
    for (const Rows& before : { Rows{}, Rows{ "a@b.co" } }) {
        addRows(before);
        w.ProgressText.setText("before");
        w.results.setText("old text");
        desktop.willCancelOpen();
        w.importBtn1.Push();
        EXPECT_EQ(w.ProgressText.Text(), "");
        EXPECT_EQ(w.results.Text(), before.empty() ? "old text" : "Total: 1 entry.");
        EXPECT_TRUE(w.results.Visible());
        EXPECT_EQ(w.filterBtn.Enabled(), !before.empty());
        EXPECT_FALSE(w.Timer1.Enabled());
    }
}

TEST_F(SearchFileTest, failuresAreReportedAndLoseNothing)
{
    addRows({ "a@b.co" });
    desktop.willOpen(folder / "gone.txt");
    desktop.willReport(
        { "gone.txt", "No such file or directory", "The search of this file has ended here." });
    window().importBtn1.Push();
    EXPECT_EQ(rows(), Rows{ "a@b.co" });
    EXPECT_TRUE(window().Timer1.Enabled()) << "the rest of the handler did not run";
}

TEST_F(SearchFileTest, clearList)
{
    Window1& w = window();
    searchFile(folder.write("a.txt", "x@y.org"));
    w.clearBtn.Push();
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(w.results.Text(), "Total: 0 entries");
    EXPECT_EQ(w.ProgressText.Text(), "");
    EXPECT_TRUE(w.searchBtn.Enabled());
    for (const PushButton* off : { &w.clearBtn, &w.filterBtn, &w.exportBtn })
        EXPECT_FALSE(off->Enabled()) << off->Name();
}

TEST_F(SearchFileTest, doCSVFolderCountsNothingAndTotalsBeforeTheRemoval)
{
    window().doCSVFolder(GetFolderItem(folder.write("a.csv", "x@y.org X@y.org")));
    EXPECT_EQ(window().rCounter, 0);
    EXPECT_EQ(window().results.Text(), "Total: 2 entries.");
    EXPECT_EQ(rows(), Rows{ "x@y.org" });
}

} // namespace quilvane
