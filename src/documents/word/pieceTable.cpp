// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/pieceTable.h"

#include "documents/word/characterProperties.h"
#include "text/littleEndian.h"

namespace quilvane {

namespace {

constexpr std::size_t positionSize = 4;
constexpr std::size_t descriptorSize = 8;

/// The two kinds of parts of the table ([MS-DOC] 2.9.38): lists of property changes, then the pieces.
constexpr std::uint8_t changesPart = 1;
constexpr std::uint8_t piecesPart = 2;

/// Whether a piece's own change of properties ([MS-DOC] 2.9.203) marks it as deleted: either one property
/// with its value, or the number of a list.
bool isDeletedBy(std::uint16_t change, const std::vector<bool>& listsThatDelete)
{
    if (change & 1) {
        const std::size_t number = change >> 1;
        return number < listsThatDelete.size() && listsThatDelete[number];
    }
    constexpr unsigned deletionMark = 0x41;
    return (change >> 1 & 0x7F) == deletionMark && change >> 8 != 0;
}

Piece pieceOf(std::string_view descriptor, std::size_t characters, const WordHeader& header)
{
    constexpr std::uint32_t eightBitFlag = std::uint32_t(1) << 30;
    const std::uint32_t position = u32At(descriptor, 2);
    if (header.isOld)
        return { position, characters, header.isWide, false };
    if (position & eightBitFlag)
        return { (position & ~eightBitFlag) / 2, characters, false, false };
    return { position, characters, true, false };
}

std::optional<std::vector<Piece>> piecesOf(
    std::string_view part, const std::vector<bool>& listsThatDelete, const WordHeader& header)
{
    if (part.size() < positionSize)
        return {};
    const std::size_t count = (part.size() - positionSize) / (positionSize + descriptorSize);
    const std::string_view descriptors = bytesAt(part, (count + 1) * positionSize, count * descriptorSize);
    std::vector<Piece> pieces;
    pieces.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t begin = u32At(part, i * positionSize);
        const std::uint32_t end = u32At(part, (i + 1) * positionSize);
        if (end < begin)
            return {};
        const std::string_view descriptor = descriptors.substr(i * descriptorSize, descriptorSize);
        pieces.push_back(pieceOf(descriptor, end - begin, header));
        pieces.back().isDeleted = !header.isOldest && isDeletedBy(u16At(descriptor, 6), listsThatDelete);
    }
    return pieces;
}

} // namespace

std::optional<std::vector<Piece>> readPieceTable(const WordHeader& header, std::string_view tableStream)
{
    if (header.isOld && header.pieceTable.size == 0) {
        const std::size_t width = header.isWide ? 2 : 1;
        return std::vector<Piece>{ { header.text.begin, header.text.size / width, header.isWide, false } };
    }
    const std::string_view table = bytesAt(tableStream, header.pieceTable.begin, header.pieceTable.size);
    std::vector<bool> listsThatDelete;
    std::size_t at = 0;
    while (u8At(table, at) == changesPart) {
        const std::size_t size = u16At(table, at + 1);
        listsThatDelete.push_back(marksDeletion(bytesAt(table, at + 3, size), header.isOld));
        at += 3 + size;
    }
    const std::size_t size = header.isOldest ? u16At(table, at + 1) : u32At(table, at + 1);
    const std::size_t begin = at + (header.isOldest ? 3 : 5);
    if (u8At(table, at) != piecesPart || !holdsBytes(table, begin, size))
        return {};
    return piecesOf(table.substr(begin, size), listsThatDelete, header);
}

} // namespace quilvane
