// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Window1.h"

#include "export/listExport.h"

namespace quilvane {

// Of the four exports only this one shows no message after a cancelled dialog.
void Window1::exportBtn_Action()
{
    exportList(Listbox1, ExportFormat::CSV, OnCancel::Silent);
}

void Window1::exportTabDelimited_Action()
{
    exportList(Listbox1, ExportFormat::TabDelimited, OnCancel::ShowMessage);
}

} // namespace quilvane
