// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string_view>

namespace quilvane {

/// Initialises the toolkit. The first object of the process to be made and the last to be destroyed.
class Runtime {
public:
    /// `argc` and `argv` must live as long as the runtime.
    Runtime(int& argc, char** argv, std::string_view applicationName);
    ~Runtime();

    /// Tells the desktop which desktop entry the program has, and gives the windows that entry's icon from
    /// the resources. To be called before the first window is made.
    static void setDesktopEntry(std::string_view id);

    /// Light text on dark windows, whatever the desktop's own colours.
    static void useDarkColors();

private:
    struct Native;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane
