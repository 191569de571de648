// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/dialogs/dialogs.h"

#include "framework/EventGuard.h"

namespace quilvane {

namespace {

/// Nil only after a cancelled dialog. The file may not exist yet; and if it has vanished, the user must read
/// that it can't be opened.
Ref<FolderItem> itemFor(const std::optional<std::string>& path)
{
    return path ? itemAt(*path) : Ref<FolderItem>();
}

} // namespace

void MsgBox(std::string_view text)
{
    const EventsHeld held;
    Desktop::current().showMessage(text);
}

Ref<FolderItem> GetOpenFolderItem(std::string_view, std::string_view title, const OfferedFiles& files)
{
    const EventsHeld held;
    return itemFor(Desktop::current().chooseFileToOpen(title, files));
}

Ref<FolderItem> GetSaveFolderItem(std::string_view, std::string_view defaultName, std::string_view title)
{
    const EventsHeld held;
    return itemFor(Desktop::current().chooseFileToSave(title, defaultName));
}

Ref<FolderItem> SelectFolder(std::string_view title)
{
    const EventsHeld held;
    return itemFor(Desktop::current().chooseFolder(title));
}

bool Launch(const FolderItem& item)
{
    return Desktop::current().openWithDefaultApplication(item.NativePath());
}

} // namespace quilvane
