// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/MenuItem.h"

namespace quilvane {

/// The item that ends the application. It stands last in its menu, where users of this platform look for it.
class QuitMenuItem : public MenuItem {
public:
    using MenuItem::MenuItem;
    bool isQuit() const override { return true; }
};

} // namespace quilvane
