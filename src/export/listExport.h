// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Listbox.h"

#include <string>

namespace quilvane {

enum class ExportFormat {
    CSV, // each row, the last as well, ends in a comma
    TabDelimited, // each row but the first ends in a tab
};

enum class OnCancel { Silent, ShowMessage };

/// The text of an export without its last line end: column 0 of all rows as they stand, nothing quoted,
/// sorted or left out. Throws OutOfBoundsException for an empty list.
std::string exportText(const Listbox& list, ExportFormat format);

/// Asks where to save the list, writes it there and opens the file. The text is made before the user is
/// asked, so rows that arrive while the dialog stands are not in it. `onCancel` tells what follows a
/// cancelled dialog. A file that can't be written leaves an older one of that name as it was, and throws with
/// the system's reason.
void exportList(const Listbox& list, ExportFormat format, OnCancel onCancel);

} // namespace quilvane
