// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "app/MainMenuBar.h"
#include "filter/filterWIn.h"

#include <algorithm>

namespace quilvane {

namespace {

using F = filterWIn;
using Boxes = std::vector<CheckBox filterWIn::*>;

} // namespace

class FilterTest : public ProgramTest {
protected:
    /// Ticks the boxes, types `text` into all fields and presses the button. Returns the rows that are left
    /// of `rowsBefore`.
    Rows press(
        PushButton F::*button, const Rows& rowsBefore, const Boxes& boxes, const std::string& text = {})
    {
        window().Listbox1.DeleteAllRows();
        addRows(rowsBefore);
        window().filterBtn.setEnabled(true);
        window().ProgressText.setText("before");
        F& dialog = implicit<F>();
        for (TextField F::*field :
            { &F::check1Field, &F::check2Field, &F::check3Field, &F::check4Field, &F::check5Field })
            (dialog.*field).setText(text);
        for (CheckBox F::*box : { &F::checkCom, &F::checkGov, &F::checkOrg, &F::check1, &F::check2,
                 &F::check3, &F::check4, &F::check5 })
            (dialog.*box).setValue(std::find(boxes.begin(), boxes.end(), box) != boxes.end());
        (dialog.*button).Push();
        return rows();
    }

    /// Expects the dialog closed and the main window as Keep and Remove leave it over so many rows.
    void expectEnd(std::size_t rowCount)
    {
        const Window1& w = window();
        EXPECT_FALSE(isOpen<F>());
        EXPECT_EQ(w.results.Text(), std::to_string(rowCount) + " Entries");
        EXPECT_EQ(w.ProgressText.Text(), "");
        for (const PushButton* button : { &w.filterBtn, &w.searchBtn, &w.exportBtn, &w.exportTabDelimited })
            EXPECT_EQ(button->Enabled(), rowCount > 0) << button->Name();
        EXPECT_TRUE(w.clearBtn.Enabled()) << "left as it was";
    }
};

TEST_F(FilterTest, keepAndRemoveByTheirOwnRules)
{
    const Rows abc{ "a@x.com", "b@x.org", "c@x.com" };
    struct Case {
        const char* name;
        Rows rows;
        Boxes boxes;
        const char* text;
        Rows kept;
        Rows left;
    };
    const Case cases[] = {
        { "one box: kept rows come reversed", abc, { &F::checkCom }, "", { "c@x.com", "a@x.com" },
            { "b@x.org" } },
        { "two boxes: group by group", abc, { &F::checkOrg, &F::checkCom }, "",
            { "c@x.com", "a@x.com", "b@x.org" }, {} },
        { "nothing ticked: Keep empties, Remove leaves", abc, {}, "", {}, abc },
        { "a row of two boxes is kept twice", { "a@x.com.org" }, { &F::checkCom, &F::checkOrg }, "",
            { "a@x.com.org", "a@x.com.org" }, {} },
        { "capitals", { "a@X.COM" }, { &F::checkCom }, "", { "a@X.COM" }, {} },
        { "anywhere in the domain, not in the local part", { "a@x.community.org", "a.com@x.org" },
            { &F::checkCom }, "", { "a@x.community.org" }, { "a.com@x.org" } },
        { ".gov alone is kept for the local part", { "a.gov@x.com" }, { &F::checkGov }, "", { "a.gov@x.com" },
            { "a.gov@x.com" } },
        { "Remove's dot is a wildcard", { "a@telecom.org" }, { &F::checkCom }, "", {}, {} },
        { "domain part ends at a second @", { "a@x.org@y.com" }, { &F::checkCom }, "", {},
            { "a@x.org@y.com" } },
        { "own text without a dot, rows 1 to 4: literal dot in Keep only", { "a@georgia.edu" },
            { &F::check1 }, "org", {}, {} },
        { "own text without a dot, row 5: literal dot in both", { "a@georgia.edu", "a@x.org" },
            { &F::check5 }, "org", { "a@x.org" }, { "a@georgia.edu" } },
        { "own text with a dot is a pattern", { "a@mailxorg.de" }, { &F::check5 }, "l.org",
            { "a@mailxorg.de" }, {} },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(press(&F::keepBtn, c.rows, c.boxes, c.text), c.kept);
        expectEnd(c.kept.size());
        EXPECT_EQ(press(&F::removeBtn, c.rows, c.boxes, c.text), c.left);
        expectEnd(c.left.size());
    }
    EXPECT_EQ(press(&F::keepBtn, { "no domain.gov" }, { &F::checkGov }), Rows{ "no domain.gov" });
    desktop.willReport({ "part of a row", "The list is as it was." });
    EXPECT_EQ(press(&F::keepBtn, { "no domain" }, { &F::checkCom }), Rows{ "no domain" });
}

TEST_F(FilterTest, badPatternsAreReportedAndEarlierFiltersHaveTheirEffect)
{
    const Rows all{ "a@x.com", "b@x.org" };
    addRows(all);
    filterWIn& dialog = implicit<filterWIn>();
    for (const char* bad : { "[", "(a+)+$(" }) {
        dialog.check1Field.setText(bad);
        desktop.willReport({ bad, "The list is as it was." });
        dialog.keepBtn.Push();
    }
    EXPECT_EQ(rows(), all);
    EXPECT_TRUE(isOpen<filterWIn>());

    dialog.checkOrg.setValue(true);
    desktop.willReport({ "Rows that were removed before the failure are gone." });
    dialog.removeBtn.Push();
    EXPECT_EQ(rows(), Rows{ "a@x.com" }) << "the filter before the bad one had removed its row";

    window().Listbox1.AddRow("a@" + std::string(5000, 'a') + "!!");
    dialog.check1Field.setText("(a+)+.$");
    desktop.willReport({ "(a+)+.$" });
    dialog.keepBtn.Push();
    dialog.check1Field.setText(std::string(1'000'000, 'a'));
    desktop.willReport({ "longer than the limit" });
    dialog.keepBtn.Push();
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(FilterTest, dialogRemembersByKeystroke)
{
    addRows({ "a@x.org" });
    window().filterBtn.setEnabled(true);
    window().filterBtn.Push();
    F* dialog = &implicit<F>();
    for (const CheckBox* box : { &dialog->checkOrg, &dialog->check2, &dialog->check3 })
        EXPECT_FALSE(box->Value());
    dialog->checkOrg.setValue(true);
    dialog->check2Field.setText("own.example");
    EXPECT_TRUE(dialog->check2.Value()) << "ticked by typing";
    dialog->check2.setValue(false);
    dialog->check3Field.setText("x");
    dialog->check3Field.setText("");
    EXPECT_TRUE(dialog->check3.Value()) << "emptying is a change, too";
    dialog->cancelBtn.Push();
    EXPECT_FALSE(isOpen<F>());

    FiltersApplyFilters().Choose();
    dialog = &implicit<F>();
    EXPECT_TRUE(dialog->checkOrg.Value());
    EXPECT_EQ(dialog->check2Field.Text(), "own.example");
    EXPECT_TRUE(dialog->check2.Value()) << "ticks are told by the texts";
    EXPECT_FALSE(dialog->check3.Value());
    dialog->check3.setValue(true);
    dialog->keepBtn.Push();
    EXPECT_EQ(rows(), Rows{ "a@x.org" }) << "a box without a text is unticked and filters nothing";
}

} // namespace quilvane
