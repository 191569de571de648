// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/WordHeader.h"

#include "text/TextDecoder.h"
#include "text/littleEndian.h"

namespace quilvane {

namespace {

constexpr std::uint16_t word2Signature = 0xA5DB;
constexpr std::uint16_t word6Signature = 0xA5DC;
constexpr std::uint16_t word97Signature = 0xA5EC;
/// The last version number of Word 95.
constexpr std::uint16_t lastOldVersion = 105;

constexpr unsigned fastSavedFlag = 0x0004;
constexpr unsigned encryptedFlag = 0x0100;
constexpr unsigned table1Flag = 0x0200;
constexpr unsigned extendedCharactersFlag = 0x1000;
constexpr unsigned farEastFlag = 0x4000;

/// The value of the character set field that stands for a Macintosh's.
constexpr std::uint16_t macintoshSet = 256;

WordHeader::Place placeAt(std::string_view bytes, std::size_t at)
{
    return { u32At(bytes, at), u32At(bytes, at + 4) };
}

/// The place of the text in a document that has it in one piece.
WordHeader::Place textPlace(std::string_view bytes)
{
    const std::uint32_t begin = u32At(bytes, 24);
    const std::uint32_t end = u32At(bytes, 28);
    return { begin, end < begin ? 0 : end - begin };
}

/// From the section on the FIB in the "Word for Windows Binary File Format" of 1991. Up to the place of the
/// text it is the same as in later versions. Then come places of six bytes each, four for the beginning and
/// two for the size. The one at 0x11E is that of the "complex part", in later versions the CLX.
WordHeader readWord2Header(std::string_view bytes)
{
    constexpr std::size_t piecesAt = 0x11E;
    const unsigned flags = u16At(bytes, 10);
    WordHeader header;
    header.isOld = true;
    header.isOldest = true;
    header.isEncrypted = flags & encryptedFlag;
    header.codePage = codePageOfLanguage(u16At(bytes, 6));
    header.text = textPlace(bytes);
    if (flags & fastSavedFlag)
        header.pieceTable = { u32At(bytes, piecesAt), u16At(bytes, piecesAt + 4) };
    return header;
}

} // namespace

std::optional<WordHeader> readWordHeader(std::string_view mainStream)
{
    constexpr std::size_t smallestHeader = 0x200;
    constexpr std::size_t smallestWord2Header = 0x146;
    const std::uint16_t signature = u16At(mainStream, 0);
    if (signature == word2Signature && mainStream.size() >= smallestWord2Header)
        return readWord2Header(mainStream);
    if (mainStream.size() < smallestHeader || (signature != word6Signature && signature != word97Signature))
        return {};

    const unsigned flags = u16At(mainStream, 10);
    WordHeader header;
    header.isOld = u16At(mainStream, 2) <= lastOldVersion;
    header.isEncrypted = flags & encryptedFlag;
    header.hasTable1 = flags & table1Flag;
    if (header.isOld) {
        header.isWide = (flags & extendedCharactersFlag) && (flags & farEastFlag);
        header.codePage = u16At(mainStream, 20) == macintoshSet ? codePages::macintosh
                                                                : codePageOfLanguage(u16At(mainStream, 6));
        header.text = textPlace(mainStream);
        header.characterBins = placeAt(mainStream, 0xB8);
        header.pieceTable = placeAt(mainStream, 0x160);
    } else {
        header.codePage = codePages::westernEurope; // whatever the language: all else is UTF-16
        header.characterBins = placeAt(mainStream, 0xFA);
        header.pieceTable = placeAt(mainStream, 0x1A2);
    }
    return header;
}

} // namespace quilvane
