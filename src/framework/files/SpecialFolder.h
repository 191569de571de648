// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/FolderItem.h"

namespace quilvane {

/// Folders whose place the platform defines.
class SpecialFolder {
public:
    SpecialFolder() = delete;

    /// Where the user's programs keep their data, by the base directory rules of freedesktop.org, version
    /// 0.8: $XDG_DATA_HOME if that is absolute, otherwise ~/.local/share. Made, for this user only, if it is
    /// missing; IOException if that fails.
    static Ref<FolderItem> ApplicationData();
};

} // namespace quilvane
