// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace quilvane {

class App;

/// Declares the file types, then makes the application object with its version data, menu bar and menu
/// handlers. A Runtime must exist.
std::unique_ptr<App> makeApp();

/// The program from start to end. Returns the process's exit code.
int startUp(int argc, char** argv);

} // namespace quilvane
