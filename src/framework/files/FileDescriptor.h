// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>

namespace quilvane {

/// Owns a file descriptor, and closes it in its destructor.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Takes over `number`; a negative one is no open file.
    explicit FileDescriptor(int number)
        : m_number(number)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor() { close(); }

    bool isOpen() const { return m_number >= 0; }
    /// -1 if none is open; system calls then fail with EBADF.
    int number() const { return m_number; }

    /// Returns 0 or the errno value. The file counts as closed either way. errno itself is kept.
    int close();

private:
    int m_number = -1;
};

} // namespace quilvane
