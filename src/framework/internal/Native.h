// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <QWidget>

namespace quilvane {

/// The Qt side of a control. `widget` is null for a control outside of the window.
struct RectControl::Native {
    QWidget* content = nullptr;
    QWidget* widget = nullptr; // a child of `content`, but deleted by the control
};

} // namespace quilvane
