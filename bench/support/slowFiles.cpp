// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Replaces the C library's open and read: a program's own symbols come first.
#undef _FORTIFY_SOURCE // its inline forms of these functions can't be defined again
#include "slowFiles.h"

#include <array>
#include <atomic>
#include <climits>
#include <cstdarg>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Slowness {
    std::string folder;
    std::chrono::microseconds perOpen;
    std::size_t bytesPerSecond;
};

// Set while no other thread runs; read by any thread.
std::atomic<const Slowness*> slowness = nullptr;

int slowOpen(int folder, const char* path, int flags, mode_t mode)
{
    const Slowness* slow = slowness;
    const bool opensNothing = (flags & O_PATH) != 0;
    if (slow && !opensNothing && std::string_view(path).starts_with(slow->folder))
        std::this_thread::sleep_for(slow->perOpen);
    return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

bool isSlow(int file, const Slowness& slow)
{
    std::array<char, PATH_MAX> path;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    return length > 0
        && std::string_view(path.data(), static_cast<std::size_t>(length)).starts_with(slow.folder);
}

ssize_t slowRead(int file, void* into, std::size_t count)
{
    const ssize_t got = ::syscall(SYS_read, file, into, count);
    const Slowness* slow = slowness;
    if (slow && slow->bytesPerSecond > 0 && got > 0 && isSlow(file, *slow))
        std::this_thread::sleep_for(
            std::chrono::duration<double>(double(got) / double(slow->bytesPerSecond)));
    return got;
}

mode_t modeOf(int flags, std::va_list arguments)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return slowOpen(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return slowOpen(folder, path, flags, mode);
}

ssize_t read(int file, void* into, std::size_t count)
{
    return slowRead(file, into, count);
}

// Hardened code calls these instead.

int __open_2(const char* path, int flags)
{
    return slowOpen(AT_FDCWD, path, flags, 0);
}

int __openat_2(int folder, const char* path, int flags)
{
    return slowOpen(folder, path, flags, 0);
}

ssize_t __read_chk(int file, void* into, std::size_t count, std::size_t)
{
    return slowRead(file, into, count);
}

} // extern "C"

namespace quilvane {

SlowFiles::SlowFiles(std::string folder, std::chrono::microseconds perOpen, std::size_t bytesPerSecond)
{
    slowness = new Slowness{ std::move(folder), perOpen, bytesPerSecond };
}

SlowFiles::~SlowFiles()
{
    // Not deleted: a thread of the program may still use it.
    slowness = nullptr;
}

} // namespace quilvane
