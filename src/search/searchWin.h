// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Canvas.h"
#include "framework/controls/Label.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/TextField.h"
#include "framework/controls/Window.h"

namespace quilvane {

class Window2;

/// Asks for a keyword, a regular expression as typed, and shows the rows of the main list that match it in a
/// new window. It closes after the search, and forgets the keyword.
class searchWin : public Window {
public:
    Canvas Canvas1{ *this, "Canvas1" };
    Label Label2{ *this, "Label2" };
    TextField searchField{ *this, "searchField" };
    PushButton closeBtn{ *this, "closeBtn" };
    PushButton searchBtn{ *this, "searchBtn" };

    /// The search by the button. It ends differently from the one by a key: see searchAction.
    void searchBtn_Action();
    /// The search by Return or Enter in the field: with another text for the total, and with export buttons
    /// that are enabled even if nothing was found.
    void searchAction();
    bool searchField_KeyDown(const std::string& key);
    void searchField_TextChange();
    void closeBtn_Action();
    bool Canvas1_MouseDown();

private:
    void Layout() override;

    /// The common part of both searches: opens a window with the rows found, the last one of the main list
    /// first.
    Window2& showMatches();
};

} // namespace quilvane
