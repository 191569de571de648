// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Canvas.h"
#include "framework/controls/Label.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/Window.h"

namespace quilvane {

/// Tells in a few lines what the program does.
class aboutWin : public Window {
public:
    Label Label1{ *this, "Label1" };
    PushButton PushButton1{ *this, "PushButton1" };
    Canvas Canvas1{ *this, "Canvas1" };
    Label Label3{ *this, "Label3" };
    Label Label4{ *this, "Label4" };

    void PushButton1_Action();

private:
    void Layout() override;
};

} // namespace quilvane
