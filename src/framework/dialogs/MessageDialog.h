// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

struct MessageDialogButton {
    std::string Caption;
    bool Visible = false;
};

/// A modal question with up to three buttons: fill in the members, call ShowModal(), use the answer.
class MessageDialog {
public:
    enum class Button { Action, Cancel, AlternateAction };

    /// 1 is the warning sign, 0 the information sign.
    int Icon = 0;
    std::string Message;
    std::string Explanation;
    MessageDialogButton ActionButton{ "OK", true };
    MessageDialogButton CancelButton{ "Cancel", false };
    MessageDialogButton AlternateActionButton;

    /// Waits for the answer. Closing the dialog counts as Cancel.
    Button ShowModal() const;
};

} // namespace quilvane
