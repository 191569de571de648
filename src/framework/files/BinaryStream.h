// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/FileBytes.h"
#include "framework/files/InputFile.h"

#include <cstdint>

namespace quilvane {

class FolderItem;

/// A file, read as bytes.
///
/// Closed by Close() or with its last reference.
class BinaryStream {
public:
    /// Nil, with the reason, if the file can't be opened; never waits. A folder, a pipe, a socket and a
    /// device count as an empty file: they may have the name of a document, and a run must go on as after a
    /// document that can't be read. `readWrite` has no effect, since a stream can't write.
    static Ref<BinaryStream> Open(const FolderItem& item, bool readWrite = false);

    explicit BinaryStream(InputFile file);

    /// The size of the file in bytes, now. Throws IOException.
    std::uint64_t Length() const;

    /// The next `count` bytes, fewer if the file ends before. They are not read yet: streams are used for
    /// documents, most of whose bytes are never needed. Throws IOException.
    FileBytes Read(std::uint64_t count);

    void Close();

private:
    InputFile m_file;
    std::uint64_t m_position = 0;
};

} // namespace quilvane
