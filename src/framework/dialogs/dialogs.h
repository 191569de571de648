// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/FolderItem.h"

#include <string_view>

namespace quilvane {

/// A modal message with one OK button.
void MsgBox(std::string_view text);

/// The platform's modal dialogs; nil when the user cancels. `filter` names the kinds of files that the dialog
/// is to offer. Its names are no types of this platform, so the dialogs offer what the program reads, and all
/// files beside it.
Ref<FolderItem> GetOpenFolderItem(std::string_view filter);
Ref<FolderItem> GetSaveFolderItem(std::string_view filter, std::string_view defaultName);
Ref<FolderItem> SelectFolder();

/// Opens `item` in its default application. Throws IOException if nothing takes it.
void Launch(const FolderItem& item);

} // namespace quilvane
