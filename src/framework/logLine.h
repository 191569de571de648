// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// Writes a line of the toolkit's own to the standard error stream, for whoever looks into what went wrong.
/// The program's log is System::DebugLog.
void logLine(std::string_view text);

} // namespace quilvane
