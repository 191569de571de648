// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace quilvane {

class FolderItem;

/// An open regular file that is read from its beginning to its end. The common part of the input streams.
class InputFile {
public:
    /// What to do with a folder, a pipe, a socket or a device.
    enum class NotRegular { Refused, ReadAsEmpty };

    /// Opens `item`. If that fails, the result is not open and `whyNot` holds a sentence for the user. Never
    /// waits for the other end of a pipe or for a device.
    static InputFile open(const FolderItem& item, NotRegular notRegular, std::string& whyNot);

    bool isOpen() const { return m_descriptor.isOpen(); }
    void close();

    /// For another process that reads the file; -1 if none is open.
    int descriptor() const { return m_descriptor.number(); }

    /// The path by which it was opened.
    const std::string& path() const { return m_path; }

    /// In bytes, now. Throws IOException.
    std::uint64_t size() const;

    /// Reads up to `into.size()` bytes; 0 at the end of the file. Throws IOException.
    std::size_t read(std::span<char> into);

    /// Throws OutOfMemoryException if the free memory is less than twice the rest of the file, which a
    /// growing string needs.
    void requireMemoryForRest() const;

private:
    FileDescriptor m_descriptor;
    std::string m_path;
    std::uint64_t m_sizeAtOpening = 0;
    std::uint64_t m_position = 0;
    bool m_atEnd = false;
};

} // namespace quilvane
