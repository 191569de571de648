// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

namespace quilvane {

namespace {

std::string found(const std::string& count)
{
    return "Finished searching. " + count + " detected. Duplicates removed.";
}

using Rows = std::vector<std::string>;

} // namespace

using SearchFileTest = ProgramTest;

TEST_F(SearchFileTest, endStates)
{
    struct Case {
        const char* name;
        const char* file;
        const char* content;
        Rows before;
        std::string progress;
        std::string results;
        bool filterBtn;
        Rows after;
        int matches;
    };
    const Case cases[] = {
        { "text with matches", "a.txt", "x@y.org, a.b@c.de.", {}, found("2 emails"), "Total: 2 entries.",
            true, { "x@y.org", "a.b@c.de" }, 2 },
        { "one match", "a.txt", "<x@y.org>", {}, found("1 email"), "Total: 1 entry.", true, { "x@y.org" },
            1 },
        { "delimited with matches, one of them twice", "a.CSV", "\"Q@y.org\"\n\"q@Y.org\"\n", {},
            found("2 emails"), "Total: 1 entry.", true, { "Q@y.org" }, 2 },
        { "text without matches, empty list", "a.txt", "nothing", {}, nothingFound, "old text", false, {},
            0 },
        { "text without matches, rows from before", "a.txt", "", { "old@row.org" }, nothingFound,
            "Total: 1 entry.", true, { "old@row.org" }, 0 },
        { "no known kind is not read", "a.tsv", "x@y.org", {}, nothingFound, "old text", false, {}, 0 },
        { "delimited without matches, empty list: told in the total's place", "a.csv", "", {}, "",
            nothingFound, false, {}, 0 },
        { "delimited without matches, rows from before", "a.csv", "", { "old@row.org" }, "",
            "Total: 1 entry.", true, { "old@row.org" }, 0 },
        { "a second file without a new address", "a.csv", "OLD@row.org", { "old@row.org" }, found("1 email"),
            "Total: 1 entry.", true, { "old@row.org" }, 1 },
        { "names of pictures are counted and go", "a.txt", "logo@2x.png pngs@y.org apng@y.org", {},
            found("3 emails"), "Total: 1 entry.", true, { "pngs@y.org" }, 3 },
        { "nothing but names of pictures", "a.txt", "logo@2x.png", {}, found("1 email"), "old text", true, {},
            1 },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Window1& w = window();
        w.clearBtn_Action();
        addRows(c.before);
        w.results.setText("old text");
        folder.write(c.file, c.content);

        searchFile(folder / c.file);

        EXPECT_EQ(w.ProgressText.Text(), c.progress);
        EXPECT_EQ(w.results.Text(), c.results);
        EXPECT_TRUE(w.results.Visible());
        EXPECT_EQ(w.filterBtn.Enabled(), c.filterBtn);
        EXPECT_EQ(rows(), c.after);
        EXPECT_EQ(w.rCounter, c.matches);
        const bool hasRows = !c.after.empty();
        EXPECT_EQ(w.clearBtn.Enabled(), hasRows);
        EXPECT_EQ(w.exportBtn.Enabled(), hasRows);
        EXPECT_EQ(w.exportTabDelimited.Enabled(), hasRows);
        EXPECT_TRUE(w.searchBtn.Enabled());
        EXPECT_FALSE(w.Timer1.Enabled());
        EXPECT_EQ(w.TextField1.Text(), "");
    }
}

TEST_F(SearchFileTest, cancelledDialogStillEndsTheRun)
{
    Window1& w = window();
    w.ProgressText.setText("before");
    w.results.setText("old text");
    desktop.willCancelOpen();
    w.importBtn1.Push();
    EXPECT_EQ(w.ProgressText.Text(), "");
    EXPECT_EQ(w.results.Text(), "old text");
    EXPECT_TRUE(w.results.Visible());
    EXPECT_FALSE(w.filterBtn.Enabled());
    EXPECT_FALSE(w.Timer1.Enabled());

    addRows({ "a@b.co" });
    desktop.willCancelOpen();
    w.importBtn1.Push();
    EXPECT_EQ(w.results.Text(), "Total: 1 entry.");
    EXPECT_TRUE(w.filterBtn.Enabled());
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
    folder.write("a.txt", "x@y.org");
    searchFile(folder / "a.txt");
    window().clearBtn.Push();
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(window().results.Text(), "Total: 0 entries");
    EXPECT_TRUE(window().results.Visible());
    EXPECT_EQ(window().ProgressText.Text(), "");
    EXPECT_TRUE(window().searchBtn.Enabled());
    for (const PushButton* off : { &window().clearBtn, &window().filterBtn, &window().exportBtn })
        EXPECT_FALSE(off->Enabled()) << off->Name();
}

TEST_F(SearchFileTest, doCSVFolderCountsNothingAndTotalsBeforeTheRemoval)
{
    folder.write("a.csv", "x@y.org X@y.org");
    window().doCSVFolder(GetFolderItem(folder / "a.csv"));
    EXPECT_EQ(window().rCounter, 0);
    EXPECT_EQ(window().results.Text(), "Total: 2 entries.");
    EXPECT_EQ(rows(), Rows{ "x@y.org" });
}

} // namespace quilvane
