// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/FileDescriptor.h"

#include <cerrno>

#include <unistd.h>

namespace quilvane {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    if (this != &other) {
        close();
        m_number = std::exchange(other.m_number, -1);
    }
    return *this;
}

int FileDescriptor::close()
{
    if (!isOpen())
        return 0;
    const int errorBefore = errno;
    const int failure = ::close(std::exchange(m_number, -1)) == 0 ? 0 : errno;
    errno = errorBefore;
    return failure;
}

} // namespace quilvane
