// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Window.h"

#include <QMainWindow>

namespace quilvane {

struct Window::Native {
    std::unique_ptr<QMainWindow> frame;
    QWidget* content = nullptr; // the frame's central widget
};

} // namespace quilvane
