// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/InputFile.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace quilvane {

class FolderItem;
class WideTextDecoder;

/// A regular file, read from its start to its end as bytes. Only text in UTF-16 or UTF-32, which the scan
/// could not read, is recognised by its byte order mark and converted to UTF-8. No other encoding is
/// converted, and UTF-8's mark is kept.
///
/// Closed by Close() or with its last reference. Reading throws IOException, also on a closed stream.
class TextInputStream {
public:
    /// Nil, with the reason, if the file can't be opened or is anything but a regular file (a folder, a pipe,
    /// a device); never waits.
    static Ref<TextInputStream> Open(const FolderItem& item);

    explicit TextInputStream(InputFile file);
    ~TextInputStream();

    /// The rest of the file. If there is not enough memory for it, throws OutOfMemoryException and reads
    /// nothing.
    std::string ReadAll();

    /// The next line without its end, which is LF, CR or CRLF; empty at the end of the file.
    /// OutOfMemoryException as with ReadAll, for a line that does not end.
    std::string ReadLine();

    /// Reads up to `into.size()` bytes and returns how many; 0 at the end of the file only (or for an empty
    /// span).
    std::size_t Read(std::span<char> into);

    void Close();

private:
    bool fillBuffer();
    bool beginsDecoding(std::string_view bytes);

    InputFile m_file;
    std::string m_buffer; // what was read or decoded before it was asked for; the first m_taken bytes of it
                          // have been returned
    std::size_t m_taken = 0;
    bool m_hasBegun = false; // the first bytes have been read
    std::unique_ptr<WideTextDecoder> m_decoder; // null but for a text in UTF-16 or UTF-32
};

} // namespace quilvane
