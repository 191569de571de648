// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace quilvane {

/// A range of bytes of a file that is not read yet. For a reader that needs only a few of them, so that a
/// file of any size needs no memory. The file stays open as long as the object exists.
class FileBytes {
public:
    /// From `offset` on, `length` bytes, or fewer if the file ends before. Duplicates `file`, a descriptor,
    /// so the caller may close it. Throws IOException if not even the first byte can be read.
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
