// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

namespace quilvane {

using ExportTest = ProgramTest;

TEST_F(ExportTest, bothFormatsByteForByte)
{
    struct Case {
        Rows rows;
        const char* csv;
        const char* tabDelimited;
    };
    const Case cases[] = {
        { { "a" }, "a,\n", "a\n" },
        { { "a", "b" }, "a,\nb,\n", "a\nb\t\n" },
        { { "a", "b", "a" }, "a,\nb,\na,\n", "a\nb\t\na\t\n" },
    };
    const std::string file = folder / "list";
    for (const Case& c : cases) {
        window().clearBtn_Action();
        addRows(c.rows);
        desktop.willSave(file);
        window().exportBtn.Push();
        EXPECT_EQ(desktop.offeredName, "email_list.csv");
        EXPECT_EQ(TempFolder::contentOf(file), c.csv);
        desktop.willSave(file);
        window().exportTabDelimited.Push();
        EXPECT_EQ(desktop.offeredName, "email_list.txt");
        EXPECT_EQ(TempFolder::contentOf(file), c.tabDelimited);
    }
    EXPECT_EQ(desktop.launched, Rows(6, file));
}

TEST_F(ExportTest, cancelIsSilentInOneFormatOnly)
{
    addRows({ "a@b.co" });
    desktop.willCancelSave();
    window().exportBtn.Push();
    desktop.willCancelSave();
    desktop.willShow("Could not write the file for some reason.");
    window().exportTabDelimited.Push();
    EXPECT_TRUE(desktop.launched.empty());
    EXPECT_TRUE(window().exportBtn.Enabled());
}

TEST_F(ExportTest, failuresAreReportedAndLeaveTheGoodFile)
{
    const std::string good = folder.write("list.csv", "good");
    addRows(Rows(1000, "somebody@example.org"));
    desktop.willSave(folder / "missing/list.csv");
    desktop.willReport({ "list.csv", "No such file or directory", "The export has ended here." });
    window().exportBtn.Push();
    desktop.willSave(good);
    desktop.willReport({ "list.csv", "File too large" });
    {
        const Scoped fullDisk = largestFile(4096);
        window().exportBtn.Push();
    }
    EXPECT_EQ(TempFolder::contentOf(good), "good");
    EXPECT_EQ(rows().size(), 1000U);
    EXPECT_TRUE(desktop.launched.empty());
    EXPECT_EQ(folder.count(), 1) << "nothing half-written is left";
}

TEST_F(ExportTest, missingDefaultApplicationIsReportedAfterTheExport)
{
    addRows({ "a@b.co" });
    desktop.launchSucceeds = false;
    desktop.willSave(folder / "list.csv");
    desktop.willReport({ "is written, but no application" });
    window().exportBtn.Push();
    EXPECT_EQ(TempFolder::contentOf(folder / "list.csv"), "a@b.co,\n");
}

} // namespace quilvane
