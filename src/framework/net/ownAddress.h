// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// Whether a numeric address, IPv4 or IPv6, leads to this machine or to what is plugged into it: loopback,
/// link-local and unspecified addresses, and those of the machine's own interfaces. False for what is no
/// address. On any thread.
bool isOwnAddress(const std::string& address);

} // namespace quilvane
