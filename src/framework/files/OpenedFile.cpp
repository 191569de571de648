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
        // Something else may stand there by now: hence a second look, and the last two flags, with which the
        // opening of a pipe does not wait and a terminal does not become that of this process.
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
