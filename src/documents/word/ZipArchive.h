// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quilvane {

/// The files in a zip archive, by name. If the archive's directory is cut off or leads nowhere, they are
/// found by the headers that stand before each.
///
/// Reads the layout of PKWARE's APPNOTE.TXT, sections 4.3.6 to 4.3.16, by itself: the time that libgsf takes
/// grows with the square of the number of folders. Names are compared without regard to ASCII case, with
/// either slash between folders. An archive holds a view: the bytes must outlive it.
class ZipArchive {
public:
    /// One of the archive's files. Where its size is not known, `packed` reaches to the end of the archive.
    struct Entry {
        std::string name; // in lower case, with '/' between folders and none in front
        std::string_view packed;
        bool isDeflated;
    };

    explicit ZipArchive(std::string_view bytes);
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    /// Whether the entries were found without the help of the archive's directory.
    bool isDamaged() const { return m_isDamaged; }

    const std::vector<Entry>& entries() const { return m_entries; }

    /// Null if there is no file of that name. Of several, the first.
    const Entry* find(std::string_view name) const;

    /// Hands the unpacked bytes over in pieces of at most 16 KB, until `take` returns false, the file ends or
    /// its packed bytes make no sense any more. Check sums are not looked at: half a file is better than
    /// none.
    static void unpack(const Entry& entry, const std::function<bool(std::string_view)>& take);

    /// As names are compared.
    static std::string normalised(std::string_view name);

private:
    bool readDirectory();
    void findLocalHeaders();
    bool addEntry(std::size_t headerOffset, std::size_t packedSize);

    std::string_view m_bytes;
    std::vector<Entry> m_entries;
    std::unordered_map<std::string_view, std::size_t> m_byName; // of the entries' own names
    bool m_isDamaged = false;
};

} // namespace quilvane
