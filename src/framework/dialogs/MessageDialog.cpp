// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/dialogs/MessageDialog.h"

#include "framework/dialogs/Desktop.h"
#include "framework/threads/Timer.h"

namespace quilvane {

MessageDialog::Button MessageDialog::ShowModal() const
{
    const TimersHeld held;
    return Desktop::current().showDialog(*this);
}

} // namespace quilvane
