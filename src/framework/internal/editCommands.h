// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

class QPoint;
class QWidget;

namespace quilvane {

/// Once, at the start: notes from now on which control the keyboard goes from to a menu bar.
void followFocus();

/// Shows the commands that serve a list as its context menu, with its corner at `place` on the screen. The
/// list must have the keyboard.
void popUpEditMenu(QWidget& list, const QPoint& place);

/// Whether `itemName` is one of the commands on text that the toolkit itself carries out: undo, cut, copy,
/// paste, delete, select all.
bool isEditCommand(std::string_view itemName);

/// Whether the control that has the keyboard, or had it before the menu bar, can carry it out now.
bool canEdit(std::string_view itemName);

void edit(std::string_view itemName);

} // namespace quilvane
