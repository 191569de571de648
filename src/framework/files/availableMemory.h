// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace quilvane {

/// How many bytes the process can still allocate before the kernel starts to kill processes: the machine's
/// free memory, limited by what the process's control groups leave (versions 1 and 2). The largest number if
/// nothing is known. `root` is put before /proc and /sys; tests give a tree of their own.
std::uint64_t availableMemory(const std::string& root = {});

/// Throws OutOfMemoryException, "`what`: ... are needed, and ... are free.", if so many more bytes would
/// leave too little for the rest of the program. To be called before gigabytes are allocated, since the
/// kernel does not refuse them but kills the process later. A few megabytes are always allowed.
void requireMemory(std::uint64_t bytes, const std::string& what);

} // namespace quilvane
