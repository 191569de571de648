// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/Window2.h"

#include "app/MainMenuBar.h"
#include "app/aboutWin.h"
#include "app/pictures.h"
#include "app/prefsModule.h"
#include "filter/filterWIn.h"
#include "framework/Application.h"
#include "search/searchWin.h"

namespace quilvane {

namespace {

using Kind = ControlKind;

// clang-format off
constexpr ControlRow controlTable[] = {
    // name                 kind               caption                         left   top  width height visible enabled tab index
    { "Listbox1",           Kind::Listbox,     "",                               20,   20,  297,  284,  true,  true,   0 },
    { "exportBtn",          Kind::PushButton,  "Export as CSV",                 336,   52,  205,   20,  true,  false,  5 },
    { "results",            Kind::Label,       "1060 Entries",                   20,  316,  157,   20,  false, true,   7 },
    { "filterBtn",          Kind::PushButton,  "Filter Results",                184,  -97,  124,   20,  true,  false,  8 },
    { "searchBtn",          Kind::PushButton,  "Search",                         -9,  -97,  124,   20,  true,  false,  9 },
    { "exportTabDelimited", Kind::PushButton,  "Export as Tab Delimited Text",  335,   20,  205,   20,  true,  false, 10 },
    { "Canvas1",            Kind::Canvas,      "",                              329,   96,  205,  208,  true,  true,  11 },
    { "closeBtn",           Kind::PushButton,  "Close",                         410,  316,  124,   20,  true,  false, 12 },
    { "clearBtn",           Kind::PushButton,  "Clear Results",                -159,  316,  124,   20,  true,  false, 13 },
};
// clang-format on

} // namespace

void Window2::Layout()
{
    setProperties(
        { .title = "Search Results", .width = 554, .height = 356, .menuBar = &MainMenuBar::instance() });
    place(controlTable);
    Canvas1.setBackdrop(Quilvane_2001());
    Canvas1.setAccessibleName("About Quilvane");
    Listbox1.setAccessibleName("E-mail addresses that match the keyword");
    results.setTextColor(0x803F02);

    exportBtn.Action = [this] { exportBtn_Action(); };
    filterBtn.Action = [this] { filterBtn_Action(); };
    searchBtn.Action = [this] { searchBtn_Action(); };
    exportTabDelimited.Action = [this] { exportTabDelimited_Action(); };
    Canvas1.MouseDown = [this] { return Canvas1_MouseDown(); };
    closeBtn.Action = [this] { closeBtn_Action(); };
    clearBtn.Action = [this] { clearBtn_Action(); };
}

void Window2::Event_Open()
{
    getPrefs();
    EnableMenuItems();
}

void Window2::Event_Close()
{
    savePrefs();
}

void Window2::closeBtn_Action()
{
    Listbox1.DeleteAllRows();
    Close();
    EnableMenuItems();
}

void Window2::clearBtn_Action()
{
    Listbox1.DeleteAllRows();
    clearBtn.setEnabled(false);
    // The other export button stays enabled; over the empty list it fails with a message.
    exportBtn.setEnabled(false);
    results.setVisible(false);
    EnableMenuItems();
}

void Window2::filterBtn_Action()
{
    implicit<filterWIn>().Show();
}

void Window2::searchBtn_Action()
{
    implicit<searchWin>().Show();
}

bool Window2::Canvas1_MouseDown()
{
    implicit<aboutWin>().Show();
    return false;
}

} // namespace quilvane
