// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace quilvane {

/// Bytes of a file that are named and not yet read: for a reader that looks at a few of them only, which a
/// file of any size then costs no memory. The file stays open as long as the object lives.
class FileBytes {
public:
    /// From `offset` on, `length` bytes, or fewer if the file ends before. Opens `file`, a descriptor, a
    /// second time. Throws IOException if not even the first byte can be read.
    FileBytes(int file, const std::string& path, std::uint64_t offset, std::uint64_t length);

    int descriptor() const { return m_file.number(); }
    std::uint64_t offset() const { return m_offset; }
    std::uint64_t length() const { return m_length; }

private:
    FileDescriptor m_file;
    std::uint64_t m_offset;
    std::uint64_t m_length;
};

} // namespace quilvane
