// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace quilvane {

/// The result of opening a path: a regular file, something else, or a failure.
struct OpenedFile {
    FileDescriptor descriptor; ///< open for a regular file only
    std::uint64_t size = 0; ///< of the regular file when it was opened, in bytes
    int failure = 0; ///< an errno value; 0 as well for what is no regular file

    bool isNotRegular() const { return !descriptor.isOpen() && failure == 0; }

    /// Opens a regular file to be read, links followed. Opens nothing else: to open a pipe may wait for its
    /// other end, and to open a device may start it. Any thread.
    static OpenedFile open(const std::string& path);
};

} // namespace quilvane
