// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/dialogs/MessageDialog.h"

#include "framework/dialogs/Desktop.h"

namespace quilvane {

MessageDialog::Button MessageDialog::ShowModal() const
{
    return Desktop::current().showDialog(*this);
}

} // namespace quilvane
