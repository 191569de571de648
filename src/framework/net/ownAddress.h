// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// Whether a numeric address, IPv4 or IPv6, leads to this machine or to a device on the same network link:
/// loopback, unspecified and link-local addresses, and those of the machine's own interfaces. False for any
/// other text. On any thread.
bool isOwnAddress(const std::string& address);

} // namespace quilvane
