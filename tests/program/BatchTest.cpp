// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "batch/readerRules.h"
#include "filter/filterWIn.h"
#include "framework/threads/Timer.h"
#include "support/FailingReads.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>

namespace quilvane {

class BatchTest : public ProgramTest {
protected:
    void searchFolder(const std::string& path)
    {
        desktop.willSelect(path);
        window().importFolderBtn.Push();
    }

    void drop(const Rows& paths) { window().Canvas1.Drop(DragItem({ paths.begin(), paths.end() })); }

    /// Calls `act` once, when a search runs the event loop before it reads a file below the chosen folder.
    void duringTheWalk(const std::function<void()>& act)
    {
        m_click.Action = [this, act] {
            m_click.setEnabled(false);
            act();
        };
        m_click.setEnabled(true);
    }

    /// The rows in alphabetical order, since folders are read in the order of the file system.
    Rows sortedRows()
    {
        Rows texts = rows();
        std::sort(texts.begin(), texts.end());
        return texts;
    }

    void link(const std::string& target, const std::string& name)
    {
        std::filesystem::create_directory_symlink(tree / target, tree / name);
    }

    const TempFolder tree;

private:
    Timer m_click{ "click", 0 };
};

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
    EXPECT_EQ(readersFor(walkReaders, ".doc"), Readers{}) << "the dot of .docx stands for one character";
    EXPECT_EQ(readersFor(walkReaders, ".txtdocx"), (Readers{ Text, Word }));
}

TEST_F(BatchTest, searchFolderReadsTheWholeTree)
{
    tree.write("one.txt", "a@y.org, A@Y.org");
    tree.write("sub/two.csv", "b@y.org");
    tree.write("sub/deep/er/three.txt", "c@y.org");
    searchFolder(tree.path());
    Window1& w = window();
    const Rows expected{ "a@y.org", "b@y.org", "c@y.org" };
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

TEST_F(BatchTest, theSecondHandlerWalksSubfoldersEvenWithoutTheTick)
{
    for (const char* file : { "one.txt", "two.csv", "sub/three.txt" })
        tree.write(file, file + std::string("@y.org"));
    window().subFolderSearch.setValue(false);
    desktop.willSelect(tree.path());
    window().PushButton1.Push();
    EXPECT_EQ(sortedRows(), (Rows{ "one.txt@y.org", "three.txt@y.org" })) << "it reads no .csv";
    EXPECT_FALSE(window().ProgressText.Visible()) << "this entry leaves it as the walk left it";
}

TEST_F(BatchTest, loopsLinksPipesAndDeepFolders)
{
    tree.write("sub/one.txt", "a@y.org");
    link("sub", "sub/loop");
    link("sub", "alias"); // in the chosen folder: not walked
    link("nowhere", "sub/dangling.txt");
    ASSERT_EQ(mkfifo((tree / "sub/pipe.txt").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo((tree / "pipe.csv").c_str(), 0600), 0);
    tree.write("sub/no\xff utf\n/no\xfe.txt", "b@y.org");
    std::string deep = "sub";
    for (int level = 0; level < 1000; ++level)
        deep += "/d";
    tree.write(deep + "/bottom.txt", "c@y.org");
    const TempFolder other; // below it the paths get too long
    std::string below;
    for (int level = 0; level < 50; ++level)
        below += '/' + std::string(50, 'e');
    other.write("top" + below + "/unreachable.txt", "d@y.org");
    std::filesystem::rename(other / "top", tree / deep + "/top");
    searchFolder(tree.path());
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b@y.org", "c@y.org" }));
    EXPECT_EQ(window().rCounter, 3) << "a link was followed, and files were read again";
    EXPECT_NE(window().account.text().find("could not be listed to their end: 1 (eee"), std::string::npos)
        << "a path that is too long must be told: " << window().account.text();
}

TEST_F(BatchTest, stopAndTheUntickedBoxSpareWhatIsToCome)
{
    for (const std::string sub : { "one", "two" }) {
        for (const char* file : { "/a.txt", "/b.txt" })
            tree.write(sub + file, sub + "@y.org");
    }
    Window1& w = window();
    duringTheWalk([&] {
        w.searchStop.setValue(true);
        desktop.willShow("Search was stopped.");
    });
    searchFolder(tree.path());
    EXPECT_EQ(rows().size(), 1U) << "the folder in hand is read to its end, the other one not at all";
    EXPECT_EQ(w.rCounter, 2);
    EXPECT_FALSE(w.searchStop.Value());
    EXPECT_FALSE(w.stopSwitch);

    duringTheWalk([&] { w.subFolderSearch.setValue(false); });
    searchFolder(tree.path());
    EXPECT_EQ(w.rCounter, 4) << "again one folder only";

    w.itemArrayZ = { tree / "one/a.txt" };
    w.searchStop.setValue(true);
    w.Thread1.Run();
    EXPECT_EQ(w.rCounter, 4) << "the worker sees the stop before its first file, and says nothing";
}

TEST_F(BatchTest, aSecondRunDuringTheWalkRunsInsideOfTheFirst)
{
    for (const char* file : { "a.txt", "sub/b.txt", "sub/c.txt" })
        tree.write(file, file + std::string("@y.org"));
    duringTheWalk([&] { searchFolder(tree.path()); });
    searchFolder(tree.path());
    EXPECT_EQ(sortedRows(), (Rows{ "a.txt@y.org", "b.txt@y.org", "c.txt@y.org" }));
    EXPECT_EQ(window().rCounter, 6) << "each run has read all three";
}

TEST_F(BatchTest, quittingEndsTheRun)
{
    tree.write("sub/a.txt", "a@y.org");
    Window1& w = window();
    duringTheWalk([&] { application->Quit(); });
    searchFolder(tree.path());
    EXPECT_EQ(w.rCounter, 0) << "overtaken before its first file";
    EXPECT_FALSE(isOpen<Window1>()) << "and nothing brings a window back";
}

TEST_F(BatchTest, dropsOfFilesAndFolders)
{
    Window1& w = window();
    tree.write("f1/e.txt", "e@y.org");
    tree.write("f2/f.csv", "f@y.org");
    drop({ tree.write("a.png", "d@y.org") });
    EXPECT_EQ(w.ProgressText.Text(), nothingFound);
    EXPECT_FALSE(w.filterBtn.Enabled());
    drop({ tree.write("one.txt", "a@y.org b@y.org") });
    EXPECT_EQ(w.ProgressText.Text(), found(2));
    EXPECT_EQ(w.results.Text(), "Total: 2 entries.");
    drop({ tree.write("mytxt.rtf", "c@y.org"), tree / "f1", tree / "f2" });
    EXPECT_EQ(sortedRows(), (Rows{ "a@y.org", "b@y.org", "c@y.org", "e@y.org", "f@y.org" }));
    EXPECT_EQ(w.rCounter, 4) << "the second folder's run reads the first one's file again";
    EXPECT_FALSE(w.Timer1.Enabled());
    EXPECT_TRUE(w.searchStop.Enabled());
}

TEST_F(BatchTest, aListThatChangesBetweenTheItemsOfADropGetsTheirFindsAgain)
{
    Window1& w = window();
    const auto endItem = [&](const Rows& found) {
        for (const std::string& address : found)
            w.resultArray.append(address);
        w.flushStagedRows();
        w.checkDuplicates();
        return rows();
    };
    EXPECT_EQ(endItem({ "a@y.org", "A@y.org", "b@y.org", "logo@2x.png" }), (Rows{ "a@y.org", "b@y.org" }));
    EXPECT_EQ(endItem({ "B@y.org", "c@y.com" }), (Rows{ "a@y.org", "b@y.org", "c@y.com" }));
    w.Listbox1.DeleteAllRows();
    EXPECT_EQ(endItem({ "d@y.org" }), (Rows{ "a@y.org", "b@y.org", "c@y.com", "d@y.org" }));
    filterWIn& filter = implicit<filterWIn>();
    filter.check1Field.setText("y.org");
    filter.checkOrg.setValue(true);
    filter.keepBtn.Push();
    EXPECT_EQ(endItem({}), (Rows{ "d@y.org", "b@y.org", "a@y.org", "c@y.com" }));
}

TEST_F(BatchTest, theFindsOfAFailedSearchStayInTheList)
{
    tree.write("one.txt", "a@y.org A@y.org logo@2x.png");
    tree.write("below/broken.csv", std::string(300'000, ' ') + "b@y.org " + std::string(300'000, ' '));
    const Scoped broken = failingReads("broken", 400'000);
    const Rows expected{ "a@y.org" };
    const auto willReport = [&](const char* words) {
        desktop.willReport({ "broken.csv", "Input/output error", words });
    };

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

    // Each folder's run begins with the first folder's files again, and fails there again.
    const std::string second = tree.makeFolder("second");
    willReport("The search of the folders below goes on.");
    drop({ tree / "below", second, second });

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
    for (int i = 0; i < 40; ++i) {
        const std::string name = "chain/" + std::to_string(i);
        tree.makeFolder(name);
        for (const char* each : { "/one", "/two" })
            link("chain/" + std::to_string(i + 1), name + each);
    }
    tree.makeFolder("chain/40");
    // Every folder has links to all others, so there are very many ways through them.
    for (int i = 0; i < 12; ++i) {
        const std::string name = "web/" + std::to_string(i);
        tree.makeFolder(name);
        for (int j = 0; j < 12; ++j) {
            if (i != j)
                link("web/" + std::to_string(j), name + '/' + std::to_string(j));
        }
    }
    // A folder in which no file is found if it is entered from the folder to which its link leads.
    tree.write("sub/with/a.txt", "a@y.org");
    tree.makeFolder("sub/with/empty");
    link("sub/with", "sub/with/empty/up");
    link("sub/with/empty", "sub/side");
    link("sub/with", "sub/again");
    searchFolder(tree.path());
    EXPECT_EQ(rows(), Rows{ "a@y.org" });
    EXPECT_EQ(window().rCounter, 3) << "by its folder, by the link to it, by the link in the other one";
}

TEST_F(BatchTest, theFinishLinesHelpTellsWhichFilesWereNotRead)
{
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

} // namespace quilvane
