// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QDialog;

namespace quilvane {

/// The desktop's own file dialogs, which its portal offers. Qt shows them with a plugin that it does not load
/// by itself on most desktops.
class FilePortal {
public:
    /// Made before the QApplication, which then loads the plugin if it is installed and the user has asked
    /// for no other.
    FilePortal();
    /// Undoes the constructor's setting, which programs started from here would inherit.
    static void applicationIsMade();

    /// The version of the portal's dialogs: from 1 on they choose files, from 3 on also folders. 0 if there
    /// is no portal or no plugin. Waits for the portal's answer, for a second at most.
    static int version();

    /// Cancels a dialog of the portal when the portal ends, whose answer Qt would wait for without an end.
    static void cancelAtItsEnd(QDialog& dialog);
};

} // namespace quilvane
