// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace quilvane {

/// Imitates a slow disk or network share: while it exists, opening a file below `folder` takes `perOpen`, and
/// reading it is limited to `bytesPerSecond` (0: no limit). Works for calls of the program itself, on all
/// threads, but not for calls inside of libraries. One object at a time.
class SlowFiles {
public:
    SlowFiles(std::string folder, std::chrono::microseconds perOpen, std::size_t bytesPerSecond);
    ~SlowFiles();
    SlowFiles(const SlowFiles&) = delete;
    SlowFiles& operator=(const SlowFiles&) = delete;
};

} // namespace quilvane
