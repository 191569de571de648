// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

class System {
public:
    System() = delete;

    /// One line for the log of the session: standard error.
    static void DebugLog(std::string_view message);
};

} // namespace quilvane
