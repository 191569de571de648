// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

namespace quilvane {

/// Always outside of the window: a name without a widget.
class TextArea : public RectControl {
public:
    TextArea(Window& window, std::string_view name)
        : RectControl(window, name, ControlKind::TextArea)
    {
    }
};

} // namespace quilvane
