// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string_view>

namespace quilvane {

/// The toolkit itself, initialised: made first in the process and gone last.
class Runtime {
public:
    /// `argc` and `argv` must live as long as the runtime.
    Runtime(int& argc, char** argv, std::string_view applicationName);
    ~Runtime();

    /// Tells the desktop which of its entries this is: the windows get the entry's icon, from the resources.
    /// Call it before there is a window.
    static void setDesktopEntry(std::string_view id);

    /// Light text on dark windows, whatever the desktop's own colours.
    static void useDarkColors();

private:
    struct Native;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane
