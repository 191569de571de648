// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quilvane {

/// What the head of a Word document's main stream (the "FIB" of [MS-DOC] 2.5) says of where its text is.
struct WordHeader {
    /// A stretch of the table stream, in bytes; it may lie beyond its end.
    struct Place {
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
    };

    /// Word 2, 6 and 95: their tables are in the main stream, and their text is 8-bit, unless `isWide`.
    bool isOld = false;
    /// Word 2, whose main stream is the file itself.
    bool isOldest = false;
    /// Of an old document from the Far East: UTF-16.
    bool isWide = false;
    bool isEncrypted = false;
    /// Whether the table stream is 1Table; else it is 0Table. Not for an old document.
    bool hasTable1 = false;
    /// Of 8-bit text.
    int codePage = 0;
    /// The text of a document without a piece table, in the main stream.
    Place text;
    Place pieceTable;
    /// Where the properties of characters stand. Not of Word 2, which keeps them in another form; what is
    /// marked as deleted there stays in the text.
    Place characterBins;
};

/// Nothing if the stream does not begin as a Word document of version 2 or later does.
std::optional<WordHeader> readWordHeader(std::string_view mainStream);

} // namespace quilvane
