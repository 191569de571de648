// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/HTMLViewer.h"

namespace quilvane {

HTMLViewer::HTMLViewer(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::HTMLViewer)
{
}

} // namespace quilvane
