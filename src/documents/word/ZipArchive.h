// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// The files in a zip archive, by name. If the archive's directory is missing or wrong, they are found by the
/// header before each file.
///
/// Reads the layout of PKWARE's APPNOTE.TXT, sections 4.3.6 to 4.3.16, by itself: the time that libgsf takes
/// grows with the square of the number of folders. Names are compared without regard to ASCII case, with
/// either slash between folders. An archive holds a view: the bytes must outlive it. It reads only the
/// directory and the files that are unpacked, and keeps some forty bytes for each of at most 500,000 files.
class ZipArchive {
public:
    /// One of the archive's files. Where its size is not known, `packed` reaches to the end of the archive.
    struct Entry {
        std::string_view name; // as the archive has it; at most `longestName`
        std::string_view packed;
        bool isDeflated;
    };

    /// Bytes. Files of longer names are passed over: no part of a document has one.
    static constexpr std::size_t longestName = 255;

    explicit ZipArchive(std::string_view bytes);
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    /// Whether the entries were found without the help of the archive's directory.
    bool isDamaged() const { return m_isDamaged; }

    const std::vector<Entry>& entries() const { return m_entries; }

    /// Null if there is no file of that name. Of several, the first.
    const Entry* find(std::string_view name) const;

    /// The file's unpacked bytes, `most` at most; fewer if its packed bytes are damaged from some point on.
    /// Check sums are ignored: half a file is better than none.
    static std::string unpacked(const Entry& entry, std::size_t most);

    /// The form in which names are compared: in lower case, with '/' between folders and none in front.
    static std::string normalised(std::string_view name);

private:
    bool readDirectory();
    void findLocalHeaders();
    bool addEntry(std::size_t headerOffset, std::size_t packedSize);

    std::string_view m_bytes;
    std::vector<Entry> m_entries;
    /// Indices of the entries, sorted by their names: a table of hashes could be made to collide.
    std::vector<std::uint32_t> m_byName;
    bool m_isDamaged = false;
};

} // namespace quilvane
