// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Application.h"

#include <string>

namespace quilvane {

/// The application object: the one stored setting, the filter dialog's memory, and the pass that brings menus
/// and buttons up to date.
class App : public Application {
public:
    /// Kept in the preferences file, which has always held it. No control shows it, no reader and no export
    /// asks for it: the exports have separators of their own.
    std::string delimiter = "tab";

    // What the filter dialog remembers while the program runs. Despite the names, none of it is stored.
    bool prefCom = false;
    bool prefNet = false;
    bool prefGov = false;
    bool prefEdu = false;
    bool prefMil = false;
    bool prefBiz = false;
    bool prefTV = false;
    bool prefOrg = false;
    bool prefDev = false;
    bool prefInt = false;
    std::string prefCheck1;
    std::string prefCheck2;
    std::string prefCheck3;
    std::string prefCheck4;
    std::string prefCheck5;

    bool _FileAboutTamsrel_Action();
    bool _FileNewWindow_Action();
    bool _FiltersApplyFilters_Action();

protected:
    void Event_EnableMenuItems() override;
    void Event_Open() override;
};

/// The application object. There must be one.
App& app();

} // namespace quilvane
