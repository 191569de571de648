// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/searchWin.h"

#include "app/Window1.h"
#include "app/aboutWin.h"
#include "app/pictures.h"
#include "filter/filterWIn.h"
#include "framework/controls/RowStore.h"
#include "framework/keepWindowPainted.h"
#include "framework/regex/RegEx.h"
#include "framework/strings.h"
#include "scan/endOfRunTexts.h"
#include "search/Window2.h"

#include <utility>
#include <vector>

namespace quilvane {

namespace {

using Kind = ControlKind;

// clang-format off
constexpr ControlRow controlTable[] = {
    // name          kind               caption            left  top  width height visible enabled tab index
    { "Canvas1",     Kind::Canvas,      "",                 461,  11,  109,  100,  true,  true,  0 },
    { "Label2",      Kind::Label,       "Keyword Search:",   31,  31,  100,   20,  true,  true,  1 },
    { "searchField", Kind::TextField,   "",                  31,  55,  400,   22,  true,  true,  2 },
    { "closeBtn",    Kind::PushButton,  "Close",            259,  89,   80,   20,  true,  true,  4 },
    { "searchBtn",   Kind::PushButton,  "Search",           351,  89,   80,   20,  true,  true,  5 },
};
// clang-format on

} // namespace

void searchWin::Layout()
{
    setProperties({ .title = "Search",
        .width = 600,
        .height = 131,
        .minimizeButton = true,
        .maximizeButton = true,
        .resizable = true });
    place(controlTable);
    Canvas1.setBackdrop(Quilvane_1002());
    Canvas1.setAccessibleName("About Quilvane");
    searchField.setAccessibleName("Keyword");
    searchField.setFocus();
    searchBtn.setDefault();
    closeBtn.setCancel();

    Canvas1.MouseDown = [this] { return Canvas1_MouseDown(); };
    searchField.KeyDown = [this](const std::string& key) { return searchField_KeyDown(key); };
    searchField.TextChange = [this] { searchField_TextChange(); };
    closeBtn.Action = [this] { closeBtn_Action(); };
    searchBtn.Action = [this] { searchBtn_Action(); };
}

Window2& searchWin::showMatches()
{
    Window2& found = openWindow<Window2>();
    const RowStore& rows = implicit<Window1>().Listbox1.Rows();
    RegEx expression;
    expression.setSearchPattern(searchField.Text());
    expression.matches({}); // throws for a keyword that is no pattern, even if the list is empty
    RowStore matches;
    std::vector<std::size_t> matchesInBlock;
    constexpr std::size_t rowsPerBlock = 1024;
    for (std::size_t end = rows.size(); end > 0;) {
        const std::size_t first = (end - 1) / rowsPerBlock * rowsPerBlock;
        matchesInBlock.clear();
        rows.appendMatching(expression, first, end, matchesInBlock);
        for (const std::size_t row : matchesInBlock)
            matches.append(rows[row]);
        end = first;
        keepWindowPainted();
    }
    // Only now: a search that fails half-way shows no rows.
    found.Listbox1.TakeRows(std::move(matches));
    return found;
}

void searchWin::searchBtn_Action()
{
    Window2& found = showMatches();
    const std::size_t count = found.Listbox1.ListCount();
    found.results.setText(totalLabel(count));
    found.results.setVisible(true);
    found.exportBtn.setEnabled(count > 0);
    found.exportTabDelimited.setEnabled(count > 0);
    Close();
    for (PushButton* button : { &found.clearBtn, &found.closeBtn, &found.searchBtn, &found.filterBtn })
        button->setEnabled(true);
}

void searchWin::searchAction()
{
    Window2& found = showMatches();
    found.results.setText(Str(found.Listbox1.ListCount()) + " Entries"); // no singular here
    found.results.setVisible(true);
    if (implicit<Window1>().Listbox1.ListCount() == 0)
        found.filterBtn.setEnabled(false); // enabled again below
    Close();
    // The exports as well, even over an empty list.
    for (PushButton* button : { &found.clearBtn, &found.closeBtn, &found.searchBtn, &found.exportTabDelimited,
             &found.exportBtn, &found.filterBtn })
        button->setEnabled(true);
}

bool searchWin::searchField_KeyDown(const std::string& key)
{
    // Return does not press the default button as well, since the window is closed by then.
    if (key == Chr(13) || key == Chr(3))
        searchAction();
    return false;
}

void searchWin::searchField_TextChange()
{
}

void searchWin::closeBtn_Action()
{
    // Closes the filter dialog and not this window, which only its close box or a search closes.
    implicit<filterWIn>().Close();
}

bool searchWin::Canvas1_MouseDown()
{
    implicit<aboutWin>().Show();
    return false;
}

} // namespace quilvane
