// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "search/Window2.h"
#include "search/searchWin.h"

namespace quilvane {

namespace {

std::vector<Window2*> resultWindows()
{
    std::vector<Window2*> found;
    for (Window* window : WindowList::instance().openWindows()) {
        if (auto* results = dynamic_cast<Window2*>(window))
            found.push_back(results);
    }
    return found;
}

/// A null `key` presses the button.
Window2& search(const std::string& keyword, const char* key)
{
    implicit<searchWin>().searchField.setText(keyword);
    if (key)
        implicit<searchWin>().searchField_KeyDown(key);
    else
        implicit<searchWin>().searchBtn.Push();
    EXPECT_FALSE(isOpen<searchWin>());
    return *resultWindows().back();
}

} // namespace

using SearchTest = ProgramTest;

TEST_F(SearchTest, theTwoWaysEndDifferently)
{
    addRows({ "Anna@x.com", "bert@x.org", "hanna@x.org" });
    struct Case {
        const char* name;
        const char* keyword;
        const char* key;
        Rows found;
        const char* total;
    };
    const Case cases[] = {
        { "button, matches reversed, any case, local part", "ANNA", nullptr, { "hanna@x.org", "Anna@x.com" },
            "Total: 2 entries." },
        { "button, one", "bert", nullptr, { "bert@x.org" }, "Total: 1 entry." },
        { "button, none", "zzz", nullptr, {}, "Total: 0 entries." },
        { "Return, one", "bert", "\r", { "bert@x.org" }, "1 Entries" },
        { "Enter of the numeric pad, none: exports live over nothing", "zzz", "\x03", {}, "0 Entries" },
        { "a pattern as typed", "^b.*org$", "\r", { "bert@x.org" }, "1 Entries" },
        { "an empty keyword matches every row", "", nullptr, { "hanna@x.org", "bert@x.org", "Anna@x.com" },
            "Total: 3 entries." },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Window2& found = search(c.keyword, c.key);
        EXPECT_EQ(rowsOf(found.Listbox1), c.found);
        EXPECT_EQ(found.results.Text(), c.total);
        EXPECT_TRUE(found.results.Visible());
        for (const PushButton* button : { &found.exportBtn, &found.exportTabDelimited })
            EXPECT_EQ(button->Enabled(), c.key || !c.found.empty()) << button->Name();
        for (const PushButton* on : { &found.clearBtn, &found.closeBtn, &found.searchBtn, &found.filterBtn })
            EXPECT_TRUE(on->Enabled()) << on->Name();
    }
    EXPECT_EQ(resultWindows().size(), std::size(cases));
    EXPECT_EQ(rows().size(), 3U) << "the main list is not changed";
}

TEST_F(SearchTest, resultsDoNotChangeWithTheMainList)
{
    addRows({ "a@x.com" });
    Window2& first = search("a", nullptr);
    Window2& second = search("a", nullptr);
    window().clearBtn.Push();
    EXPECT_EQ(rowsOf(first.Listbox1), Rows{ "a@x.com" });

    application->delimiter = "kept";
    first.closeBtn.Push();
    EXPECT_EQ(TempFolder::contentOf(folder / "Quilvane/QuilvanePreferences"), "kept\n");
    EXPECT_EQ(resultWindows(), std::vector<Window2*>{ &second });

    second.clearBtn.Push();
    EXPECT_TRUE(rowsOf(second.Listbox1).empty());
    EXPECT_FALSE(second.exportBtn.Enabled());
    EXPECT_FALSE(second.results.Visible());
    desktop.willReport({ "nothing to export", "The export has ended here." });
    second.exportTabDelimited.Push();
    second.searchBtn.Push();
    EXPECT_TRUE(isOpen<searchWin>());
}

TEST_F(SearchTest, resultsAreExportedAndBothCancelsShowAMessage)
{
    addRows({ "a@x.com" });
    Window2& found = search("", nullptr);
    desktop.willSave(folder / "found.csv");
    found.exportBtn.Push();
    EXPECT_EQ(TempFolder::contentOf(folder / "found.csv"), "a@x.com,\n");
    for (PushButton* button : { &found.exportBtn, &found.exportTabDelimited }) {
        desktop.willCancelSave();
        desktop.willShow("Could not write the file for some reason.");
        button->Push();
    }
}

TEST_F(SearchTest, badKeywordLeavesAnEmptyResultWindow)
{
    addRows({ "a@x.com" });
    implicit<searchWin>().searchField.setText("[");
    desktop.willReport({ "[", "The search of the list has ended here." });
    implicit<searchWin>().searchBtn.Push();
    ASSERT_EQ(resultWindows().size(), 1U);
    EXPECT_FALSE(resultWindows().front()->results.Visible());
    EXPECT_FALSE(resultWindows().front()->closeBtn.Enabled());
    EXPECT_TRUE(isOpen<searchWin>());
}

} // namespace quilvane
