// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <QWidget>

namespace quilvane {

/// The toolkit's side of a control. `widget` is null for a control that nobody can reach.
struct RectControl::Native {
    QWidget* content = nullptr;
    QWidget* widget = nullptr; // the control's own, though a child of the content
};

} // namespace quilvane
