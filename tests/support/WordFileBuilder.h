// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quilvane {

inline std::string littleEndian(std::uint64_t value, std::size_t size)
{
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i, value >>= 8)
        bytes += static_cast<char>(value & 0xFF);
    return bytes;
}

inline void patch(std::string& bytes, std::size_t at, std::string_view by)
{
    bytes.replace(at, by.size(), by);
}

inline void padTo(std::string& bytes, std::size_t multiple)
{
    bytes.resize((bytes.size() + multiple - 1) / multiple * multiple);
}

/// ASCII as UTF-16, little-endian.
inline std::string wide(std::string_view text)
{
    std::string bytes;
    for (const char c : text)
        bytes += { c, '\0' };
    return bytes;
}

/// A compound file with streams of any size, each in consecutive large sectors: the directory first, the
/// streams in their order, the allocation table last. The tree of names is one long branch.
inline std::string compoundFile(const std::vector<std::pair<std::string, std::string>>& streams)
{
    constexpr std::size_t sectorSize = 512;
    constexpr std::uint32_t none = 0xFFFFFFFF;
    constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
    std::string sectors;
    std::string table;
    const auto appendChain = [&](std::string content) {
        padTo(content, sectorSize);
        sectors += content;
        for (std::size_t next = table.size() / 4 + 1; next < sectors.size() / sectorSize; ++next)
            table += littleEndian(next, 4);
        table += littleEndian(endOfChain, 4);
    };
    const auto entry = [](std::string_view name, int type, std::uint32_t right, std::uint32_t child,
                           std::size_t sector, std::size_t size) {
        std::string bytes = wide(name);
        bytes.resize(64);
        return bytes + littleEndian(name.size() * 2 + 2, 2) + littleEndian(static_cast<unsigned>(type), 1)
            + '\1' + littleEndian(none, 4) + littleEndian(right, 4) + littleEndian(child, 4)
            + std::string(36, '\0') + littleEndian(sector, 4) + littleEndian(size, 8);
    };

    std::string directory = entry("Root Entry", 5, none, 1, endOfChain, 0);
    std::size_t sector = (streams.size() + 1 + 3) / 4;
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const auto& [name, content] = streams[i];
        const auto right = i + 1 < streams.size() ? static_cast<std::uint32_t>(i + 2) : none;
        directory += entry(name, 2, right, none, sector, content.size());
        sector += (content.size() + sectorSize - 1) / sectorSize;
    }
    appendChain(std::move(directory));
    for (const auto& stream : streams)
        if (!stream.second.empty())
            appendChain(stream.second);

    const std::size_t tableBegin = sectors.size() / sectorSize;
    padTo(table, sectorSize);
    const std::size_t tableSectors = table.size() / sectorSize;
    std::string header = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    header.resize(30);
    header
        += littleEndian(9, 2) + littleEndian(6, 2); // sectors of 512 and 64 bytes; no stream is a small one
    header.resize(44);
    header += littleEndian(tableSectors, 4);
    header.resize(60);
    header += littleEndian(endOfChain, 4) + littleEndian(0, 4) + littleEndian(endOfChain, 4)
        + littleEndian(0, 4);
    for (std::size_t i = 0; i < 109; ++i)
        header += littleEndian(i < tableSectors ? tableBegin + i : none, 4);
    return header + sectors + table;
}

/// A Word document of some pieces, as bytes.
struct WordFileBuilder {
    struct Piece {
        std::string bytes;
        bool isWide = false;
        /// The piece's own change of properties.
        unsigned change = 0;
        /// Marked as deleted in the table of character properties.
        bool isDeleted = false;
    };

    std::vector<Piece> pieces;
    unsigned version = 193; // Word 97
    unsigned flags = 0;
    unsigned language = 0x0409;
    /// The list of property changes before the pieces.
    std::string changes{};
    bool hasPieceTable = true;
    std::string mainName = "WordDocument";
    std::string tableName = "0Table";

    std::string bytes() const
    {
        const bool isOld = version <= 105;
        std::string text(512, '\0');
        std::string positions, descriptors, borders, lists;
        std::size_t position = 0;
        std::string page(512, '\0');
        // The pieces are in the stream in reverse order, as they may be in a fast-saved document.
        std::vector<std::size_t> begins(pieces.size());
        for (std::size_t i = pieces.size(); i-- > 0;) {
            begins[i] = text.size();
            text += pieces[i].bytes;
            borders += littleEndian(begins[i], 4);
            lists += static_cast<char>(pieces[i].isDeleted ? 250 : 0);
        }
        const std::size_t textEnd = text.size();
        patch(page, 0, borders + littleEndian(textEnd, 4) + lists);
        patch(page, 500, isOld ? std::string("\2\x41\1", 3) : std::string("\3\0\x08\1", 4));
        page.back() = static_cast<char>(pieces.size());
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const Piece& piece = pieces[i];
            positions += littleEndian(position, 4);
            position += piece.bytes.size() / (piece.isWide ? 2 : 1);
            const std::size_t at = piece.isWide || isOld ? begins[i] : begins[i] * 2 | std::size_t(1) << 30;
            descriptors += littleEndian(0, 2) + littleEndian(at, 4) + littleEndian(piece.change, 2);
        }
        positions += littleEndian(position, 4);
        padTo(text, 512);
        const std::size_t pageNumber = text.size() / 512;
        text += page;

        std::string table
            = hasPieceTable && !changes.empty() ? '\1' + littleEndian(changes.size(), 2) + changes : "";
        if (hasPieceTable)
            table += '\2' + littleEndian(positions.size() + descriptors.size(), 4) + positions + descriptors;
        const std::string bins
            = littleEndian(512, 4) + littleEndian(textEnd, 4) + littleEndian(pageNumber, isOld ? 2 : 4);
        const std::size_t tableAt = isOld ? text.size() : 0;
        patch(text, 0, littleEndian(isOld ? 0xA5DC : 0xA5EC, 2) + littleEndian(version, 2));
        patch(text, 6, littleEndian(language, 2));
        patch(text, 10, littleEndian(flags, 2));
        patch(text, 24, littleEndian(512, 4) + littleEndian(textEnd, 4));
        patch(text, isOld ? 0x160 : 0x1A2, littleEndian(tableAt, 4) + littleEndian(table.size(), 4));
        patch(text, isOld ? 0xB8 : 0xFA,
            littleEndian(tableAt + table.size(), 4) + littleEndian(bins.size(), 4));
        if (isOld)
            return compoundFile({ { mainName, text + table + bins } });
        return compoundFile({ { mainName, text }, { tableName, table + bins } });
    }
};

/// A document of Word 2. Its text is in the file in one piece, or, with `flags` & 4, in pieces with a table
/// of their order, the last one first.
inline std::string word2File(
    const std::vector<std::string>& pieces, unsigned flags = 0, unsigned language = 0x409)
{
    const bool isFastSaved = flags & 4;
    std::string file(384, '\0');
    std::string positions = littleEndian(0, 4), descriptors, text;
    for (const std::string& piece : pieces)
        text.insert(isFastSaved ? 0 : text.size(), piece);
    std::size_t position = 0;
    for (const std::string& piece : pieces) {
        position += piece.size();
        positions += littleEndian(position, 4);
        descriptors += littleEndian(0, 2) + littleEndian(file.size() + text.size() - position, 4) + "\x83\1";
    }
    file += text;
    patch(file, 0, littleEndian(0xA5DB, 2) + littleEndian(45, 2));
    patch(file, 6, littleEndian(language, 2));
    patch(file, 10, littleEndian(flags, 2));
    patch(file, 24, littleEndian(384, 4) + littleEndian(file.size(), 4));
    const std::string table = '\1' + littleEndian(2, 2) + "xx\2"
        + littleEndian(positions.size() + descriptors.size(), 2) + positions + descriptors;
    patch(file, 0x11E, littleEndian(file.size(), 4) + littleEndian(table.size(), 2));
    return isFastSaved ? file + table : file;
}

} // namespace quilvane
