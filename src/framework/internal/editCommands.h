// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// Whether `itemName` is one of the commands on text that the toolkit itself carries out: undo, cut, copy,
/// paste, delete, select all.
bool isEditCommand(std::string_view itemName);

/// Whether the control that has the keyboard can carry it out now.
bool canEdit(std::string_view itemName);

void edit(std::string_view itemName);

} // namespace quilvane
