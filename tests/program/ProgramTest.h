// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/App.h"
#include "app/Window1.h"
#include "app/startUp.h"
#include "support/Scoped.h"
#include "support/ScriptedDesktop.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace quilvane {

using Rows = std::vector<std::string>;

inline const std::string nothingFound = "Finished searching. No email addresses detected.";

inline std::string found(int count)
{
    return "Finished searching. " + std::to_string(count)
        + (count == 1 ? " email detected. Duplicates removed." : " emails detected. Duplicates removed.");
}

/// The whole program without its event loop, with its own data folder, a main window and a scripted desktop.
class ProgramTest : public testing::Test {
protected:
    ProgramTest();
    ~ProgramTest() override;

    Window1& window() { return implicit<Window1>(); }
    static Rows rowsOf(const Listbox& list);
    Rows rows() { return rowsOf(window().Listbox1); }
    void addRows(const Rows& addresses);
    /// Presses Search File and picks `path`.
    void searchFile(const std::string& path);
    static void settle() { Application::DoEvents(200); }

    TempFolder folder;
    Scoped dataFolder = environmentVariable("XDG_DATA_HOME", folder.path());
    ScriptedDesktop desktop;
    std::unique_ptr<App> application;
};

} // namespace quilvane
