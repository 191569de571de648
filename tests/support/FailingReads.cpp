// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FailingReads.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <sys/syscall.h>
#include <unistd.h>

namespace quilvane {

namespace {

struct Failure {
    std::string path; // empty: nothing fails
    long byte = 0;
} failure;

bool isFailing(int descriptor)
{
    if (failure.path.empty())
        return false;
    std::error_code ignored;
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), ignored);
    return path.native().find(failure.path) != std::string::npos;
}

} // namespace

Scoped failingReads(const std::string& inPath, long atByte)
{
    return Scoped(failure, { inPath, atByte });
}

} // namespace quilvane

/// Replaces the C library's function: a program's own functions come first.
extern "C" ssize_t read(int descriptor, void* into, std::size_t count)
{
    if (quilvane::isFailing(descriptor)) {
        const long position = ::lseek(descriptor, 0, SEEK_CUR);
        if (position >= quilvane::failure.byte) {
            errno = EIO;
            return -1;
        }
        count = std::min(count, std::size_t(quilvane::failure.byte - position));
    }
    return ::syscall(SYS_read, descriptor, into, count);
}
