// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/Window2.h"

#include "export/listExport.h"

namespace quilvane {

void Window2::exportBtn_Action()
{
    exportList(Listbox1, ExportFormat::CSV, OnCancel::ShowMessage);
}

void Window2::exportTabDelimited_Action()
{
    exportList(Listbox1, ExportFormat::TabDelimited, OnCancel::ShowMessage);
}

} // namespace quilvane
