// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/App.h"
#include "app/Window1.h"
#include "app/startUp.h"
#include "support/ScriptedDesktop.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <memory>

namespace quilvane {

/// The whole program but its event loop, in a home of its own, with a main window and a scripted desktop.
class ProgramTest : public testing::Test {
protected:
    ProgramTest();
    ~ProgramTest() override;

    Window1& window() { return implicit<Window1>(); }
    std::vector<std::string> rows();
    void addRows(const std::vector<std::string>& addresses);
    /// Presses Search File and picks `path`.
    void searchFile(const std::string& path);
    static void settle() { Application::DoEvents(200); }

    TempFolder folder;
    ScriptedDesktop desktop;
    std::unique_ptr<App> application;
};

} // namespace quilvane
