// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/MenuBar.h"

namespace quilvane {

/// The menu bar of all windows: one instance, made at the first use and kept.
class MainMenuBar : public MenuBar {
public:
    static MainMenuBar& instance();

private:
    MainMenuBar();

    void addFileMenu();
    void addEditMenu();
    void addFiltersMenu();
};

// Items that code switches, in the application's bar.
MenuItem& FileNewWindow();
MenuItem& FiltersApplyFilters();

} // namespace quilvane
