// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FailingReads.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

namespace quilvane {

namespace {

std::string failingPath; // empty: nothing fails
long failingByte = 0;

bool isFailing(int descriptor)
{
    if (failingPath.empty())
        return false;
    std::array<char, 4096> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    return size > 0 && std::string(path.data(), std::size_t(size)).find(failingPath) != std::string::npos;
}

} // namespace

FailingReads::FailingReads(std::string inPath, long atByte)
{
    failingPath = std::move(inPath);
    failingByte = atByte;
}

FailingReads::~FailingReads()
{
    failingPath.clear();
}

} // namespace quilvane

/// Replaces the C library's function: a program's own functions come first.
extern "C" ssize_t read(int descriptor, void* into, std::size_t count)
{
    if (quilvane::isFailing(descriptor)) {
        const long position = ::lseek(descriptor, 0, SEEK_CUR);
        if (position >= quilvane::failingByte) {
            errno = EIO;
            return -1;
        }
        count = std::min(count, std::size_t(quilvane::failingByte - position));
    }
    return ::syscall(SYS_read, descriptor, into, count);
}
