// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/CompoundFile.h"

#include "text/ascii.h"
#include "text/littleEndian.h"

#include <algorithm>

namespace quilvane {

namespace {

constexpr std::string_view signature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::size_t headerSize = 512;

// Offsets in the header and in a directory entry ([MS-CFB] 2.2, 2.6.1).
constexpr std::size_t sectorShiftAt = 30;
constexpr std::size_t firstDirectorySectorAt = 48;
constexpr std::size_t miniCutoffAt = 56;
constexpr std::size_t firstMiniTableSectorAt = 60;
constexpr std::size_t firstTableListSectorAt = 68;
constexpr std::size_t tableListAt = 76;

constexpr std::size_t entrySize = 128;
constexpr std::size_t entryNameLengthAt = 64;
constexpr std::size_t entryTypeAt = 66;
constexpr std::size_t entryLeftAt = 68;
constexpr std::size_t entryRightAt = 72;
constexpr std::size_t entryChildAt = 76;
constexpr std::size_t entrySectorAt = 116;
constexpr std::size_t entrySizeAt = 120;

constexpr std::uint8_t streamType = 2;
constexpr std::uint8_t rootType = 5;
constexpr std::uint32_t noEntry = 0xFFFFFFFF;
constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::size_t smallShift = 9;
constexpr std::size_t largeShift = 12;
constexpr std::size_t miniSectorSize = 64;

/// Bytes of a stream or a table. Chains may run in circles, or share sectors, so that they are longer than
/// the file.
constexpr std::size_t longestChain = std::size_t(128) << 20;

/// The pieces of a chain, joined until they are `size` bytes or the chain leaves the `count` pieces there
/// are. A chain that runs in a circle ends once it was as long as all pieces together.
template <typename PieceAt, typename NextOf>
std::string joined(std::uint32_t first, std::uint64_t size, std::size_t count, PieceAt pieceAt, NextOf nextOf)
{
    std::string result;
    if (size <= longestChain) // a size that is known; the pieces may hold less
        result.reserve(std::min<std::uint64_t>(size, count * pieceAt(first).size()));
    size = std::min<std::uint64_t>(size, longestChain);
    std::uint32_t number = first;
    for (std::size_t taken = 0; taken < count && number < count && result.size() < size; ++taken) {
        const std::string_view piece = pieceAt(number);
        result.append(piece.substr(0, std::min<std::uint64_t>(piece.size(), size - result.size())));
        number = nextOf(number);
    }
    return result;
}

/// The name, with a question mark for each character that is not ASCII: no name asked for holds one.
std::string nameOf(std::string_view entry)
{
    std::string name;
    const std::size_t length = std::min<std::size_t>(u16At(entry, entryNameLengthAt), entryNameLengthAt);
    for (std::size_t at = 0; at + 2 < length; at += 2) { // the last one is a zero
        const std::uint16_t unit = u16At(entry, at);
        name += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return name;
}

} // namespace

std::optional<CompoundFile> CompoundFile::open(std::string_view bytes)
{
    const std::size_t shift = u16At(bytes, sectorShiftAt);
    if (!bytes.starts_with(signature) || bytes.size() <= headerSize
        || (shift != smallShift && shift != largeShift))
        return {};
    CompoundFile file(bytes);
    file.findAllocationTable();
    if (!file.findStreams())
        return {};
    return file;
}

CompoundFile::CompoundFile(std::string_view bytes)
    : m_bytes(bytes)
    , m_sectorSize(std::size_t(1) << u16At(bytes, sectorShiftAt))
{
}

/// The header lists the first 109 sectors of the table; the others are listed in further sectors, each of
/// which ends with the number of the next one.
void CompoundFile::findAllocationTable()
{
    const std::size_t entriesInSector = m_sectorSize / 4;
    const std::size_t needed = (sectorCount() + entriesInSector - 1) / entriesInSector;
    const auto takeList = [&](std::string_view list) {
        for (std::size_t at = 0; at + 4 <= list.size() && m_tableSectors.size() < needed; at += 4)
            m_tableSectors.push_back(u32At(list, at));
    };
    takeList(m_bytes.substr(tableListAt, headerSize - tableListAt));
    std::uint32_t next = u32At(m_bytes, firstTableListSectorAt);
    while (m_tableSectors.size() < needed && next < sectorCount()) {
        const std::string_view list = sector(next);
        if (list.size() < m_sectorSize)
            return;
        takeList(list.substr(0, m_sectorSize - 4));
        next = u32At(list, m_sectorSize - 4);
    }
}

/// Walks the tree of names below the root. False if it is damaged.
bool CompoundFile::findStreams()
{
    m_directory = chain(u32At(m_bytes, firstDirectorySectorAt), anySize);
    const std::size_t count = m_directory.size() / entrySize;
    const std::string_view root = directoryEntry(0);
    if (u8At(root, entryTypeAt) != rootType)
        return false;
    std::vector<bool> seen(count);
    std::vector<std::uint32_t> waiting{ u32At(root, entryChildAt) };
    while (!waiting.empty()) {
        const std::uint32_t index = waiting.back();
        waiting.pop_back();
        if (index == noEntry)
            continue;
        if (index >= count || seen[index])
            return false;
        seen[index] = true;
        const std::string_view entry = directoryEntry(index);
        if (u8At(entry, entryTypeAt) == streamType)
            m_streams.push_back(index);
        waiting.push_back(u32At(entry, entryLeftAt));
        waiting.push_back(u32At(entry, entryRightAt));
    }
    return true;
}

/// The last one may be cut short: some writers leave out its padding.
std::size_t CompoundFile::sectorCount() const
{
    return m_bytes.size() <= m_sectorSize ? 0 : (m_bytes.size() - 1) / m_sectorSize;
}

std::string_view CompoundFile::sector(std::uint32_t number) const
{
    return bytesAt(m_bytes, (std::size_t(number) + 1) * m_sectorSize, m_sectorSize);
}

std::uint32_t CompoundFile::sectorAfter(std::uint32_t number) const
{
    const std::size_t entriesInSector = m_sectorSize / 4;
    const std::size_t index = number / entriesInSector;
    if (index >= m_tableSectors.size())
        return endOfChain;
    const std::string_view table = sector(m_tableSectors[index]);
    const std::size_t at = number % entriesInSector * 4;
    return holdsBytes(table, at, 4) ? u32At(table, at) : endOfChain;
}

std::string CompoundFile::chain(std::uint32_t first, std::uint64_t size) const
{
    return joined(
        first, size, sectorCount(), [this](std::uint32_t number) { return sector(number); },
        [this](std::uint32_t number) { return sectorAfter(number); });
}

/// Small streams lie in sectors of 64 bytes within one large stream, which is the root's, and have a table of
/// their own.
std::string CompoundFile::miniChain(std::uint32_t first, std::uint64_t size) const
{
    const Entry root = entryOf(directoryEntry(0));
    const std::string sectors = chain(root.firstSector, root.size);
    const std::string table = chain(u32At(m_bytes, firstMiniTableSectorAt), anySize);
    return joined(
        first, size, (sectors.size() + miniSectorSize - 1) / miniSectorSize,
        [&](std::uint32_t number) { return bytesAt(sectors, number * miniSectorSize, miniSectorSize); },
        [&](std::uint32_t number) {
            const std::size_t at = std::size_t(number) * 4;
            return holdsBytes(table, at, 4) ? u32At(table, at) : endOfChain;
        });
}

std::string_view CompoundFile::directoryEntry(std::size_t index) const
{
    return bytesAt(m_directory, index * entrySize, entrySize);
}

CompoundFile::Entry CompoundFile::entryOf(std::string_view directoryEntry) const
{
    std::uint64_t size = u32At(directoryEntry, entrySizeAt);
    // With small sectors some writers leave the upper half of the size undefined.
    if (m_sectorSize > headerSize)
        size |= std::uint64_t(u32At(directoryEntry, entrySizeAt + 4)) << 32;
    return { u32At(directoryEntry, entrySectorAt), size };
}

std::optional<CompoundFile::Entry> CompoundFile::find(std::string_view name) const
{
    for (const std::uint32_t index : m_streams)
        if (equalsIgnoringCase(nameOf(directoryEntry(index)), name))
            return entryOf(directoryEntry(index));
    return {};
}

bool CompoundFile::has(std::string_view name) const
{
    return find(name).has_value();
}

std::optional<std::string> CompoundFile::stream(std::string_view name) const
{
    const std::optional<Entry> entry = find(name);
    if (!entry)
        return {};
    const bool isSmall = entry->size < u32At(m_bytes, miniCutoffAt);
    std::string content
        = isSmall ? miniChain(entry->firstSector, entry->size) : chain(entry->firstSector, entry->size);
    if (content.size() < entry->size)
        return {};
    return content;
}

} // namespace quilvane
