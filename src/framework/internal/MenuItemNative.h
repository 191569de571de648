// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/MenuItem.h"

#include <QAction>

namespace quilvane {

struct MenuItem::Native {
    QAction action; // in every window that shows the item
};

} // namespace quilvane
