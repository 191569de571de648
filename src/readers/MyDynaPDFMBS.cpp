// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/MyDynaPDFMBS.h"

#include "framework/System.h"
#include "framework/dialogs/MessageDialog.h"
#include "framework/strings.h"

namespace quilvane {

int MyDynaPDFMBS::Event_Error(int errorCode, const std::string& errorMessage, int errorType)
{
    constexpr int goOn = 0;
    constexpr int stop = -1;
    const std::string explanation = Str(errorCode) + ": " + errorMessage;
    System::DebugLog(explanation); // also for a warning that is not shown

    MessageDialog dialog;
    dialog.Icon = 1;
    dialog.ActionButton.Caption = "Continue";
    dialog.CancelButton.Visible = true;
    dialog.Explanation = explanation;
    if ((errorType & warningType) == warningType) {
        if (IgnoreWarnings)
            return goOn;
        dialog.Message = "A warning occurred while processing your PDF code.";
        dialog.AlternateActionButton = { "Ignore warnings", true };
    } else {
        dialog.Message = "An error occurred while processing your PDF code.";
    }
    switch (dialog.ShowModal()) {
    case MessageDialog::Button::AlternateAction:
        IgnoreWarnings = true;
        return goOn;
    case MessageDialog::Button::Cancel:
        return stop;
    case MessageDialog::Button::Action:
        break;
    }
    return goOn;
}

} // namespace quilvane
