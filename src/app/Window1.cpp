// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Window1.h"

#include "app/App.h"
#include "app/MainMenuBar.h"
#include "app/pictures.h"
#include "app/prefsModule.h"
#include "filter/filterWIn.h"
#include "framework/strings.h"
#include "search/searchWin.h"

namespace quilvane {

namespace {

using Kind = ControlKind;

// clang-format off
constexpr ControlRow controlTable[] = {
    // name                kind               caption                                  left   top  width height visible enabled tab index
    { "Listbox1",           Kind::Listbox,     "",                                        20,  143,  316,  429,  true,  true,   0 },
    { "importBtn",          Kind::PushButton,  "Search URL:",                             20,   76,  103,   20,  true,  true,   1 },
    { "clearBtn",           Kind::PushButton,  "Clear List",                              20,  589,  111,   20,  true,  false,  6 },
    { "results",            Kind::Label,       "",                                       143,  589,  297,   20,  false, true,   7 },
    { "filterBtn",          Kind::PushButton,  "Filter Results",                         414,  180,  124,   20,  true,  false,  8 },
    { "searchBtn",          Kind::PushButton,  "Search",                                 414,  212,  124,   20,  true,  false,  9 },
    { "exportBtn",          Kind::PushButton,  "Export as CSV",                          367,  589,  221,   20,  true,  false, 13 },
    { "HTMLViewer1",        Kind::HTMLViewer,  "",                                      -315,  -75,  300,  200,  true,  true,  16 },
    { "urlField",           Kind::TextField,   "",                                       135,   75,  453,   22,  true,  true,  18 },
    { "Canvas1",            Kind::Canvas,      "",                                       367,  261,  205,  208,  true,  true,  19 },
    { "Label1",             Kind::Label,       "Drop files and folders here to search.",  367,  454,  205,   20,  true,  true,   0 },
    { "importBtn1",         Kind::PushButton,  "Search File",                             20,   20,  103,   20,  true,  true,  20 },
    { "importFolderBtn",    Kind::PushButton,  "Search Folder",                          143,   21,  103,   20,  true,  true,  21 },
    { "ProgressText",       Kind::Label,       "",                                        20,  108,  568,   17,  true,  true,  23 },
    { "TextArea1",          Kind::TextArea,    "",                                      -438,  588,  423,  570,  true,  true,  25 },
    { "Slider1",            Kind::Slider,      "",                                       279, -104,  701,   23,  true,  true,  26 },
    { "TextField1",         Kind::TextField,   "",                                      -350,  140,  335,  436,  true,  true,  27 },
    { "subFolderSearch",    Kind::CheckBox,    "Search Subfolders",                      258,   21,  141,   20,  true,  true,  31 },
    { "PushButton1",        Kind::PushButton,  "Thread",                                 458,  -62,   80,   20,  true,  true,  32 },
    { "searchStop",         Kind::CheckBox,    "Stop Search",                            259,   44,  100,   20,  true,  false, 33 },
    { "exportTabDelimited", Kind::PushButton,  "Export as Tab Delimited Text",           367,  552,  221,   20,  true,  false, 34 },
};
// clang-format on

} // namespace

void Window1::Layout()
{
    setProperties({ .title = "Quilvane",
        .width = 608,
        .height = 641,
        .menuBar = &MainMenuBar::instance(),
        .minimizeButton = true,
        .resizable = true,
        .visibleAtStart = false });
    place(controlTable);

    Canvas1.setBackdrop(Quilvane_200());
    results.setTextColor(0x803F02);
    results.setRoom(224, 17); // up to the export button, and up to the list
    Label1.setTextColor(0x434343);
    Label1.setTextSize(10);
    Label1.setCentred();
    ProgressText.setTextColor(0x636363);
    ProgressText.setTextSize(12);
    Listbox1.setAccessibleName("E-mail addresses found");
    urlField.setAccessibleName("Web address to search");
    Canvas1.setAccessibleName("Drop area for files and folders");
    searchBtn.setHelpText("Works on an empty list, too, and finds nothing there.");
    searchStop.setHelpText("Ends the run after the subfolder in hand, with all that lies below it. "
                           "A folder without subfolders can't be stopped.");

    subFolderSearch.setValue(true);
    Timer1.setEnabled(true);
    bindEvents();
}

void Window1::bindEvents()
{
    Listbox1.Change = [this] { Listbox1_Change(); };
    clearBtn.Action = [this] { clearBtn_Action(); };
    filterBtn.Action = [this] { filterBtn_Action(); };
    searchBtn.Action = [this] { searchBtn_Action(); };
    exportBtn.Action = [this] { exportBtn_Action(); };
    importBtn.Action = [this] { importBtn_Action(); };
    HTMLViewer1.DocumentComplete = [this](const std::string& url) { HTMLViewer1_DocumentComplete(url); };
    HTMLViewer1.DocumentProgressChanged = [this](const std::string& url, int percentage) {
        HTMLViewer1_DocumentProgressChanged(url, percentage);
    };
    urlField.TextChange = [this] { urlField_TextChange(); };
    urlField.KeyDown = [this](const std::string& key) { return urlField_KeyDown(key); };
    Canvas1.Open = [this] { Canvas1_Open(); };
    Canvas1.DropObject = [this](DragItem& item) { Canvas1_DropObject(item); };
    importBtn1.Action = [this] { importBtn1_Action(); };
    importFolderBtn.Action = [this] { importFolderBtn_Action(); };
    Slider1.ValueChanged = [this] { Slider1_ValueChanged(); };
    Timer1.Action = [this] { Timer1_Action(); };
    PushButton1.Action = [this] { PushButton1_Action(); };
    Thread1.RunEvent = [this] { Thread1_Run(); };
    searchStop.Action = [this] { searchStop_Action(); };
    exportTabDelimited.Action = [this] { exportTabDelimited_Action(); };
}

void Window1::Event_Open()
{
    Show();
    Listbox1.setHasHeading(false);
    // Twelve widths for one column: the list uses only as many as it has columns.
    Listbox1.setColumnWidths("50,100," + Str(Listbox1.Width() - 150) + ",0,0,0,0,0,0,0,0,0");
    EnableMenuItems();
}

void Window1::Event_Close()
{
    savePrefs();
}

void Window1::filterBtn_Action()
{
    implicit<filterWIn>().Show();
}

void Window1::searchBtn_Action()
{
    implicit<searchWin>().Show();
}

void Window1::searchStop_Action()
{
    stopSwitch = searchStop.Value();
}

void Window1::Timer1_Action()
{
    ProgressText.setText(myProgressText);
}

} // namespace quilvane
