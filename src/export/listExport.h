// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Listbox.h"

namespace quilvane {

enum class ExportFormat {
    CSV, // each row, the last as well, ends in a comma
    TabDelimited, // each row but the first ends in a tab
};

enum class OnCancel { Silent, ShowMessage };

/// Asks where to save the list, writes it there and opens the file. Throws OutOfBoundsException for an empty
/// list, before the user is asked. `onCancel` tells what to do after a cancelled dialog. A file that can't be
/// written leaves an older one of that name as it was, and throws with the system's reason.
void exportList(const Listbox& list, ExportFormat format, OnCancel onCancel);

} // namespace quilvane
