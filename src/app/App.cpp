// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/App.h"

#include "app/MainMenuBar.h"
#include "app/Window1.h"
#include "app/aboutWin.h"
#include "app/prefsModule.h"
#include "filter/filterWIn.h"

namespace quilvane {

App& app()
{
    return static_cast<App&>(Application::instance());
}

bool App::_FileAboutTamsrel_Action()
{
    implicit<aboutWin>().Show();
    return false;
}

bool App::_FileNewWindow_Action()
{
    implicit<Window1>().Show();
    return false;
}

bool App::_FiltersApplyFilters_Action()
{
    implicit<filterWIn>().Show();
    return false;
}

void App::Event_EnableMenuItems()
{
    // New Window is never available: there is one main window, and this pass itself brings it back when it is
    // gone.
    FileNewWindow().setEnabled(false);

    Window1& window = implicit<Window1>();
    const bool hasRows = window.Listbox1.ListCount() > 0;
    window.clearBtn.setEnabled(hasRows);
    FiltersApplyFilters().setEnabled(hasRows);
    // Search is live on an empty list, too.
    window.searchBtn.setEnabled(true);
    window.exportBtn.setEnabled(hasRows);
    window.exportTabDelimited.setEnabled(hasRows);
}

void App::Event_Open()
{
    getPrefs();
    // So every start writes the file anew, and the first run, which has just made it empty, fills it.
    savePrefs();
}

} // namespace quilvane
