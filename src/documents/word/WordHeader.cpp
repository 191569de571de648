// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/WordHeader.h"

#include "text/TextDecoder.h"
#include "text/littleEndian.h"

namespace quilvane {

namespace {

constexpr std::uint16_t word6Signature = 0xA5DC;
constexpr std::uint16_t word97Signature = 0xA5EC;
/// The last version number of Word 95.
constexpr std::uint16_t lastOldVersion = 105;

constexpr unsigned encryptedFlag = 0x0100;
constexpr unsigned table1Flag = 0x0200;
constexpr unsigned extendedCharactersFlag = 0x1000;
constexpr unsigned farEastFlag = 0x4000;

/// The value of the character set field that stands for a Macintosh's.
constexpr std::uint16_t macintoshSet = 256;
constexpr int macintosh = 10000;

WordHeader::Place placeAt(std::string_view bytes, std::size_t at)
{
    return { u32At(bytes, at), u32At(bytes, at + 4) };
}

} // namespace

std::optional<WordHeader> readWordHeader(std::string_view mainStream)
{
    constexpr std::size_t smallestHeader = 0x200;
    const std::uint16_t signature = u16At(mainStream, 0);
    if (mainStream.size() < smallestHeader || (signature != word6Signature && signature != word97Signature))
        return {};

    const unsigned flags = u16At(mainStream, 10);
    WordHeader header;
    header.isOld = u16At(mainStream, 2) <= lastOldVersion;
    header.isEncrypted = flags & encryptedFlag;
    header.hasTable1 = flags & table1Flag;
    if (header.isOld) {
        header.isWide = (flags & extendedCharactersFlag) && (flags & farEastFlag);
        header.codePage
            = u16At(mainStream, 20) == macintoshSet ? macintosh : codePageOfLanguage(u16At(mainStream, 6));
        const std::uint32_t begin = u32At(mainStream, 24);
        const std::uint32_t end = u32At(mainStream, 28);
        header.text = { begin, end < begin ? 0 : end - begin };
        header.characterBins = placeAt(mainStream, 0xB8);
        header.pieceTable = placeAt(mainStream, 0x160);
    } else {
        header.codePage = TextDecoder::westernEurope; // whatever the language: all else is UTF-16
        header.characterBins = placeAt(mainStream, 0xFA);
        header.pieceTable = placeAt(mainStream, 0x1A2);
    }
    return header;
}

} // namespace quilvane
