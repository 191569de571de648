// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

class QPoint;
class QWidget;

namespace quilvane {

/// To be called once, at the start: from then on it is noted from which control the focus goes to a menu bar.
void followFocus();

/// Shows the edit commands of a text field or a list as its context menu, with its corner at `place` on the
/// screen. The control must have the focus.
void popUpEditMenu(QWidget& control, const QPoint& place);

/// Whether `itemName` is one of the commands on text that the toolkit itself carries out: undo, cut, copy,
/// paste, delete, select all.
bool isEditCommand(std::string_view itemName);

/// Whether the control that has the focus, or had it before the menu bar, can carry it out now.
bool canEdit(std::string_view itemName);

void edit(std::string_view itemName);

} // namespace quilvane
