// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/documents/internal/ReaderProcess.h"
#include "support/Scoped.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

namespace quilvane {

inline std::ptrdiff_t openFiles(pid_t process = ::getpid())
{
    return std::distance(std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd"), {});
}

inline std::vector<pid_t> childrenOf(pid_t process)
{
    const std::string number = std::to_string(process);
    std::ifstream file("/proc/" + number + "/task/" + number + "/children");
    return { std::istream_iterator<pid_t>(file), {} };
}

inline pid_t readerProcess()
{
    return childrenOf(::getpid()).at(0);
}

/// While the result exists, `program` reads documents.
inline Scoped otherReader(const std::string& program)
{
    const auto use = [](const std::string& path) {
        ReaderProcess::forget();
        ReaderProcess::program() = path;
    };
    return Scoped(use, ReaderProcess::program(), program);
}

} // namespace quilvane
