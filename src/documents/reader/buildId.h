// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// A hash of the sources that the program and its reader share. It tells them apart after an upgrade has
/// replaced the reader of a running program.
std::string buildId();

} // namespace quilvane
