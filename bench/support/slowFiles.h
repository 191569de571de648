// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace quilvane {

/// A slow disk or a share across a network: while it lives, an open of a file below `folder` takes `perOpen`,
/// and what is read of it comes at `bytesPerSecond`; 0 for no limit. Holds for the threads of a program that
/// is linked with it, and not for libraries' own calls. One at a time.
class SlowFiles {
public:
    SlowFiles(std::string folder, std::chrono::microseconds perOpen, std::size_t bytesPerSecond);
    ~SlowFiles();
    SlowFiles(const SlowFiles&) = delete;
    SlowFiles& operator=(const SlowFiles&) = delete;
};

} // namespace quilvane
