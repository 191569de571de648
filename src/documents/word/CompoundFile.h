// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// An older office document is a small file system in one file: named streams in chains of sectors
/// ([MS-CFB]). Open it, ask for streams, let it go; the bytes must outlive it.
///
/// Only the streams at the top are seen: storages hold embedded documents, whose streams bear the same names.
/// Whatever the bytes say, no walk is longer than the file has sectors, or pieces of 64 bytes for a small
/// stream, and none recurses.
class CompoundFile {
public:
    /// Nothing if the bytes are no compound file, or its header or directory is damaged.
    static std::optional<CompoundFile> open(std::string_view bytes);

    /// Names are ASCII; case does not count.
    bool has(std::string_view name) const;

    /// Nothing if there is no such stream, the file does not hold all of it, or it has more than 128 MB.
    std::optional<std::string> stream(std::string_view name) const;

private:
    struct Entry {
        std::uint32_t firstSector;
        std::uint64_t size; // bytes
    };

    static constexpr std::uint64_t anySize = std::numeric_limits<std::uint64_t>::max();

    explicit CompoundFile(std::string_view bytes);
    void findAllocationTable();
    bool findStreams();

    std::size_t sectorCount() const;
    std::string_view sector(std::uint32_t number) const;
    std::uint32_t sectorAfter(std::uint32_t number) const;
    std::string chain(std::uint32_t first, std::uint64_t size) const;
    std::string miniChain(std::uint32_t first, std::uint64_t size) const;
    std::string_view directoryEntry(std::size_t index) const;
    Entry entryOf(std::string_view directoryEntry) const;
    std::optional<Entry> find(std::string_view name) const;

    std::string_view m_bytes;
    std::size_t m_sectorSize;
    /// The sectors that hold the allocation table, in its order.
    std::vector<std::uint32_t> m_tableSectors;
    std::string m_directory;
    /// Indices into the directory of the streams at the top.
    std::vector<std::uint32_t> m_streams;
};

} // namespace quilvane
