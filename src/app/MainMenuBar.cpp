// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainMenuBar.h"

#include "app/App.h"
#include "framework/controls/QuitMenuItem.h"

namespace quilvane {

MainMenuBar& MainMenuBar::instance()
{
    static MainMenuBar& bar = *new MainMenuBar; // never destroyed: it would outlive the toolkit
    return bar;
}

MainMenuBar::MainMenuBar()
{
    addFileMenu();
    addEditMenu();
    addFiltersMenu();
}

void MainMenuBar::addFileMenu()
{
    MenuItem& menu = append(std::make_unique<MenuItem>("FileMenu", "&File"));
    menu.append(std::make_unique<QuitMenuItem>("FileQuit", "&Quit", "Cmd+Q"));
    menu.append(std::make_unique<MenuItem>("FileNewWindow", "New Window", "Cmd+N"))
        .setHelpText("Never available: there is one main window, and closing it opens an empty one.");
    menu.append(std::make_unique<MenuItem>("FileAboutTamsrel", "About Quilvane"));
}

void MainMenuBar::addEditMenu()
{
    MenuItem& menu = append(std::make_unique<MenuItem>("EditMenu", "&Edit"));
    menu.append(std::make_unique<MenuItem>("EditUndo", "&Undo", "Cmd+Z"));
    menu.append(std::make_unique<MenuItem>("EditSeparator1", "-"));
    menu.append(std::make_unique<MenuItem>("EditCut", "Cu&t", "Cmd+X"));
    menu.append(std::make_unique<MenuItem>("EditCopy", "&Copy", "Cmd+C"));
    menu.append(std::make_unique<MenuItem>("EditPaste", "&Paste", "Cmd+V"));
    menu.append(std::make_unique<MenuItem>("EditClear", "&Delete"));
    menu.append(std::make_unique<MenuItem>("EditSeparator2", "-"));
    menu.append(std::make_unique<MenuItem>("EditSelectAll", "Select &All", "Cmd+A"));
}

void MainMenuBar::addFiltersMenu()
{
    MenuItem& menu = append(std::make_unique<MenuItem>("FiltersMenu", "Filters"));
    menu.append(std::make_unique<MenuItem>("FiltersApplyFilters", "Select Filters"));
}

MenuItem& FileNewWindow()
{
    return app().menuBar().Lookup("FileNewWindow");
}

MenuItem& FiltersApplyFilters()
{
    return app().menuBar().Lookup("FiltersApplyFilters");
}

} // namespace quilvane
