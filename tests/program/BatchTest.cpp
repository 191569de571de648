// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace quilvane {

namespace {

using Rows = std::vector<std::string>;

std::string found(int count)
{
    return "Finished searching. " + std::to_string(count) + " emails detected. Duplicates removed.";
}

} // namespace

class BatchTest : public ProgramTest {
protected:
    void searchFolder(const std::string& path)
    {
        desktop.willSelect(path);
        window().importFolderBtn.Push();
    }

    void drop(const std::vector<std::string>& paths)
    {
        window().Canvas1.Drop(DragItem({ paths.begin(), paths.end() }));
    }

    /// The rows in order of the alphabet: folders are read in the order of the file system.
    Rows sortedRows()
    {
        Rows texts = rows();
        std::sort(texts.begin(), texts.end());
        return texts;
    }
};

TEST_F(BatchTest, whichFilesAreReadDependsOnWhereTheyLie)
{
    struct Case {
        const char* file;
        int matchesChosen; // in the folder that was chosen: matches counted, so reads of one file
        int matchesDropped; // in a folder that was dropped
        int matchesBelow; // in a folder below
    };
    const Case cases[] = {
        { "a.txt", 1, 1, 1 },
        { "A.CSV", 1, 1, 1 },
        { "mytxt", 0, 0, 1 }, // there a dot stands for any character
        { "notes.txt.bak", 0, 0, 0 }, // listed, but the last extension is another
        { "a.csv.txt", 2, 2, 2 }, // listed twice
        { "~$lock.txt", 0, 1, 1 }, // a lock file only where it was chosen
        { "a.tsv", 0, 0, 0 },
        { "a.png", 0, 0, 0 },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const TempFolder tree;
        tree.write(c.file, "x@y.org");
        window().rCounter = 0;
        searchFolder(tree.path());
        EXPECT_EQ(window().rCounter, c.matchesChosen) << "chosen";
        drop({ tree.path() });
        EXPECT_EQ(window().rCounter, c.matchesDropped) << "dropped";

        const TempFolder above;
        above.write(std::string("below/") + c.file, "x@y.org");
        window().rCounter = 0;
        searchFolder(above.path());
        EXPECT_EQ(window().rCounter, c.matchesBelow) << "below";
    }
}

TEST_F(BatchTest, searchFolderReadsTheWholeTree)
{
    const TempFolder tree;
    tree.write("one.txt", "a@y.org, A@Y.org");
    tree.write("sub/two.csv", "b@y.org");
    tree.write("sub/deep/er/three.txt", "c@y.org");
    tree.makeFolder("empty.txt");
    searchFolder(tree.path());

    Window1& w = window();
    Rows expected{ "a@y.org", "b@y.org", "c@y.org" };
    EXPECT_EQ(sortedRows(), expected);
    EXPECT_EQ(w.ProgressText.Text(), found(4));
    EXPECT_EQ(w.results.Text(), "Total: 3 entries.");
    EXPECT_TRUE(w.ProgressText.Visible());
    EXPECT_TRUE(w.searchStop.Enabled());
    EXPECT_FALSE(w.Timer1.Enabled());
    EXPECT_TRUE(w.resultArray.empty());
    settle();
    EXPECT_EQ(w.ProgressText.Text(), found(4)) << "the timer is off before it could overwrite the text";

    searchFolder(tree.path());
    EXPECT_EQ(w.ProgressText.Text(), found(8)) << "the count goes on from the run before";
    EXPECT_EQ(sortedRows(), expected);

    desktop.willCancelSelect();
    w.importFolderBtn.Push();
    EXPECT_EQ(w.ProgressText.Text(), found(8)) << "a cancelled dialog ends in the same words";
}

TEST_F(BatchTest, subfoldersOnlyWhileTheBoxIsTicked)
{
    const TempFolder tree;
    tree.write("one.txt", "a@y.org");
    tree.write("sub/two.txt", "b@y.org");
    window().subFolderSearch.setValue(false);
    searchFolder(tree.path());
    drop({ tree.path() });
    EXPECT_EQ(rows(), Rows{ "a@y.org" });
    desktop.willSelect(tree.path());
    window().PushButton1.Push(); // walks them whatever the box says, and reads no .csv
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b@y.org" }));
    EXPECT_FALSE(window().ProgressText.Visible()) << "this entry leaves it as the walk left it";
}

TEST_F(BatchTest, treesThatAreNoTrees)
{
    const TempFolder tree;
    tree.write("sub/one.txt", "a@y.org");
    const std::filesystem::path root = tree.path();
    std::filesystem::create_directory_symlink(root / "sub", root / "sub/loop");
    std::filesystem::create_directory_symlink(
        root / "sub", root / "alias"); // in the chosen folder: not walked
    std::filesystem::create_symlink(root / "nowhere", root / "sub/dangling.txt");
    ASSERT_EQ(mkfifo((tree / "sub/pipe.txt").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo((tree / "pipe.csv").c_str(), 0600), 0);
    tree.write("sub/no\xff utf\n/no\xfe.txt", "b@y.org");
    std::string deep = "sub";
    for (int level = 0; level < 1000; ++level)
        deep += "/d";
    tree.write(deep + "/bottom.txt", "c@y.org");
    searchFolder(tree.path());
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b@y.org", "c@y.org" }));
}

TEST_F(BatchTest, stopIsSeenBetweenTheFolders)
{
    const TempFolder tree;
    for (const char* sub : { "one", "two" }) {
        for (const char* file : { "/a.txt", "/b.txt" })
            tree.write(sub + std::string(file), sub + std::string("@y.org"));
    }
    // As a click that comes while the first folder is walked.
    Timer click("click", 0);
    click.Action = [&] {
        click.setEnabled(false);
        window().searchStop.setValue(true);
    };
    click.setEnabled(true);
    desktop.willSelect(tree.path());
    desktop.willShow("Search was stopped.");
    window().importFolderBtn.Push();
    EXPECT_EQ(rows().size(), 1U) << "the folder in hand is read to its end, the other one not at all";
    EXPECT_EQ(window().rCounter, 2);
    EXPECT_FALSE(window().searchStop.Value());
    EXPECT_FALSE(window().stopSwitch);
}

TEST_F(BatchTest, stopWithoutSubfoldersIsSilent)
{
    const TempFolder tree;
    tree.write("a.txt", "a@y.org");
    window().itemArrayZ = { tree / "a.txt" };
    window().searchStop.setValue(true);
    window().Thread1.Run();
    EXPECT_EQ(window().rCounter, 0) << "the worker sees the stop before its first file";
    EXPECT_TRUE(window().searchStop.Value());
}

TEST_F(BatchTest, aSecondRunDuringTheWalkRunsInsideOfTheFirst)
{
    const TempFolder tree;
    tree.write("a.txt", "a@y.org");
    for (const char* file : { "sub/b.txt", "sub/c.txt" })
        tree.write(file, file + std::string("@y.org"));
    Timer again("again", 0);
    again.Action = [&] {
        again.setEnabled(false);
        searchFolder(tree.path());
    };
    again.setEnabled(true);
    searchFolder(tree.path());
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b.txt@y.org", "c.txt@y.org" }));
    EXPECT_EQ(window().rCounter, 6) << "each run has read all three";
}

TEST_F(BatchTest, quittingEndsTheRun)
{
    const TempFolder tree;
    for (const char* file : { "sub/a.txt", "sub/b.txt", "sub/c.txt" })
        tree.write(file, "a@y.org");
    Timer quit("quit", 0);
    quit.Action = [&] { application->Quit(); };
    quit.setEnabled(true);
    Window1& w = window();
    searchFolder(tree.path());
    EXPECT_EQ(w.rCounter, 0) << "overtaken ahead of its first file";
    EXPECT_FALSE(isOpen<Window1>()) << "and nothing brings a window back";
}

TEST_F(BatchTest, dropsOfFilesAndFolders)
{
    const TempFolder tree;
    const std::string text = tree.write("one.txt", "a@y.org b@y.org");
    const std::string rtf = tree.write("mytxt.rtf", "c@y.org"); // its name holds txt behind a character
    const std::string picture = tree.write("a.png", "d@y.org");
    const std::string folderOne = tree.makeFolder("f1");
    tree.write("f1/e.txt", "e@y.org");
    tree.write("f2/f.csv", "f@y.org");

    drop({ picture });
    EXPECT_EQ(window().ProgressText.Text(), nothingFound);
    EXPECT_FALSE(window().filterBtn.Enabled());
    drop({ text });
    EXPECT_EQ(window().ProgressText.Text(), found(2));
    EXPECT_EQ(window().results.Text(), "Total: 2 entries.");
    drop({ rtf, folderOne, tree / "f2" });
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b@y.org", "c@y.org", "e@y.org", "f@y.org" }));
    EXPECT_EQ(window().rCounter, 4) << "the second folder's run reads the first one's file again";
    EXPECT_FALSE(window().Timer1.Enabled());
    EXPECT_TRUE(window().searchStop.Enabled());
}

} // namespace quilvane
