// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileType.h"

#include <vector>

/// The file types that the program declares at its start. Nothing asks for them by these accessors; the drop
/// area finds them by name.
namespace quilvane::FileTypes2 {

/// Makes the six types and declares them. Until then the accessors return nil.
void _Initialize();

/// All of them, in the order of the accessors below.
const std::vector<Ref<FileType>>& types();

Ref<FileType> Untitled();
Ref<FileType> Pdf();
Ref<FileType> Text();
Ref<FileType> ApplicationMsword();
Ref<FileType> ApplicationVndMsExcel();
Ref<FileType> ApplicationVndMsExcel1();

} // namespace quilvane::FileTypes2
