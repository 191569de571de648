// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/aboutWin.h"

#include "app/App.h"
#include "app/pictures.h"

namespace quilvane {

namespace {

using Kind = ControlKind;

// It says ".edu" of a government audience, too, as it always has.
constexpr const char* description
    = "Quilvane makes it easy to extract email addresses from CSV, TXT, DOCX files, and websites. "
      "It will find just the emails so you can export them as a single list to import into your favorite "
      "mail program. You can filter your list by domain as well (like .com, .org, .edu, etc.), and search "
      "by any word you wish to narrow down your results. For instance you can target a school or college "
      "audience by filtering for only \".edu\" addresses or a government audience by filtering "
      "\".edu\" or \".gov\" addresses. ";

// clang-format off
constexpr ControlRow controlTable[] = {
    // name          kind               caption         left  top  width height visible enabled tab index
    { "Label1",      Kind::Label,       description,      20, 254,  391,  152,  true,  true,  0 },
    { "PushButton1", Kind::PushButton,  "Close",         305, 406,  106,   20,  true,  true,  3 },
    { "Canvas1",     Kind::Canvas,      "",              165,  20,  107,  100,  true,  true,  4 },
    { "Label3",      Kind::Label,       "",               20, 407,  222,   20,  true,  true,  5 },
    { "Label4",      Kind::Label,       "",               20, 125,  391,   20,  true,  true,  6 },
};
// clang-format on

} // namespace

void aboutWin::Layout()
{
    setProperties({ .title = "About Quilvane", .width = 431, .height = 447 });
    place(controlTable);
    Canvas1.setBackdrop(Quilvane_100());
    Label1.setMultiline();
    Label3.setText(app().versionData().legalNotice);
    Label3.setTextSize(10);
    Label4.setText("Version " + app().versionData().shortVersion);
    Label4.setCentred();
    PushButton1.setDefault();
    PushButton1.Action = [this] { PushButton1_Action(); };
}

void aboutWin::PushButton1_Action()
{
    Close();
}

} // namespace quilvane
