// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/logLine.h"

#include <iostream>

namespace quilvane {

void logLine(std::string_view text)
{
    std::cerr << "quilvane: " << text << '\n';
}

} // namespace quilvane
