// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// Writes a line of the toolkit to the standard error stream, as a help in finding faults. The program's log
/// is System::DebugLog.
void logLine(std::string_view text);

} // namespace quilvane
