// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace quilvane {

/// How many bytes the process can still take before the kernel starts to end processes: what the machine has
/// free, and no more than the process's control groups leave (version 1 and 2). The largest number if nothing
/// is known. `root` stands before /proc and /sys, for a tree that tests have made.
std::uint64_t availableMemory(const std::string& root = {});

/// Throws OutOfMemoryException, "`what`: ... are needed, and ... are free.", if that many bytes more would
/// leave less than the rest of the program needs. To be asked before memory is taken by the gigabyte, since
/// the kernel does not refuse it but ends the process later. A few megabytes are granted without a look at
/// what is free.
void requireMemory(std::uint64_t bytes, const std::string& what);

} // namespace quilvane
