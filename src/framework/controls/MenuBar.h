// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/MenuItem.h"

namespace quilvane {

class Window;

/// A menu bar that any number of windows show. They share the items and their states; each window draws its
/// own bar.
class MenuBar {
public:
    MenuBar();
    virtual ~MenuBar();

    /// Throws std::logic_error for a name that no item has.
    MenuItem& Lookup(std::string_view name) const;

    const std::vector<std::unique_ptr<MenuItem>>& menus() const { return m_menus; }

    void attachTo(Window& window);

protected:
    MenuItem& append(std::unique_ptr<MenuItem> menu);

private:
    std::vector<std::unique_ptr<MenuItem>> m_menus;
};

} // namespace quilvane
