// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "batch/readerRules.h"
#include "framework/controls/RowStore.h"
#include "support/FailingReads.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <random>

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

    /// The rows in alphabetical order, since folders are read in the order of the file system.
    Rows sortedRows()
    {
        Rows texts = rows();
        std::sort(texts.begin(), texts.end());
        return texts;
    }
};

TEST_F(BatchTest, whichFilesAreReadDependsOnTheirFolder)
{
    struct Case {
        const char* file;
        int matchesChosen; // in the chosen folder: the matches counted, that is how often the file was read
        int matchesDropped; // in a folder that was dropped
        int matchesBelow; // in a folder below
    };
    const Case cases[] = {
        { "a.txt", 1, 1, 1 },
        { "A.CSV", 1, 1, 1 },
        { "mytxt", 0, 0, 1 }, // only below, a dot stands for any character
        { "notes.txt.bak", 0, 0, 0 }, // listed, but the last extension is another
        { "a.csv.txt", 2, 2, 2 }, // listed twice
        { "~$lock.txt", 0, 1, 1 }, // counts as a lock file in the chosen folder only
        { "~$lock.docx", 0, 0, 0 }, // if it were read as a document, it would give the sample address
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

TEST_F(BatchTest, theReadersOfAFileDependOnItsName)
{
    using enum FileReader;
    using Readers = std::vector<FileReader>;
    struct Case {
        const char* name;
        Readers picked; // by the whole name
        Readers dropped; // by the whole name, and a dot stands for any character
    };
    const Case cases[] = {
        { "report.PDF", { PDF }, { PDF } },
        { "letter.docx", { Word }, { Word } },
        { "notes.doc.txt", { Word }, { Word, Text } },
        { "archive.pdf.csv", { PDF }, { Delimited } },
        { "mydoc.txt", { Text }, { Word, Text } },
        { "a.txt.csv", { Delimited }, { Delimited } },
        { "mytxt.rtf", {}, { Text } },
        { "data.tsv", {}, {} },
        { "txt", {}, {} },
    };
    for (const auto& [name, picked, dropped] : cases) {
        EXPECT_EQ(readersFor(searchFileReaders, name), picked) << name;
        EXPECT_EQ(readersFor(droppedFileReaders, name), dropped) << name;
    }
    EXPECT_EQ(readersFor(workerReaders, ".pdf"), Readers{ PDF });
    EXPECT_EQ(readersFor(walkReaders, ".pdf"), Readers{});
    EXPECT_EQ(readersFor(workerReaders, ".doc"), Readers{ Word });
    EXPECT_EQ(readersFor(walkReaders, ".doc"), Readers{}) << "the dot of .docx stands for one character";
    EXPECT_EQ(readersFor(walkReaders, ".txtdocx"), (Readers{ Text, Word }));
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
    window().PushButton1.Push(); // walks subfolders even without the tick, and reads no .csv
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b@y.org" }));
    EXPECT_FALSE(window().ProgressText.Visible()) << "this entry leaves it as the walk left it";
}

TEST_F(BatchTest, loopsLinksPipesAndDeepFolders)
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
    EXPECT_EQ(window().rCounter, 3) << "a link was followed, and files were read again";
}

TEST_F(BatchTest, stopIsSeenBetweenTheFolders)
{
    const TempFolder tree;
    for (const char* sub : { "one", "two" }) {
        for (const char* file : { "/a.txt", "/b.txt" })
            tree.write(sub + std::string(file), sub + std::string("@y.org"));
    }
    // Like a click while the first folder is walked.
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

TEST_F(BatchTest, theBoxUntickedDuringTheWalkSparesTheFoldersToCome)
{
    const TempFolder tree;
    for (const char* file : { "one/a.txt", "one/b.txt", "two/a.txt", "two/b.txt" })
        tree.write(file, "a@y.org");
    Timer click("click", 0);
    click.Action = [&] {
        click.setEnabled(false);
        window().subFolderSearch.setValue(false);
    };
    click.setEnabled(true);
    searchFolder(tree.path());
    EXPECT_EQ(window().rCounter, 2);
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
    EXPECT_EQ(w.rCounter, 0) << "overtaken before its first file";
    EXPECT_FALSE(isOpen<Window1>()) << "and nothing brings a window back";
}

TEST_F(BatchTest, dropsOfFilesAndFolders)
{
    const TempFolder tree;
    const std::string text = tree.write("one.txt", "a@y.org b@y.org");
    const std::string rtf = tree.write("mytxt.rtf", "c@y.org"); // its name holds txt after a character
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

TEST_F(BatchTest, theFindsOfAFailedSearchStayInTheList)
{
    const TempFolder tree;
    tree.write("one.txt", "a@y.org A@y.org logo@2x.png");
    tree.write("below/broken.csv", std::string(300'000, ' ') + "b@y.org " + std::string(300'000, ' '));
    const Scoped broken = failingReads("broken", 400'000);
    const std::vector<std::string> reason{ "broken.csv", "Input/output error" };
    const Rows expected{ "a@y.org" };
    const auto willReport = [&](const char* words) { desktop.willReport({ reason[0], reason[1], words }); };

    desktop.willSelect(tree.path());
    willReport("The search of the folder has ended here. What it had found is in the list: 1 new address.");
    window().importFolderBtn.Push();
    EXPECT_EQ(rows(), expected);
    EXPECT_TRUE(window().exportBtn.Enabled());
    EXPECT_TRUE(window().resultArray.empty());
    EXPECT_EQ(window().rCounter, 3) << "of a file that can't be read to its end nothing is counted";
    willReport(
        "The search of what you dropped has ended here. All that it had found was in the list already.");
    drop({ tree.path() });
    EXPECT_EQ(rows(), expected);

    desktop.willOpen(tree / "below/broken.csv");
    willReport("The search of this file has ended here.");
    window().importBtn1.Push();
    EXPECT_EQ(rows(), expected);
    EXPECT_EQ(window().rCounter, 0);

    // An error that ends the worker does not end the walk.
    tree.write("below/deeper/c.txt", "c@y.org");
    desktop.willSelect(tree / "below");
    willReport("The search of the folders below goes on.");
    window().importFolderBtn.Push();
    EXPECT_EQ(rows(), (Rows{ "a@y.org", "c@y.org" }));
}

TEST_F(BatchTest, foldersWithoutFilesAreEnteredOnce)
{
    // Forty folders, each with two links to the next: a walk that follows all of them would never end.
    const TempFolder tree;
    const std::filesystem::path root = tree.path();
    for (int i = 0; i < 40; ++i) {
        const std::string name = "chain/" + std::to_string(i);
        tree.makeFolder(name);
        tree.makeFolder("chain/" + std::to_string(i + 1));
        for (const char* link : { "one", "two" })
            std::filesystem::create_directory_symlink(
                root / "chain" / std::to_string(i + 1), root / name / link);
    }
    // Every folder has links to all others, so there are very many ways through them.
    for (int i = 0; i < 12; ++i) {
        for (int j = 0; j < 12; ++j) {
            tree.makeFolder("web/" + std::to_string(i));
            if (i != j)
                std::filesystem::create_directory_symlink(
                    root / "web" / std::to_string(j), root / "web" / std::to_string(i) / std::to_string(j));
        }
    }
    // A folder in which no file is found if it is entered from the folder to which its link leads.
    tree.write("sub/with/a.txt", "a@y.org");
    tree.makeFolder("sub/with/empty");
    std::filesystem::create_directory_symlink(root / "sub/with", root / "sub/with/empty/up");
    std::filesystem::create_directory_symlink(root / "sub/with/empty", root / "sub/side");
    searchFolder(tree.path());
    EXPECT_EQ(rows(), Rows{ "a@y.org" });
    EXPECT_EQ(window().rCounter, 2) << "once by its folder, once by the link in the other one";
}

TEST_F(BatchTest, theFinishLinesHelpTellsWhichFilesWereNotRead)
{
    const TempFolder tree;
    tree.write("a.txt", "a@y.org");
    tree.write("a.txt.csv", "a@y.org"); // listed twice, and one file
    tree.write("b.pdf", "");
    for (const char* name : { "c.png", "d.jpg", "e.zip", "f.odt" })
        tree.write(name, "");
    tree.write("bad.docx", "no document");
    tree.write("below/old.doc", "");
    tree.write("below/g.txt", "");
    searchFolder(tree.path());
    const std::string account = window().account.text();
    for (const char* part :
        { "Of 10 files 3 were read: 1 delimited, 2 text.", "4 of a kind that is not read (", " and others)",
            "1 PDF", "(b.pdf)", "(bad.docx)", "(old.doc)" })
        EXPECT_NE(account.find(part), std::string::npos) << part << " is missing in: " << account;
    EXPECT_EQ(account.find("reached"), std::string::npos);
    drop({ tree / "c.png" });
    EXPECT_NE(window().account.text().find("Of 1 file 0 were read."), std::string::npos)
        << window().account.text();
}

/// Compares the list with a simple model, in which every row is compared with every other one.
TEST_F(BatchTest, anyOrderOfOperationsLeavesTheRowsOfTheModel)
{
    std::mt19937 random(1);
    const auto below = [&random](std::size_t count) { return random() % count; };
    const auto anyAddress = [&] {
        static const char* const names[] = { "a", "A", "b", "B", "c", "xpng" };
        return std::string(names[below(6)]) + std::to_string(below(30)) + "@Y.org";
    };
    const auto equal = [](const std::string& a, const std::string& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
            [](char x, char y) { return std::tolower(x) == std::tolower(y); });
    };
    Rows model;
    Rows staged;
    const auto check = [&] {
        Rows left;
        for (const std::string& row : model) {
            const bool isKnown = std::any_of(
                left.begin(), left.end(), [&](const std::string& other) { return equal(row, other); });
            if (!isKnown && row.find("png") == std::string::npos)
                left.push_back(row);
        }
        model = left;
    };
    Window1& w = window();
    for (int step = 0; step < 3000; ++step) {
        switch (below(7)) {
        case 0:
        case 1:
            for (std::size_t count = below(20); count > 0; --count) {
                model.push_back(anyAddress());
                w.Listbox1.AddRow(model.back());
            }
            break;
        case 2:
            for (std::size_t count = below(20); count > 0; --count) {
                staged.push_back(anyAddress());
                w.resultArray.append(staged.back());
            }
            break;
        case 3: // like the end of a dropped item
            model.insert(model.end(), staged.begin(), staged.end());
            w.flushStagedRows();
            w.checkDuplicates();
            check();
            break;
        case 4:
            w.checkDuplicates();
            check();
            break;
        case 5: { // like Keep and Remove
            if (model.empty() || below(3) > 0)
                break;
            Rows arranged;
            for (std::size_t row = model.size(); row-- > 0;) {
                for (std::size_t times = below(3); times > 0; --times)
                    arranged.push_back(model[row]);
            }
            RowStore rearranged;
            for (const std::string& row : arranged)
                rearranged.append(row);
            w.Listbox1.ReplaceRows(std::move(rearranged));
            model = arranged;
            break;
        }
        case 6:
            if (below(4) == 0) {
                w.clearBtn_Action();
                model.clear();
            } else if (below(4) == 0) {
                w.resultArray.clear();
                staged.clear();
            }
            break;
        }
        ASSERT_EQ(rows(), model) << step;
    }
}

} // namespace quilvane
