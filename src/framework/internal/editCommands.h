// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// Once, at the start: notes from now on which control the keyboard goes from to a menu bar.
void followFocus();

/// Whether `itemName` is one of the commands on text that the toolkit itself carries out: undo, cut, copy,
/// paste, delete, select all.
bool isEditCommand(std::string_view itemName);

/// Whether the control that has the keyboard, or had it before the menu bar, can carry it out now.
bool canEdit(std::string_view itemName);

void edit(std::string_view itemName);

} // namespace quilvane
