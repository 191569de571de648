// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/System.h"

#include <iostream>

namespace quilvane {

void System::DebugLog(std::string_view message)
{
    std::cerr << message << '\n';
}

} // namespace quilvane
