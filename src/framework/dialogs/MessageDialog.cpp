// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/dialogs/MessageDialog.h"

#include "framework/EventGuard.h"
#include "framework/dialogs/Desktop.h"

namespace quilvane {

MessageDialog::Button MessageDialog::ShowModal() const
{
    const EventsHeld held;
    return Desktop::current().showDialog(*this);
}

} // namespace quilvane
