// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/OpenedFile.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace quilvane {

OpenedFile OpenedFile::open(const std::string& path)
{
    OpenedFile result;
    struct stat status { };
    bool isThere = ::stat(path.c_str(), &status) == 0;
    if (isThere && S_ISREG(status.st_mode)) {
        // By now something else may have that path. So the type is checked again, and with the last two flags
        // open() does not wait for a pipe and does not make a terminal the controlling one of this process.
        FileDescriptor opened(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
        isThere = opened.isOpen() && ::fstat(opened.number(), &status) == 0;
        if (isThere && S_ISREG(status.st_mode)) {
            result.size = static_cast<std::uint64_t>(status.st_size);
            result.descriptor = std::move(opened);
        }
    }
    if (!isThere)
        result.failure = errno;
    return result;
}

} // namespace quilvane
