// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/FileBytes.h"

#include "framework/exceptions.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace quilvane {

FileBytes::FileBytes(int file, const std::string& path, std::uint64_t offset, std::uint64_t length)
    : m_file(::fcntl(file, F_DUPFD_CLOEXEC, 0))
    , m_offset(offset)
    , m_length(length)
{
    char first = 0;
    if (!m_file.isOpen() || ::pread(m_file.number(), &first, 1, static_cast<off_t>(offset)) < 0)
        throw IOException(path, "read", errno);
}

} // namespace quilvane
