// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

namespace quilvane {

/// Always parked outside of the window: a name without a widget.
class HTMLViewer : public RectControl {
public:
    HTMLViewer(Window& window, std::string_view name)
        : RectControl(window, name, ControlKind::HTMLViewer)
    {
    }
};

} // namespace quilvane
