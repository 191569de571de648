// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// Of the sources that the program and its reader have in common: an upgrade may replace the reader under a
/// running program.
std::string buildId();

} // namespace quilvane
