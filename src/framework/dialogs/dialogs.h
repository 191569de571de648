// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/dialogs/Desktop.h"
#include "framework/files/FolderItem.h"

#include <string_view>

namespace quilvane {

/// A modal message with one OK button.
void MsgBox(std::string_view text);

/// The platform's modal dialogs; nil when the user cancels. `filter` has no effect, since its names are no
/// file types of this platform; the open dialog offers `files` instead, and all files as a second choice.
Ref<FolderItem> GetOpenFolderItem(std::string_view filter, std::string_view title, const OfferedFiles& files);
Ref<FolderItem> GetSaveFolderItem(
    std::string_view filter, std::string_view defaultName, std::string_view title);
Ref<FolderItem> SelectFolder(std::string_view title);

/// Opens `item` in its default application. False if nothing takes it.
bool Launch(const FolderItem& item);

} // namespace quilvane
