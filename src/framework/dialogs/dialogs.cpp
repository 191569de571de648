// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/dialogs/dialogs.h"

#include "framework/dialogs/Desktop.h"
#include "framework/exceptions.h"
#include "framework/files/displayName.h"
#include "framework/threads/Timer.h"

namespace quilvane {

namespace {

/// Nil only for a dialog that was cancelled: the answer may be a file that is still to be made, and of one
/// that has vanished the user is to read that it can't be opened.
Ref<FolderItem> itemFor(const std::optional<std::string>& path)
{
    return path ? itemAt(*path) : Ref<FolderItem>();
}

} // namespace

void MsgBox(std::string_view text)
{
    const TimersHeld held;
    Desktop::current().showMessage(text);
}

Ref<FolderItem> GetOpenFolderItem(std::string_view)
{
    const TimersHeld held;
    return itemFor(Desktop::current().chooseFileToOpen());
}

Ref<FolderItem> GetSaveFolderItem(std::string_view, std::string_view defaultName)
{
    const TimersHeld held;
    return itemFor(Desktop::current().chooseFileToSave(defaultName));
}

Ref<FolderItem> SelectFolder()
{
    const TimersHeld held;
    return itemFor(Desktop::current().chooseFolder());
}

void Launch(const FolderItem& item)
{
    if (!Desktop::current().openWithDefaultApplication(item.NativePath()))
        throw IOException("The file \"" + displayPath(item.NativePath())
            + "\" is written, but no application was found to open it.");
}

} // namespace quilvane
