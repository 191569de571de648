// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quilvane {

/// The desktop's own dialogs for files, as its portal offers them. Qt shows them by a plugin that most
/// desktops don't load of themselves.
class FilePortal {
public:
    /// Made before the QApplication, which then loads the plugin if it is installed and the user has asked
    /// for no other.
    FilePortal();
    /// Ends what the constructor has set for the QApplication, or programs started from here would inherit
    /// it.
    static void applicationIsMade();

    /// The version of the portal's dialogs: from 1 on it asks for files, from 3 on for folders. 0 if there is
    /// no portal or no plugin. Waits for the portal's answer, for a second at most.
    static int version();
};

} // namespace quilvane
