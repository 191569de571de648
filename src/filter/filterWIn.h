// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Canvas.h"
#include "framework/controls/CheckBox.h"
#include "framework/controls/Label.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/TextField.h"
#include "framework/controls/Window.h"

namespace quilvane {

struct DomainFilterChoice;

/// The dialog in which the user says which domains to keep in the main list, or to remove from it.
///
/// It stores nothing itself: every click and keystroke is copied to App at once, and a new dialog is filled
/// from there, so Cancel undoes nothing. The ticks of the five custom rows are not stored; a new dialog ticks
/// those with a text.
class filterWIn : public Window {
public:
    CheckBox checkCom{ *this, "checkCom" };
    CheckBox checkEdu{ *this, "checkEdu" };
    CheckBox checkGov{ *this, "checkGov" };
    CheckBox checkBiz{ *this, "checkBiz" };
    CheckBox checkOrg{ *this, "checkOrg" };
    CheckBox checkNet{ *this, "checkNet" };
    CheckBox checkMil{ *this, "checkMil" };
    CheckBox checkInt{ *this, "checkInt" };
    CheckBox checkDev{ *this, "checkDev" };
    CheckBox checkTV{ *this, "checkTV" };
    CheckBox check1{ *this, "check1" };
    CheckBox check2{ *this, "check2" };
    CheckBox check3{ *this, "check3" };
    CheckBox check4{ *this, "check4" };
    CheckBox check5{ *this, "check5" };
    TextField check1Field{ *this, "check1Field" };
    TextField check2Field{ *this, "check2Field" };
    TextField check3Field{ *this, "check3Field" };
    TextField check4Field{ *this, "check4Field" };
    TextField check5Field{ *this, "check5Field" };
    Label Label1{ *this, "Label1" };
    PushButton cancelBtn{ *this, "cancelBtn" };
    PushButton keepBtn{ *this, "keepBtn" };
    PushButton removeBtn{ *this, "removeBtn" };
    Label Label3{ *this, "Label3" };
    Label Label4{ *this, "Label4" };
    Canvas Canvas1{ *this, "Canvas1" };
    Label Label2{ *this, "Label2" };

    void cancelBtn_Action();
    void keepBtn_Action();
    void removeBtn_Action();

private:
    void Layout() override;
    void Event_Open() override;

    /// Unticks the custom rows without a text, then returns what is ticked and typed.
    DomainFilterChoice takeChoice();
};

} // namespace quilvane
