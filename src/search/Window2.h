// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Canvas.h"
#include "framework/controls/Label.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/Window.h"

namespace quilvane {

/// The result of one search, with copies of the rows found: later changes of the main list do not affect it.
/// Each search opens another one. Its filter and search buttons and Clear Results lie outside of the window.
class Window2 : public Window {
public:
    Listbox Listbox1{ *this, "Listbox1" };
    PushButton exportBtn{ *this, "exportBtn" };
    Label results{ *this, "results" };
    PushButton filterBtn{ *this, "filterBtn" };
    PushButton searchBtn{ *this, "searchBtn" };
    PushButton exportTabDelimited{ *this, "exportTabDelimited" };
    Canvas Canvas1{ *this, "Canvas1" };
    PushButton closeBtn{ *this, "closeBtn" };
    PushButton clearBtn{ *this, "clearBtn" };

    void exportBtn_Action();
    void exportTabDelimited_Action();
    void closeBtn_Action();
    void clearBtn_Action();
    void filterBtn_Action();
    void searchBtn_Action();
    bool Canvas1_MouseDown();

private:
    void Layout() override;
    void Event_Open() override;
    void Event_Close() override;
};

} // namespace quilvane
